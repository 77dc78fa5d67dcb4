"""Scripts against the real library."""

import gc
import weakref

import pytest

import umlmm
from umlmm import _host


def test_lists_of_elements_have_pythons_manners(model, shop):
    attributes = shop.packagedElement[0].ownedAttribute
    email, age = attributes
    assert attributes.index(age) == 1 and attributes[-1] is age and attributes[::-1] == [age, email]
    attributes[:] = [age, email]
    assert attributes == [age, email] and email.class_ is shop.packagedElement[0]
    attributes += [umlmm.Property(model)]
    assert len(attributes) == 3 and attributes.pop().class_ is None
    attributes.remove(age)
    assert attributes == [email] and age.class_ is None
    attributes.reverse()
    del attributes[0]
    assert not attributes
    with pytest.raises(TypeError, match="does not take"):
        attributes.extend([email, umlmm.Comment(model)])
    assert not attributes


def test_a_property_keeps_its_list_when_it_is_extended_in_place(model, shop):
    customer = shop.packagedElement[0]
    before = list(customer.ownedAttribute)
    extra = umlmm.Property(model)
    customer.ownedAttribute += [extra]
    assert customer.ownedAttribute == before + [extra]


def test_searches_compare_as_python_does(model, shop):
    """The lists search themselves; what Python calls equal decides all the same."""
    numbers = umlmm.SequenceOfInteger.make(model)
    numbers.extend([7, 1, 0, 1] + [5] * 100 + [9])
    truths = umlmm.SequenceOfBoolean.make(model)
    truths.extend([False, False])
    texts = umlmm.SequenceOfString.make(model)
    texts.extend(["a", "\U0001F600", ""])
    kinds = umlmm.SequenceOfVisibilityKind.make(model)
    kinds.append(umlmm.VisibilityKind.Private)
    naturals = umlmm.SequenceOfUnlimitedNatural.make(model)
    naturals.extend(["*", "5"])
    values = [True, False, 0, 1, 1.0, 5, 9, 2**40, -1, "a", "a\0b", "\U0001F600", "\ud83d\ude00", "", "5", "05", "*",
              None, umlmm.VisibilityKind.Private, umlmm.VisibilityKind.Public, umlmm.AggregationKind.None_, shop, "Private"]
    elements = shop.packagedElement[0].ownedAttribute
    values += [*elements, elements[1].asImmutable(), elements[0].asDeviant(model.readOnlyVariant())]
    for published in (numbers, truths, texts, kinds, naturals, elements, shop.ownedMember, shop.allOwnedElements()):
        plain = list(published)
        for value in values:
            assert (value in published) == (value in plain) and published.count(value) == plain.count(value), value
            assert not value in plain or published.index(value) == plain.index(value)
    assert numbers.index(1, 2) == 3 and numbers.index(5, 50) == 50
    with pytest.raises(ValueError):
        numbers.index(1, 2, 3)


def test_only_changes_of_the_list_itself_end_its_iteration(model, shop):
    """Derived lists are made again after each change of the model, and mostly hold the same."""
    for number in range(40):
        shop.packagedElement.append(umlmm.Class(model))
    for place, member in enumerate(shop.ownedMember):
        member.name = f"C{place}"
    with pytest.raises(RuntimeError, match="iterate over list"):
        for place, member in enumerate(shop.ownedMember):
            if place == 20:
                shop.packagedElement.append(umlmm.Class(model))


def test_destroying_while_iterating_is_a_clear_error(model, shop):
    customer = shop.packagedElement[0]
    with pytest.raises(RuntimeError, match="iterate over list"):
        for attribute in customer.ownedAttribute:
            attribute.destroy()
    for attribute in list(customer.ownedAttribute):
        attribute.destroy()
    assert len(customer.ownedAttribute) == 0


def test_views(shop):
    customer = shop.packagedElement[0]
    view = customer.asImmutable()
    assert view == customer and hash(view) == hash(customer) and view is not customer
    assert isinstance(customer, umlmm.ImmutableClass) and type(view) is umlmm.ImmutableClass
    assert type(view.ownedAttribute[0]) is umlmm.ImmutableProperty
    with pytest.raises(umlmm.Kelm.Error, match="The object is immutable"):
        view.name = "other"
    assert customer.name == "Customer"


def test_literals(model):
    attribute = umlmm.Property(model)
    kind = umlmm.AggregationKind
    attribute.aggregation = "Composite"
    assert attribute.aggregation is kind.Composite is kind.Composite()
    attribute.aggregation = kind.None_
    assert attribute.aggregation is getattr(kind, "None")() and str(kind.None_) == "None"
    assert kind.None_ < kind.Shared < kind.Composite and kind.fromString("Shared") is kind.Shared
    with pytest.raises(ValueError, match=r"umlmm.Property.aggregation .*'Compsite'.*None, Shared, Composite"):
        attribute.aggregation = "Compsite"


def test_value_lists_are_built_from_python_lists(model):
    names = umlmm.SequenceOfString.make(model)
    names.extend(["a", "b", "c"])
    assert names == ["a", "b", "c"] and names.at(1) == "a" and names[0] == "a"
    names[1:2] = ["x", "y"]
    assert list(names) == ["a", "x", "y", "c"]
    walk, end = names.begin(), names.end()
    walked = []
    while walk != end:
        walked.append(walk.item())
        walk.getNext()
    assert walked == names
    with pytest.raises(TypeError, match="unhashable"):
        hash(walk)
    numbers = umlmm.SequenceOfInteger.make([])
    numbers += [3, 1, 2]
    assert sorted(numbers) == [1, 2, 3] and 3 in numbers


def test_what_is_not_there(model):
    comment = umlmm.Comment(model)
    comment.destroy()
    assert "Comment" in repr(comment)
    for make in (lambda: umlmm.Comment([]), umlmm.Comment):
        with pytest.raises(umlmm.Kelm.Error, match="Cannot access NULL ref"):
            make()


def test_methods_with_a_python_body_are_on_both_views(shop):
    umlmm.Kelm.extend("umlmm.Classifier", "attributeNames", lambda self, joint=", ": joint.join(
        attribute.name for attribute in self.ownedAttribute))
    customer = shop.packagedElement[0]
    assert customer.attributeNames() == "email, age"
    assert customer.asImmutable().attributeNames(joint="/") == "email/age"


def test_bound_objects_are_small_and_end_with_their_last_name(model, settled):
    element = umlmm.Comment(model)
    assert not gc.is_tracked(element) and element.__sizeof__() <= 80
    watcher, before = weakref.ref(element), _host.live_counts()["bindings"]
    del element
    assert watcher() is None and _host.live_counts()["bindings"] == before - 1


def test_the_road_of_every_property_of_every_class_can_be_walked(model):
    """Reads each property of an element of each class that can be made, and sets back what was read."""
    made = 0
    for name in _host.class_names("umlmm"):
        cls = getattr(umlmm, name.removeprefix("umlmm."))
        if not issubclass(cls, umlmm.Element):
            continue
        try:
            element = cls(model)
        except TypeError:
            continue  # the class is abstract
        made += 1
        for attribute in (a for a in dir(cls) if isinstance(getattr(cls, a), type(umlmm.ImmutableComment.body))):
            value = getattr(element, attribute)
            try:
                setattr(element, attribute, value)
            except (umlmm.Kelm.Error, TypeError):
                continue  # read-only, or absent without a way to say so
            assert getattr(element, attribute) == value, (name, attribute)
        element.destroy()
    assert made == 128
