"""What the engine keeps whatever a script writes: order, and iterators that stay honest."""

import pytest

import umlmm
from umlmm import Kelm


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


@pytest.mark.parametrize("make", [texts_of_a_feature, unique_texts_of_a_feature, parts])
def test_an_iterator_of_a_destroyed_element_raises(model, make):
    sequence, values, _ = make(model)
    sequence.extend(values)
    iterator = sequence.begin()
    for element in list(model.allElements()):
        if element.isvalid():
            element.destroy()
    with pytest.raises(Kelm.Error):
        iterator.item()
