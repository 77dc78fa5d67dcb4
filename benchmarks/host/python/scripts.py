"""Figures of scripts: umlmm against types written by hand in C, and against plain Python classes."""

import benchmark_limits
import umlmm
from figures import Figure
from limits import slots
from timing import Pass, Statement, compare

LISTED = 1_000
CREATED = 2_000
MILLION = 1_000_000


def measure():
    model = umlmm.Factory.createNewModel()
    yield from _properties(model)
    yield from _calls(model)
    yield from _creation()
    yield from _lists(model)
    yield from _numbers(model)
    yield from _sequences(model)
    model.close()


def _figure(name, subject, limit, bound, **options):
    value, limit = compare(subject, limit, **options)
    return Figure(f"script: {name}", value, limit=limit, bound=bound)


def _properties(model):
    comment, cls, number = umlmm.Comment(model), umlmm.Class(model), umlmm.LiteralInteger(model)
    attribute = umlmm.Property(model)
    limits = benchmark_limits.Model()
    plain, plain_type = benchmark_limits.Element(limits), benchmark_limits.Element(limits)
    text = "Orders of a customer"
    comment.body = plain.body = text
    cls.isAbstract = plain.isAbstract = True
    number.value = plain.value = 1_000_000
    attribute.type, plain.type = cls, plain_type
    cases = (
        ("a string", "body", comment, text, text, 1.8, 1.3),
        ("a boolean", "isAbstract", cls, True, True, 2.2, 2.0),
        ("an integer", "value", number, 1_000_000, 1_000_000, 2.2, 2.0),
        ("a reference", "type", attribute, cls, plain_type, 3.5, 2.2),
    )
    for title, name, element, value, plain_value, get_bound, set_bound in cases:
        yield _figure(
            f"get {title}, to a C getset",
            Statement(f"element.{name}", {"element": element}),
            Statement(f"element.{name}", {"element": plain}),
            get_bound,
        )
        yield _figure(
            f"set {title}, to a C getset",
            Statement(f"element.{name} = value", {"element": element, "value": value}),
            Statement(f"element.{name} = value", {"element": plain, "value": plain_value}),
            set_bound,
        )


def _calls(model):
    special, general = umlmm.Class(model), umlmm.Class(model)
    generalization = umlmm.Generalization(model)
    special.generalization.append(generalization)
    generalization.general = general
    plain_general = slots.Class()
    plain_special = slots.Class(plain_general)
    yield _figure(
        "method without argument, to a __slots__ class",
        Statement("element.mustBeOwned()", {"element": special}),
        Statement("element.mustBeOwned()", {"element": plain_special}),
        1.8,
    )
    for title, other, plain_other, bound in (
        ("method with a reference", special, plain_special, 2.2),
        ("conformsTo over a generalization", general, plain_general, None),
    ):
        yield _figure(
            f"{title}, to a __slots__ class",
            Statement("element.conformsTo(other)", {"element": special, "other": other}),
            Statement("element.conformsTo(other)", {"element": plain_special, "other": plain_other}),
            bound,
        )


def _creation():
    """Each round has a model of its own."""

    opened = []

    def fresh_model():
        if opened:
            opened.pop().close()
        opened.append(umlmm.Factory.createNewModel())
        return (opened[-1],)

    def fresh_limit():
        return (benchmark_limits.Model(),)

    def create(element):
        def run(model):
            for _ in range(CREATED):
                element(model)

        return run

    def create_and_destroy(element):
        def run(model):
            for _ in range(CREATED):
                element(model).destroy()

        return run

    for title, work, bound in (
        ("create and release a Class", create, 1.8),
        ("create, destroy and release a Class", create_and_destroy, None),
    ):
        yield _figure(
            f"{title}, to a C type",
            Pass(work(umlmm.Class), fresh_model, CREATED),
            Pass(work(benchmark_limits.Element), fresh_limit, CREATED),
            bound,
        )
    opened.pop().close()


def _walk(items):
    for _ in items:
        pass


def _append(items, new):
    append = items.append
    for element in new:
        append(element)


def _lists(model):
    limits = benchmark_limits.Model()

    def plain_list(count):
        elements = [benchmark_limits.Element(limits) for _ in range(count)]
        return benchmark_limits.List(benchmark_limits.Element(limits)), elements

    def package_list(count):
        elements = [umlmm.Class(model) for _ in range(count)]
        return umlmm.Package(model).packagedElement, elements

    yield _figure(
        "append to a feature list, to a C list",
        Pass(_append, lambda: package_list(LISTED), LISTED),
        Pass(_append, lambda: plain_list(LISTED), LISTED),
        None,
    )
    items, bound = package_list(LISTED)
    plain_items, plain_bound = plain_list(LISTED)
    _append(items, bound)
    _append(plain_items, plain_bound)
    yield _figure(
        f"iterate {LISTED:,} bound elements, each, to a C iterator",
        Pass(_walk, lambda: (items,), LISTED),
        Pass(_walk, lambda: (plain_items,), LISTED),
        1.5,
    )


def _numbers(model):
    numbers = list(range(MILLION))
    sequence = umlmm.SequenceOfInteger.make(model)
    sequence.extend(numbers)
    yield _figure(
        "iterate a million integers, each, to a Python list",
        Pass(_walk, lambda: (sequence,), MILLION),
        Pass(_walk, lambda: (numbers,), MILLION),
        5,
        rounds=5,
    )


def _sequences(model):
    """Sequences of integers next to Python's own lists of the same integers. Changes are undone in the statement, so
    that all find the same length."""

    def once(sequence_code, list_code, title, names, plain_names, repetitions, rounds):
        return _figure(
            f"integers: {title}, to a Python list",
            Statement(sequence_code, names, repetitions),
            Statement(list_code, plain_names, repetitions),
            None,
            rounds=rounds,
        )

    for count in (LISTED, MILLION):
        numbers = list(range(count))
        sequence = umlmm.SequenceOfInteger.make(model)
        sequence.extend(numbers)
        middle = count // 2
        names = {"values": sequence, "middle": middle, "last": count - 1}
        plain = {"values": numbers, "middle": middle, "last": count - 1}
        changes = (25, 10) if count == LISTED else (1, 3)
        for title, code, list_code, repetitions, rounds in (
            ("at", "values.at(middle)", "values[middle - 1]", 250, 20),
            ("push_back, pop_back", "values.push_back(7); values.pop_back()", "values.append(7); values.pop()", 250, 20),
            ("insert and erase in the middle", "values.insert(middle, 7); values.erase(middle)",
             "values.insert(middle, 7); del values[middle]", *changes),
            ("contains the last", "last in values", "last in values", *changes),
            ("push_back, removeAll", "values.push_back(-1); values.removeAll(-1)",
             "values.append(-1); values.remove(-1)", *changes),
        ):
            yield once(code, list_code, f"{title}, {count:,}", names, plain, repetitions, rounds)
    items = list(range(LISTED))
    sequence = umlmm.SequenceOfInteger.make(model)
    sequence.extend(items)
    yield _figure(
        f"iterate {LISTED:,} integers, each, to a Python list",
        Pass(_walk, lambda: (sequence,), LISTED),
        Pass(_walk, lambda: (items,), LISTED),
        5,
    )
