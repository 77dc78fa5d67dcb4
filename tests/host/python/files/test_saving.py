"""Saving from scripts."""

import io
import os

import pytest

import umlmm
from sample_models import DIALECTS, ECLIPSE, WINDOWS
from umlmm import files


@pytest.mark.parametrize("name", DIALECTS)
def test_a_changed_name_changes_its_attribute_alone(tmp_path, name):
    path = tmp_path / "shop.xmi"
    path.write_bytes(DIALECTS[name])
    model = umlmm.load(path)
    model.save()
    assert path.read_bytes() == DIALECTS[name]
    model.by_id("_o").name = "Bill"
    model.save()
    assert path.read_bytes() == DIALECTS[name].replace(b"Order", b"Bill")
    model.by_id("_o").name = "Order"
    model.save()
    assert path.read_bytes() == DIALECTS[name] and os.listdir(tmp_path) == ["shop.xmi"]


def test_what_somebody_else_has_changed_is_kept(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE)
    model = umlmm.load(path)
    path.write_bytes(ECLIPSE.replace(b"Order", b"Theirs"))
    model.by_id("_o").name = "Ours"
    with pytest.raises(files.Error, match="force"):
        model.save()
    assert b"Theirs" in path.read_bytes()
    model.save(force=True)
    assert b"Ours" in path.read_bytes()


def test_where_a_model_can_be_saved_to(tmp_path, monkeypatch):
    (tmp_path / "shop.uml").write_bytes(ECLIPSE)
    monkeypatch.chdir(tmp_path)
    model = umlmm.load("shop.uml")
    model.by_id("_o").name = "Bill"
    (tmp_path / "elsewhere").mkdir()
    monkeypatch.chdir(tmp_path / "elsewhere")
    model.save("copy.uml")
    stream = io.BytesIO()
    model.save(stream)
    assert (tmp_path / "elsewhere" / "copy.uml").read_bytes() == stream.getvalue() == ECLIPSE.replace(b"Order", b"Bill")
    model.save()
    assert (tmp_path / "shop.uml").read_bytes() == stream.getvalue()
    with pytest.raises(files.Error, match="nowhere"):
        model.save(tmp_path / "nowhere" / "shop.uml")
    with pytest.raises(files.Error, match="omg-2.5.1"):
        model.save("other.xmi", dialect="latin")
    assert os.listdir(".") == ["copy.uml"]


@pytest.mark.parametrize("dialect, namespace", [("omg-2.5.1", b"http://www.omg.org/spec/UML/20131001"),
                                                ("eclipse", b"http://www.eclipse.org/uml2/5.0.0/UML")])
def test_converted_models_are_equal(dialect, namespace):
    model = umlmm.load(WINDOWS)
    text = files.text(model, dialect=dialect)
    again = umlmm.load(text)
    assert namespace in text and told(again) == told(model)


def told(model):
    return [(type(element), element.body if isinstance(element, umlmm.Comment) else element.qualifiedName)
            for element in model.allElements()]


def test_a_model_deeper_than_the_stack_is_written():
    depth = 50_000
    tag = b'<packagedElement xmi:type="uml:Package">'
    model = umlmm.load(ECLIPSE.replace(b"</uml:Model>", tag * depth + b"</packagedElement>" * depth + b"</uml:Model>"))
    text = files.text(model, dialect="omg-2.5.1")
    assert len(text) < 800 * depth and umlmm.load(text).report.element_count == model.report.element_count == depth + 4


def test_a_model_without_elements_is_not_written(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE)
    model = umlmm.load(path)
    model.by_id("_m").destroy()
    for target in (None, tmp_path / "other.uml"):
        with pytest.raises(files.Error, match="no elements"):
            model.save(target)
    assert path.read_bytes() == ECLIPSE and os.listdir(tmp_path) == ["shop.uml"]


def test_what_stood_in_an_uncovered_part_of_what_goes_stays(tmp_path):
    path = tmp_path / "a.uml"
    path.write_text("""<uml:Package xmlns:xmi="http://www.omg.org/XMI" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="p">
  <packagedElement xmi:type="uml:Class" xmi:id="c"><ownedBehavior xmi:type="uml:StateMachine"><region>
    <transition><effect xmi:type="uml:Activity" xmi:id="a" name="A"><node xmi:type="uml:InitialNode" name="N"/></effect></transition>
  </region></ownedBehavior></packagedElement>
</uml:Package>""")
    model = umlmm.load(path)
    model.by_id("c").destroy()
    model.save()
    again = umlmm.load(path)
    assert [element.MetaClass().name for element in model.allElements()] == ["Package", "Activity", "InitialNode"]
    assert [element.MetaClass().name for element in again.allElements()] == ["Package", "Activity", "InitialNode"]


def test_what_led_nowhere_and_would_lead_to_something_is_asked_for(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.replace(b'type="_i"', b'type="//New"'))
    before = path.read_bytes()
    model = umlmm.load(path)
    model.by_id("_i").name = "New"
    with pytest.raises(files.Error, match='Order::item.*type.*:4.*"//New" led nowhere'):
        model.save()
    assert path.read_bytes() == before
    model.by_id("_t").type = model.by_id("_i")
    model.save()
    assert umlmm.load(path).by_id("_t").type.name == "New"
