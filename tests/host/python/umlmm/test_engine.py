"""What the engine keeps whatever a script writes: owners, supersets, bounds, order, and iterators that stay honest."""

import pytest

import umlmm
from umlmm import Kelm


def behaviors(model):
    outer, inner = umlmm.Activity(model), umlmm.Activity(model)
    outer.ownedBehavior.append(inner)
    return outer, inner


def extension(model):
    result, end = umlmm.Extension(model), umlmm.ExtensionEnd(model)
    result.ownedEnd = [end]
    return result


CYCLE, TYPE, ROOM = "own itself", "Extension.ownedEnd takes an ExtensionEnd, not a Property 'p'", "one value at most"


def own_behavior(model):
    outer, inner = behaviors(model)
    return inner, "classifierBehavior", outer


def itself(model):
    return umlmm.Activity(model), "classifierBehavior", ...


def plain_end(model):
    end = umlmm.Property(model)
    end.name = "p"
    return umlmm.Extension(model), "navigableOwnedEnd", [end]


def plain_end_from_its_side(model):
    owner, _, (end,) = plain_end(model)
    return end, "owningAssociation", owner


def second_end(model):
    return extension(model), "navigableOwnedEnd", [umlmm.ExtensionEnd(model)]


def two_ends(model):
    return umlmm.Extension(model), "navigableOwnedEnd", [umlmm.ExtensionEnd(model), umlmm.ExtensionEnd(model)]


def another_end(model):
    owner = extension(model)
    owner.navigableOwnedEnd = owner.ownedEnd
    return owner, "navigableOwnedEnd", [umlmm.ExtensionEnd(model)]


def state(model):
    return [(element, element.containerKelm, list(element.containeeKelm)) for element in model.allElements()]


@pytest.mark.parametrize("case, words", [
    (own_behavior, CYCLE), (itself, CYCLE), (plain_end, TYPE), (plain_end_from_its_side, TYPE), (second_end, ROOM),
    (two_ends, ROOM), (another_end, ROOM),
])
@pytest.mark.parametrize("entry", ["assign", "append", "replace"])
def test_a_link_is_refused_when_a_superset_cannot_take_it(model, case, words, entry):
    element, name, value = case(model)
    value = element if value is ... else value
    before = state(model)
    with pytest.raises(Kelm.Error, match=words):
        if entry == "append" and isinstance(value, list):
            for one in value:
                getattr(element, name).append(one)
        elif entry == "replace" and isinstance(value, list) and len(getattr(element, name)) == len(value):
            getattr(element, name).replace(1, value[0])
        else:
            setattr(element, name, value)
    if case is not two_ends or entry != "append":
        assert state(model) == before


def nested(model):
    """Made from the inside out, so that the order of creation is the wrong one."""
    names = iter("fedcba")
    made = {name: kind(model) for name, kind in zip(
        names, [umlmm.Package, umlmm.Property, umlmm.Class, umlmm.Comment, umlmm.Class, umlmm.Package])}
    made["a"].packagedElement = [made["b"], made["d"]]
    made["a"].ownedComment = [made["c"]]
    made["d"].ownedAttribute = [made["e"]]
    made["a"].packagedElement.append(made["f"])
    return made


@pytest.mark.parametrize("asked, expected", [
    (None, "abdefc"), (Kelm.ClassObject, "abdefc"), (umlmm.Element, "abdefc"), (umlmm.NamedElement, "abdef"),
    (umlmm.Classifier, "bd"), (umlmm.Package, "af"), (umlmm.Actor, ""),
])
@pytest.mark.parametrize("others", [0, 100])
def test_elements_come_with_owners_before_what_they_own(model, asked, expected, others):
    made = nested(model)
    for _ in range(others):
        umlmm.Image(model)
    found = model.allElements() if asked is None else model.instancesOf(asked.MetaClass())
    names = {element: name for name, element in made.items()}
    assert "".join(names[element] for element in found if element in names) == expected
    assert len(found) == len(expected) + (others if len(expected) == 6 else 0)


def test_applied_stereotypes_are_an_empty_live_list(model):
    element = umlmm.Class(model)
    applied = element.appliedStereotypeInstance
    assert (len(applied), list(applied), applied.isEmpty()) == (0, [], True)
    assert applied is element.appliedStereotypeInstance
    assert "SequenceOf" in repr(applied)
    element.destroy()
    with pytest.raises(Kelm.Error, match="does not exist"):
        len(applied)


def test_a_bound_of_several_references_is_kept(model):
    observed, others = umlmm.DurationObservation(model), [umlmm.Class(model) for _ in range(3)]
    observed.event = others[:2]
    for entry in (lambda: observed.event.append(others[2]), lambda: setattr(observed, "event", others)):
        with pytest.raises(Kelm.Error, match="DurationObservation.event holds 2 values at most"):
            entry()
    observed.event.replace(1, others[2])
    observed.event = [others[0], others[2]]
    assert list(observed.event) == [others[0], others[2]]


def test_a_refused_creation_leaves_its_arguments_where_they_are(model):
    action, pin = umlmm.SendObjectAction(model), umlmm.InputPin(model)
    foreign = umlmm.InputPin(umlmm.Factory.createNewModel())
    action.target = pin
    with pytest.raises(Kelm.Error, match="same model"):
        umlmm.SendObjectAction(model, pin, foreign)
    assert pin.isvalid() and pin.owner is action and len(model.rootElements()) == 1


@pytest.mark.parametrize("entry", [
    lambda element: setattr(element, "firstEvent", [True, False, True]),
    lambda element: element.firstEvent.append(True),
    lambda element: element.firstEvent.insert(1, True),
    lambda element: element.firstEvent.push_front(True),
    lambda element: element.firstEvent.insert(element.firstEvent.begin(), True),
    lambda element: element.firstEvent.extend([True]),
])
@pytest.mark.parametrize("kind", [umlmm.DurationConstraint, umlmm.DurationObservation])
def test_lists_of_values_keep_their_upper_bound(model, entry, kind):
    element = kind(model)
    element.firstEvent = [False, True]
    with pytest.raises(Kelm.Error, match=r"firstEvent holds 2 values at most"):
        entry(element)
    assert list(element.firstEvent) == [False, True]
    element.firstEvent = [True]
    element.firstEvent[0] = False
    element.firstEvent.append(False)
    assert list(element.firstEvent) == [False, False]


def numbers(model):
    return umlmm.SequenceOfInteger.make(model), [1, 2, 3], 4


def texts_of_a_feature(model):
    return umlmm.OpaqueExpression(model).body, ["a", "b", "c"], "d"


def unique_texts_of_a_feature(model):
    return umlmm.OpaqueExpression(model).language, ["a", "b", "c"], "d"


def references(model):
    made = [umlmm.Class(model) for _ in range(4)]
    return umlmm.SequenceOfClass.make(model), made[:3], made[3]


def parts(model):
    made = [umlmm.Class(model) for _ in range(4)]
    return umlmm.Package(model).packagedElement, made[:3], made[3]


@pytest.mark.parametrize("make", [numbers, texts_of_a_feature, unique_texts_of_a_feature, references, parts])
class TestIterators:
    def test_one_whose_value_is_gone_raises_whatever_takes_its_place(self, model, make):
        sequence, values, other = make(model)
        for gone in range(len(values)):
            sequence.clear()
            sequence.extend(values)
            iterator = sequence.begin()
            for _ in range(gone):
                iterator.getNext()
            sequence.erase(gone + 1)
            sequence.insert(gone + 1, other)
            for use in (iterator.item, iterator.getNext, iterator.getPrev, iterator.clone().item,
                        lambda: sequence.erase(iterator), lambda: sequence.insert(iterator, other)):
                with pytest.raises(Kelm.Error, match="out of bounds"):
                    use()

    def test_all_others_stay_where_they_are(self, model, make):
        sequence, values, other = make(model)
        sequence.extend(values)
        iterators = [sequence.begin() for _ in range(4)]
        for steps, iterator in enumerate(iterators):
            for _ in range(steps):
                iterator.getNext()
        sequence.erase(1)
        sequence.append(other)
        assert [iterator.item() for iterator in iterators[1:3]] == values[1:]
        assert type(iterators[3]).eq(iterators[3], sequence.end())
        sequence.clear()
        for iterator in iterators[:3]:
            with pytest.raises(Kelm.Error, match="out of bounds"):
                iterator.item()


def test_an_iterator_of_a_list_does_not_stand_at_an_element_made_in_the_place_of_its_own(model):
    package = umlmm.Package(model)
    for _ in range(50):
        package.packagedElement = [umlmm.Class(model)]
        iterator = package.packagedElement.begin()
        package.packagedElement[0].destroy()
        package.packagedElement.append(umlmm.Class(model))
        with pytest.raises(Kelm.Error, match="out of bounds"):
            iterator.item()
