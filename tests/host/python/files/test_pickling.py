"""Models that cross into another process, and models made in memory that get a file."""

import multiprocessing
import pickle

import umlmm
from sample_models import ECLIPSE


def names(model):
    return [element.name for element in model.allElements()]


def made():
    model = umlmm.Factory.createNewModel()
    package, first, second = umlmm.Package(model), umlmm.Class(model), umlmm.Class(model)
    package.packagedElement = [first, second]
    package.name, first.name, second.name = "shop", "Order", "Item"
    return model, first


def test_models_elements_and_literals_cross():
    model, first = made()
    again, element, owner = pickle.loads(pickle.dumps((model, first, first.owner)))
    assert names(again) == names(model) and element.name == "Order" and element.owner is owner
    assert again is not model and owner.modelKelm is again
    literal = umlmm.VisibilityKind.Private
    assert pickle.loads(pickle.dumps(literal)) is literal
    assert names(pickle.loads(pickle.dumps(umlmm.Factory.createNewModel()))) == []
    read = umlmm.load(ECLIPSE)
    read.by_id("_o").name = "Bill"
    assert pickle.loads(pickle.dumps(read)).by_id("_o").name == "Bill"
    with multiprocessing.get_context("spawn").Pool(1) as pool:
        assert pool.apply(names, (model,)) == names(model)


def test_a_model_made_in_memory_gets_a_file(tmp_path):
    model, first = made()
    path = tmp_path / "shop.uml"
    model.save(path, dialect="eclipse")
    before = path.read_bytes()
    assert b'xmi:type="uml:Class"' in before and model.by_id(first.externalId) is first
    first.name = "Bill"
    model.save()
    assert path.read_bytes() == before.replace(b"Order", b"Bill")
    assert names(umlmm.load(path)) == names(model)
