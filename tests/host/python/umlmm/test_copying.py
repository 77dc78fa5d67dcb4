"""Copies of elements and models from scripts; what they hold is tested in C++."""

import copy

import pytest

import umlmm
from umlmm import _host


def names(elements):
    return [(type(element), element.name) for element in elements]


def test_elements_are_copied_with_their_parts(model, shop):
    customer = shop.packagedElement[0]
    customer.ownedAttribute[0].type = customer
    customer.ownedAttribute[1].type = outside = umlmm.Class(model)
    for make in (umlmm.Package.clone, copy.copy, copy.deepcopy):
        made = make(shop)
        assert type(made) is umlmm.Package and made is not shop and model.rootElements()[-1] is made
        twin = made.packagedElement[0]
        assert names(twin.ownedAttribute) == names(customer.ownedAttribute) and twin is not customer
        assert [attribute.type for attribute in twin.ownedAttribute] == [twin, outside]


def test_a_copied_model_is_a_new_one(model, shop):
    for view in (model, model.asImmutable(), model.readOnlyVariant()):
        made = copy.deepcopy(view)
        assert type(made) is umlmm.Kelm.Model and made.uri != model.uri and umlmm.Kelm.Model.find(made.uri) is made
        assert names(made.allElements()) == names(model.allElements())
        made.rootElements()[0].name = "another"
        assert shop.name == "shop"
        made.close()
    assert copy.deepcopy({"kind": umlmm.VisibilityKind.Public})["kind"] is umlmm.VisibilityKind.Public


@pytest.mark.parametrize("refused, error, text", [
    (lambda shop: copy.copy(shop.asImmutable()), umlmm.Kelm.Error, "Use asMutable"),
    (lambda shop: copy.copy(shop.asDeviant(shop.modelKelm.readOnlyVariant())), umlmm.Kelm.Error, "read-only variant"),
    (lambda shop: shop.asImmutable().clone(), AttributeError, "no attribute 'clone'"),
    (lambda shop: _host.copy(shop.packagedElement), TypeError, "There is no copy of <umlmm.Sequence"),
    (lambda shop: _host.copy(shop.modelKelm, shop), umlmm.Kelm.Error, "does not exist"),
    (lambda shop: (shop.destroy(), shop.clone()), umlmm.Kelm.Error, "does not exist"),
])
def test_what_cannot_be_copied_is_refused(model, shop, refused, error, text):
    with pytest.raises(error, match=text):
        refused(shop)
