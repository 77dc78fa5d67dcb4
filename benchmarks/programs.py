"""The Google Benchmark programs, and the figures that are made of their times."""

import json
import math
import pathlib
import subprocess

import figures
from figures import Figure

SIZES = (1_000, 10_000, 100_000)
MODELS = (10_000, 100_000, 1_000_000)
KINDS = {"Owning": "owning list", "Referring": "referring list"}


def _least_time():
    return f"--benchmark_min_time={0.0001 if figures.smoke else 0.02}"


class Results:
    """What one program measured: the fastest of all repetitions, which ran interleaved."""

    def __init__(self, program, which="all", processes=1):
        repetitions = 5 if processes == 1 and not figures.smoke else 1
        command = [
            program,
            "--benchmark_format=json",
            f"--benchmark_filter={which}",
            f"--benchmark_repetitions={repetitions}",
            _least_time(),
            "--benchmark_enable_random_interleaving=true",
        ]
        self._runs = {}
        for _ in range(1 if figures.smoke else processes):
            output = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
            for run in json.loads(output)["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                name = run["name"].split("/iterations:")[0].removesuffix("/manual_time")
                self._runs.setdefault(name, []).append(run)

    def nanoseconds(self, name):
        """The time of one item, or of one iteration where a benchmark counts no items."""
        return min(
            1e9 / run["items_per_second"] if "items_per_second" in run else run["cpu_time"]
            for run in self._runs[name]
        )

    def counter(self, name, counter):
        return max(run[counter] for run in self._runs[name])


def measure(build):
    folder = pathlib.Path(build, "bin")
    yield from _access(Results(folder / "metamodel_access_benchmark"))
    yield from _lists(Results(folder / "metamodel_lists_benchmark"))
    yield from _queries(Results(folder / "metamodel_queries_benchmark"))
    yield from _destroying(Results(folder / "metamodel_destroy_benchmark"))
    yield from _memory(Results(folder / "metamodel_memory_benchmark"))
    yield from _threads(Results(folder / "metamodel_threads_benchmark"))
    yield from _workloads(Results(folder / "metamodel_workloads_benchmark"))
    yield from _files(folder / "model_files_benchmark")


def _against(results, title, name, limit, bound=None):
    return Figure(title, results.nanoseconds(name), limit=results.nanoseconds(limit), bound=bound)


def _access(results):
    subjects = {
        "cast to an interface": "castToClass",
        "getEntry of a string": "readText",
        "set a string": "writeText",
        "get a boolean": "readBoolean",
        "set a boolean": "writeBoolean",
        "get an integer": "readInteger",
        "set an integer": "writeInteger",
        "get a reference": "readReference",
        "set a reference": "writeReference",
        "create and destroy a Class": "createAndDestroy",
    }
    for title, name in subjects.items():
        yield _against(results, f"C++: {title}, to a plain struct", name, f"{name}Plain")
    yield _against(results, "C++: getName, to getEntry of a string", "readTextTyped", "readText")
    title = "C++: property read over 60 mixed classes, to one class"
    yield _against(results, title, "readTextsOfClasses/60", "readTextsOfClasses/1", 2.0)


def _threads(results):
    # At least 1.7 times the elements in the same time, where both processors are free.
    name = "createInOwnModels/real_time/threads:"
    title = "C++: create in two threads with a model each, to one"
    limit = results.nanoseconds(name + "1")
    yield Figure(title, results.nanoseconds(name + "2"), limit=limit, bound=1 / 1.7, goal=True)


def _workloads(results):
    """What programs do all day, against plain structs of the same shape."""
    workloads = {
        "create, name, append and type, an element": ("create", "create", 2.5),
        "read a name": ("readName", "readName", 3),
        "read a borrowed name": ("readNameBorrowed", "readName", 1.5),
        "set a name from a std::string": ("setName", "setName", 3),
        "set a name from a ready text": ("setNameToText", "setName", 2),
        "type, owner and class of properties": ("walk", "walk", 8),
        "type, owner and class of properties, borrowed": ("walkBorrowed", "walk", 3),
        "all owned elements": ("allOwned", "allOwned", 2.5),
        "members of classes": ("members", "members", 1.5),
    }
    for title, (name, limit, bound) in workloads.items():
        for size in MODELS:
            yield Figure(
                f"C++ workload: {title}, {size:,}, to structs",
                results.nanoseconds(f"{name}/{size}"),
                limit=results.nanoseconds(f"{limit}Plain/{size}"),
                bound=bound if size == 100_000 else None,
                goal=True,
            )


def _files(program):
    """Nanoseconds a byte of the file."""
    results = Results(program, "-^first")
    sizes = {8_000: "5 MB", 320_000: "190 MB"}
    for classes, size in sizes.items():
        parse, create, load, save = (
            results.nanoseconds(f"{name}/{classes}") for name in ("parse", "create", "load", "saveUnchanged")
        )
        title = f"files: load {size}, a byte, to its parse and making its elements"
        yield Figure(title, load, limit=parse + create, bound=1.5, goal=True)
        yield Figure(f"files: text of {size} unchanged, a byte, to its parse", save, limit=parse, bound=3)
    # What memory is used again flatters small files, and hides what a reading takes.
    create = Results(program, "^firstCreate")
    loads = {classes: Results(program, f"^firstLoad/{classes}/", 5) for classes in sizes}
    small, large = (loads[classes].nanoseconds(f"firstLoad/{classes}") for classes in sizes)
    exponent = 1 + math.log(large / small) / math.log(320 / 8)
    yield Figure("files: exponent of growth, a first load of 5 and of 190 MB", exponent, "", bound=1.05, goal=True)
    elements = create.counter("firstCreate/320000", "memory")
    for counter, when in {"peak": "while it is loaded", "memory": "afterwards"}.items():
        beside = loads[320_000].counter("firstLoad/320000", counter) - elements
        yield Figure(f"files: memory beside the elements, times the text, {when}", beside, "", bound=3)


def _lists(results):
    changes = {
        "append": ("append", {"Owning": 2.0, "Referring": 3.0}),
        "erase by element from the middle": ("eraseFromTheMiddle", dict.fromkeys(KINDS, 3.0)),
        "destroy out of the middle": ("destroyInTheMiddle", dict.fromkeys(KINDS, 3.0)),
    }
    for title, (name, bounds) in changes.items():
        for kind, label in KINDS.items():
            for size in SIZES[1:]:
                yield _against(
                    results,
                    f"C++: {title}, {label}, {size:,} to {SIZES[0]:,}",
                    f"{name}<{kind}>/{size}",
                    f"{name}<{kind}>/{SIZES[0]}",
                    bounds[kind] if size == SIZES[-1] else None,
                )
    for size in SIZES:
        title = f"C++: append with opposite at {size:,}, to plain structs"
        yield _against(results, title, f"append<Owning>/{size}", f"appendPlain/{size}")
    for kind, label in KINDS.items():
        for size in SIZES:
            yield Figure(
                f"C++: erase and read by position in turn, {label}, {size:,}",
                results.nanoseconds(f"eraseAndReadByPosition<{kind}>/{size}") / 1000,
                "us",
                bound=20 if size == SIZES[-1] else None,
                goal=True,
            )
    yield _against(results, "C++: iterate 1,000 elements, to counted pointers", "iterate", "iteratePlain")


def _queries(results):
    queries = {
        "qualifiedName": ("qualifiedNames", 1.5),
        "member": ("members", 2.0),
        "inheritedMember": ("inheritedMembers", 2.0),
        "allOwnedElements": ("allOwnedElements", 3.0),
        "allParents": ("allParents", 1.5),
    }
    for title, (name, bound) in queries.items():
        figures = {
            size: _against(
                results,
                f"C++: {title} in {size:,}, per answer, to a plain walk",
                f"{name}/{size}",
                f"{name}Plain/{size}",
                bound if size == 100_000 else None,
            )
            for size in MODELS
        }
        # A ratio that grows with the model would be another cost than that of the walk.
        figures[MODELS[-1]].bound = 1.3 * figures[MODELS[0]].ratio
        yield from figures.values()


def _destroying(results):
    for size in SIZES:
        title = f"C++: destroy every second of {size:,} classes, to plain structs"
        limit = f"destroyClassesPlain/{size}"
        yield _against(results, title, f"destroyClasses/{size}", limit, 4.0 if size == 10_000 else None)


def _memory(results):
    for name, bound in {"Comment": 96, "Property": 208, "Class": 272}.items():
        benchmark = f"bytesPerElement<umlmm::{name}>"
        size = results.counter(benchmark, "element")
        yield Figure(f"memory: {name} with its slots", size, "B", bound=bound)
        yield Figure(f"memory: heap for a {name} in a model", round(results.counter(benchmark, "heap")), "B")
    allocations = results.counter("allocationsPerRead", "allocations")
    yield Figure("memory: allocations of a getEntry read of any kind", allocations, "", bound=0)


def sequences(build):
    """The table that the benchmark of the sequence kernel prints itself, and whether its bounds hold."""
    program = pathlib.Path(build, "bin", "sequence_benchmark")
    run = subprocess.run([program, _least_time()], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    if run.returncode not in (0, 1):
        raise subprocess.CalledProcessError(run.returncode, program)
    lines = run.stdout.splitlines()
    start = next(at for at, line in enumerate(lines) if line.startswith("operation"))
    return lines[start:], run.returncode == 0
