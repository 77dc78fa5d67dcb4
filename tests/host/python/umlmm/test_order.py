"""The order of lists, what goes into them, and whose they are: what scripts do with lists beyond reading."""

import functools
import random

import pytest

import umlmm


def texts(sequence):
    return sequence, [f"{number:02}" for number in (3, 1, 4, 5, 9, 2, 6)]


def elements(make, kind=umlmm.Property):
    def made(model):
        values = [kind(model) for _ in range(40)]
        for value, name in zip(values, random.Random(5).sample(range(99), 40)):
            value.name = f"{name:02}"
        return make(model), values
    return made


# By kind of sequence: an empty one and different values for it.
KINDS = {
    "containment": elements(lambda m: umlmm.Class(m).ownedAttribute),
    "references": elements(lambda m: umlmm.Association(m).memberEnd),
    "no far end": elements(lambda m: umlmm.Comment(m).annotatedElement),
    "computed": elements(lambda m: umlmm.Class(m).ownedPort, umlmm.Port),
    "general classes": elements(lambda m: umlmm.Class(m).superClass, umlmm.Class),
    "repeating values": lambda m: texts(umlmm.OpaqueExpression(m).body),
    "unique values": lambda m: texts(umlmm.OpaqueExpression(m).language),
    "free": elements(umlmm.SequenceOfProperty.make),
    "free and unique": elements(umlmm.SequenceOfProperty.makeUnique),
    "free values": lambda m: texts(umlmm.SequenceOfString.make(m)),
}
LIVE = ["containment", "references", "no far end", "computed", "general classes"]
UNIQUE = LIVE + ["unique values", "free and unique"]


@pytest.fixture
def filled(model, request):
    sequence, values = KINDS[request.param](model)
    sequence.extend(values)
    return sequence, values


def key(value):
    return value if isinstance(value, str) else value.name


def assign(sequence, places, values):
    sequence[places] = values


@pytest.mark.parametrize("filled", KINDS, indirect=True)
def test_reordering_is_that_of_a_python_list(filled):
    sequence, plain = filled
    chance, size = random.Random(3), len(plain)
    walk = sequence.begin()
    for _ in range(100):
        first, second = chance.randrange(-size, size), chance.randrange(-size, size)
        order, odd = chance.sample(plain, size), chance.sample(plain[1::2], len(plain[1::2]))
        some = slice(*sorted(chance.sample(range(size), 2)))
        name, change, same = chance.choice([
            ("move", lambda s: s.move(first, second), lambda s: s.insert(second % size, s.pop(first))),
            ("swap", lambda s: s.swap(first, second),
             lambda s: s.__setitem__(first, s[second]) or s.__setitem__(second, plain[first])),
            *[(name, act, act) for name, act in (
                ("reverse", lambda s: s.reverse()), ("sort", lambda s: s.sort(key=key)),
                ("backwards", lambda s: s.sort(key=lambda v: key(v)[0], reverse=True)),
                ("order", lambda s: assign(s, slice(None), order)), ("odd", lambda s: assign(s, slice(1, None, 2), odd)),
                ("part", lambda s: assign(s, some, s[some][::-1])))],
        ])
        plain = list(plain)
        change(sequence)
        same(copy := list(plain))
        plain = copy
        assert list(sequence) == plain, name
        assert [sequence.index(value) for value in plain] == list(range(size)), name
    walk.item()  # its element is still there, wherever it stands


@pytest.mark.parametrize("filled", UNIQUE, indirect=True)
def test_a_value_that_stands_elsewhere_is_not_ignored(filled):
    sequence, values = filled

    def swap():
        sequence[0], sequence[1] = sequence[1], sequence[0]

    for change in (swap, lambda: random.shuffle(sequence), lambda: assign(sequence, slice(0, 2), [values[3]]),
                   lambda: assign(sequence, slice(0, 4, 2), [values[1], values[0]])):
        with pytest.raises(ValueError, match=r"stands at place \d.*swap.*move.*\[:\] = order"):
            change()
    with pytest.raises(ValueError, match="comes twice"):
        sequence[:] = [values[0], values[0]]
    assert sequence == values
    sequence[1] = values[1]
    assert sequence == values


@pytest.mark.parametrize("filled", LIVE, indirect=True)
def test_published_methods_say_where_an_element_stands(filled):
    sequence, values = filled
    for change in (lambda: sequence.insert(1, values[3]), lambda: sequence.replace(1, values[3])):
        with pytest.raises(umlmm.Kelm.Error, match="The element stands at 4 of the list.*swap"):
            change()
    for place in (4, 5):
        sequence.insert(place, values[3])  # where it stands
    sequence.replace(4, values[3])
    assert sequence == values


def test_an_order_changes_nothing_else(model):
    association = umlmm.Association(model)
    ends = [umlmm.Property(model) for _ in range(3)]
    association.ownedEnd = ends
    association.navigableOwnedEnd = ends[1:]
    association.ownedEnd[:] = ends[::-1]
    association.ownedEnd.move(0, 2)
    association.ownedEnd.sort(key=ends.index, reverse=True)
    extra = umlmm.Property(model)
    association.ownedEnd[1:] = [ends[1], extra]
    assert association.ownedEnd == [ends[2], ends[1], extra] and ends[0].owner is None
    assert association.memberEnd == ends + [extra] and association.navigableOwnedEnd == ends[1:]
    assert all(end.owningAssociation is association is end.association for end in association.ownedEnd)


@pytest.mark.parametrize("filled", ["containment", "computed", "repeating values", "free"], indirect=True)
def test_a_sort_that_fails_changes_nothing(filled):
    sequence, values = filled

    def change(value):
        sequence.pop()
        return key(value)

    with pytest.raises(ZeroDivisionError):
        sequence.sort(key=lambda value: 1 / (value != values[2]))
    assert sequence == values
    with pytest.raises(ValueError, match="changed while it was sorted"):
        sequence.sort(key=change)
    assert sequence == []
    for wrong, error in ((lambda: sequence.sort(key), TypeError), (lambda: sequence.move(0), TypeError),
                         (lambda: sequence.swap(0, "1"), TypeError), (lambda: sequence.move(0, 0), IndexError)):
        with pytest.raises(error):
            wrong()


def test_the_order_of_what_cannot_be_written_stays(model):
    element = umlmm.Class(model)
    element.ownedAttribute = [umlmm.Property(model), umlmm.Property(model)]
    assert not hasattr(element.ownedMember, "sort") and not hasattr(element.asImmutable().ownedAttribute, "swap")
    view = element.asDeviant(model.readOnlyVariant())
    for change in (lambda s: s.reverse(), lambda s: s.swap(0, 1), lambda s: assign(s, slice(None), s[::-1])):
        with pytest.raises(umlmm.Kelm.Error, match="read-only variant"):
            change(view.ownedAttribute)


# --- what goes in, and into what

@pytest.mark.parametrize("above", [umlmm.SequenceOfClassifier, umlmm.Kelm.SequenceOfClassObject])
@pytest.mark.parametrize("make", [umlmm.SequenceOfClass.make, umlmm.SequenceOfClass.makeUnique])
def test_the_class_of_the_receiver_decides_what_goes_in(model, make, above):
    classes, own, other = make(model), umlmm.Class(model), umlmm.DataType(model)
    classes.append(own)
    for name, *arguments in (("append",), ("push_back",), ("push_front",), ("insert", 1), ("replace", 1),
                             ("insert", above.begin(classes))):
        with pytest.raises(umlmm.Kelm.Error, match="not of type 'umlmm.Class'"):
            getattr(above, name)(classes, *arguments, other)
    assert classes == [own] and above.removeAll(classes, other) == 0
    above.append(classes, umlmm.AssociationClass(model))
    assert len(classes) == 2


def test_a_receiver_is_never_converted(model):
    text = umlmm.OpaqueExpression(model)
    text.body = ["a"]
    for receiver in (text.asImmutable().body, ["a"], ("a",), "a", umlmm.Class(model)):
        with pytest.raises(TypeError, match="The first argument is the object itself, of class 'umlmm.SequenceOfString'"):
            umlmm.SequenceOfString.append(receiver, "q")
    for nothing in (None, [], ()):
        with pytest.raises(umlmm.Kelm.Error, match="Cannot access NULL sequence"):
            umlmm.SequenceOfString.append(nothing, "x")
        assert umlmm.Class.isvalid(nothing) is False
    assert umlmm.ImmutableSequenceOfString.at(text.body, 1) == "a" and text.body == ["a"]


def test_lists_of_features_take_views(model):
    owner, values = umlmm.Class(model), [umlmm.Property(model) for _ in range(7)]
    views = [value.asImmutable() for value in values]
    attributes = owner.ownedAttribute
    attributes.extend(views[:2])
    attributes += (views[2],)
    attributes[0] = views[3]
    attributes[1:1] = views[4:6]
    attributes[::3] = [views[6], views[1]]
    owner.ownedAttribute += [views[0]]
    assert attributes == [values[6], values[4], values[5], values[1], values[2], values[0]]
    assert all(type(value) is umlmm.Property and value.class_ is owner for value in attributes)
    owner.ownedAttribute = views
    values[0].type = owner.asImmutable()
    assert attributes == values and values[0].type is owner


def test_what_refuses_a_view_names_the_way_from_it(model):
    attributes, free = umlmm.Class(model).ownedAttribute, umlmm.SequenceOfProperty.make(model)
    view = umlmm.Property(model).asImmutable()
    actions = [lambda: free.extend([view]), lambda: free.__iadd__([view]), lambda: assign(free, slice(0, 0), [view]),
               lambda: umlmm.SequenceOfElement.append(attributes, view),
               lambda: umlmm.Generalization(model, umlmm.Class(model).asImmutable())]
    for sequence in (attributes, free):
        for name, *arguments in (("append",), ("push_back",), ("push_front",), ("insert", 1), ("replace", 1),
                                 ("removeAll",), ("insert", sequence.begin())):
            actions.append(functools.partial(getattr(sequence, name), *arguments, view))
    for action in actions:
        with pytest.raises(TypeError, match=r"asMutable\(\).*read-only view|read-only view.*asMutable\(\)"):
            action()
    assert not free and not attributes
