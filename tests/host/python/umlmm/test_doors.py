"""Properties have two roads, a short one and that of the published descriptors: whatever a script does, both answer the
same. What is done here is told line by line, by a process for each road."""

import os
import subprocess
import sys

import umlmm

TEXTS = ("", "plain", "caf\u00e9", "\u4e2d\u6587", "\U0001f600", "a\0b", "\ud800", "x" * 300, "*", "7")
NUMBERS = (True, False, 0, 9, 10, -1, 2**31 - 1, 2**31, 2**80, 1.0)
TARGETS = ("Class", "Operation", "Interface", "LiteralInteger", "Property", "Association", "Package", "Constraint",
           "Activity", "Lifeline", "InputPin", "OccurrenceSpecification")


class Teller:
    """Values as texts: elements by the order in which they were met."""

    def __init__(self):
        self._met = {}

    def __call__(self, value):
        if isinstance(value, BaseException):
            return f"{type(value).__name__}: {ascii(str(value))} {getattr(value, '__notes__', [])!a}"
        if isinstance(value, umlmm.Kelm.ImmutableClassObject):
            return f"{type(value).__name__}#{self._met.setdefault(value, len(self._met))}"
        return ascii(value) if isinstance(value, (str, int, float, type(None))) else type(value).__name__


def attempt(work, *arguments):
    try:
        return work(*arguments)
    except Exception as error:
        return error


def properties(element):
    cls = type(element)
    return [name for name in dir(cls) if type(getattr(cls, name)).__name__ == "Property"]


def singles(element):
    """The names of all properties of one value."""
    return [name for name in properties(element) if "Sequence" not in type(attempt(getattr, element, name)).__name__]


def made(model):
    names = [name for name in sorted(dir(umlmm)) if not name.startswith(("Immutable", "Sequence"))]
    classes = [cls for cls in (getattr(umlmm, name) for name in names) if isinstance(cls, type)]
    elements = [attempt(cls, model) for cls in classes if issubclass(cls, umlmm.Element)]
    return [element for element in elements if isinstance(element, umlmm.Element)]


def tell():
    told = Teller()
    model, other_model = umlmm.Factory.createNewModel(), umlmm.Factory.createNewModel()
    elements, doomed = made(model), made(model)
    targets = [getattr(umlmm, name)(model) for name in TARGETS]
    gone = umlmm.Class(model)
    gone.destroy()
    values = [*TEXTS, *NUMBERS, None, [], object, *targets, targets[0].asImmutable(), gone, umlmm.Class(other_model),
              umlmm.VisibilityKind.Private, "private", [targets[0]]]
    tell_of_gone(told, [gone])
    for element in elements:
        view = element.asImmutable()
        for name in singles(element):
            print(type(element).__name__, name, told(attempt(getattr, view, name)))
            for value in values:
                done = attempt(setattr, element, name, value)
                print(told(value), told(done), *(told(attempt(getattr, at, name)) for at in (element, view)))
                if name == "name":
                    print(told(attempt(lambda: model[element.name])))
            # The far ends of what was set, and its places.
            print(*(told(target.owner) + str(len(target.referencedBy())) for target in targets))
            print(told(attempt(setattr, view, name, None)), told(attempt(delattr, element, name)))
            print(told(attempt(getattr(type(element), name).__get__, targets[3], None)))
    for element in doomed:
        element.destroy()
    tell_of_gone(told, doomed)
    model.close()
    tell_of_gone(told, elements)


def tell_of_gone(told, elements):
    for element in elements:
        for name in properties(element):
            print(name, told(attempt(getattr, element, name)),
                  *(told(attempt(setattr, element, name, value)) for value in ("x", True, None, element)))


def test_both_roads_answer_the_same():
    environment = {name: value for name, value in os.environ.items() if name != "UMLMM_PUBLISHED_ROAD"}
    short, published = (
        subprocess.run([sys.executable, __file__], env={**environment, **more}, capture_output=True, text=True,
                       check=True).stdout.splitlines()
        for more in ({}, {"UMLMM_PUBLISHED_ROAD": "1"})
    )
    assert len(short) > 20_000
    assert [pair for pair in zip(short, published) if pair[0] != pair[1]][:5] == []
    assert len(short) == len(published)


def test_texts_that_are_kept_are_those_of_their_elements():
    model = umlmm.Factory.createNewModel()
    elements = [umlmm.Class(model, name=f"first {number}") for number in range(100)]
    lasting = [umlmm.Class(model, name=f"lasting {number}") for number in range(100)]
    for _ in range(3):
        assert [element.name for element in lasting] == [f"lasting {number}" for number in range(100)]
    # More than are kept: places are used again, and texts end whose places are.
    for number in range(140_000):
        element = elements[number % 100]
        element.name = f"name {number}"
        assert element.name == element.name == f"name {number}"
    assert [element.name for element in lasting] == [f"lasting {number}" for number in range(100)]
    model.close()


def test_append_forgets_what_it_was_called_with_before(model):
    """A list of one stands for what is in it, where a method takes one object."""
    attributes = umlmm.Class(model).ownedAttribute
    first, second = umlmm.Property(model), umlmm.Property(model)
    attributes.append(first)
    attributes.append([second])
    assert list(attributes) == [first, second]


if __name__ == "__main__":
    tell()
