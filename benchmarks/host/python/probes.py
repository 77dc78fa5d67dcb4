"""What a fresh process finds out about itself: run with the name of a probe, prints one number."""

import pathlib
import resource
import sys
import time

BOUND_OBJECTS = 200_000


def _resident():
    """Bytes of memory that the process holds."""
    fields = pathlib.Path("/proc/self/statm").read_text().split()
    return int(fields[1]) * resource.getpagesize()


def _bytes_per_object(items, show):
    """Growth of the process for each object that `show` answers for the first time for an item of a list."""
    held = [None] * len(items)
    before = _resident()
    for at, element in enumerate(items):
        held[at] = show(element)
    return (_resident() - before) / len(held)


def bound_object():
    """An element keeps its id once a script has seen it, and scripts see what they create; its read-only view
    has an id of its own."""
    import umlmm

    model = umlmm.Factory.createNewModel()
    items = umlmm.Package(model).packagedElement
    for _ in range(BOUND_OBJECTS):
        items.append(umlmm.Class(model))
    return _bytes_per_object(items, umlmm.Class.asImmutable)


def bound_object_limit():
    import benchmark_limits

    model = benchmark_limits.Model()
    items = benchmark_limits.List(benchmark_limits.Element(model))
    for _ in range(BOUND_OBJECTS):
        items.append(benchmark_limits.Element(model))
    return _bytes_per_object(items, lambda element: element)


def import_time():
    start = time.perf_counter()
    import umlmm  # noqa: F401

    return 1e3 * (time.perf_counter() - start)


def class_time():
    import umlmm

    names = dir(umlmm)
    start = time.perf_counter()
    classes = sum(isinstance(getattr(umlmm, name), type) for name in names)
    return 1e6 * (time.perf_counter() - start) / classes


def load_time():
    """Of a model file, to the time in which the interpreter's own parser makes a tree of it."""
    import tempfile
    import xml.etree.ElementTree as ElementTree

    import umlmm

    model = umlmm.Factory.createNewModel()
    root = umlmm.Package(model)
    for number in range(8_000):
        added = umlmm.Class(model)
        added.name = f"Class{number}"
        root.packagedElement.append(added)
        for place in range(4):
            attribute = umlmm.Property(model)
            attribute.name = f"attribute{place}"
            attribute.type = added
            added.ownedAttribute.append(attribute)
    times = {umlmm.load: [], ElementTree.parse: []}
    with tempfile.NamedTemporaryFile(suffix=".uml") as file:
        model.save(file.name, dialect="eclipse")
        for _ in range(5):
            for read, measured in times.items():
                start = time.process_time()
                result = read(file.name)
                measured.append(time.process_time() - start)
                del result
    return min(times[umlmm.load]) / min(times[ElementTree.parse])


if __name__ == "__main__":
    print(globals()[sys.argv[1]]())
