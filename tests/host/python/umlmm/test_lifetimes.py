"""How long models live: those of `new_model`, `load` and copies as long as something of them is there, those of the
factory until they are closed."""

import copy
import io
import pickle
import weakref

import pytest
import umlmm

FILE = b"""<?xml version="1.0" encoding="UTF-8"?>
<uml:Model xmi:version="20131001" xmlns:xmi="http://www.omg.org/spec/XMI/20131001"
 xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="_1" name="shop">
  <packagedElement xmi:type="uml:Class" xmi:id="_2" name="Order"/>
</uml:Model>
"""


def new_model():
    model = umlmm.new_model("shop")
    umlmm.Class(owner=model["shop"], name="Order")
    return model


def loaded_model():
    return umlmm.load(io.BytesIO(FILE))


MAKERS = {
    "new_model": new_model,
    "load": loaded_model,
    "copy": lambda: copy.deepcopy(new_model()),
    "pickle": lambda: pickle.loads(pickle.dumps(new_model())),
    "pickled file": lambda: pickle.loads(pickle.dumps(loaded_model())),
}

# What a script may have of a model, and what tells by it that the model is there.
HELD = {
    "model": (lambda model: model, lambda model: len(model.rootElements())),
    "element": (lambda model: model["shop::Order"], lambda element: element.name == "Order"),
    "list": (lambda model: model["shop"].packagedElement, lambda values: values[0].name == "Order"),
    "roots": (lambda model: model.rootElements(), lambda values: values[0].name == "shop"),
    "iterator": (lambda model: iter(model["shop"].packagedElement), lambda values: next(values).name == "Order"),
    "query": (lambda model: model.all(umlmm.Class), lambda values: [value.name for value in values] == ["Order"]),
    "read-only element": (lambda model: model["shop::Order"].asImmutable(), lambda element: element.name == "Order"),
}


class Watched:
    """Goes with the model that it is kept in."""


def watch(model):
    watched = umlmm._front.state(model)["watched"] = Watched()
    return weakref.ref(watched)


@pytest.mark.parametrize("maker", MAKERS)
@pytest.mark.parametrize("held", HELD)
def test_a_model_lives_as_long_as_something_of_it_is_there(maker, held):
    model = MAKERS[maker]()
    watched = watch(model)
    hold, is_there = HELD[held]
    kept = hold(model)
    del model
    assert watched() is not None and is_there(kept)
    del kept
    assert watched() is None


def test_closed_models_and_those_of_the_factory():
    model = umlmm.Factory.createNewModel()
    uri = model.uri
    umlmm.Class(model, name="Order")
    watched = watch(model)
    del model
    assert watched() is not None
    # It is still bound to its uri.
    with umlmm.new_model() as other:
        assert other.uri != uri
        element = umlmm.Class(other)
        watched = watch(other)
    assert watched() is None and not element.isvalid()
    del other, element


def test_uris_of_models_that_went_are_free():
    uri = umlmm.new_model().uri
    assert umlmm.new_model().uri == uri
    model = umlmm.new_model()
    model.uri = "named"
    watched = watch(model)
    del model
    assert watched() is None
