"""Files that nobody would write, and what is left of one when something fails."""

import pathlib
import time

import pytest

import umlmm
from sample_models import ECLIPSE


def test_ids_are_those_of_xmi():
    text = ECLIPSE.replace(b' xmi:id="_i"', b' own:id="other" x:id="_i" xmlns:x="http://www.omg.org/spec/XMI/2.1" x:a:id="more"')
    model = umlmm.load(text)
    assert model.by_id("_i").externalId == "_i" and model.by_id("_o").externalId == "_o"


def test_parts_inside_an_extension_stay_there(tmp_path):
    inside = (b'<xmi:Extension><modelExtension><lowerValue xmi:type="uml:LiteralInteger" xmi:id="_l"/></modelExtension>'
              b'</xmi:Extension>')
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.replace(b'type="_i"/>', b'type="_i">' + inside + b"</ownedAttribute>"))
    model = umlmm.load(path)
    item = model.by_id("_t")
    item.upperValue = umlmm.LiteralUnlimitedNatural(model)
    model.save()
    text = path.read_bytes()
    assert text.count(b"lowerValue") == text.count(inside) == 1 and text.count(b"<upperValue") == 1
    assert umlmm.load(path).report.elements == model.report.elements | {"LiteralUnlimitedNatural": 1}


@pytest.mark.parametrize("end", [b"", b"\n", b"<!-- end -->"])
def test_a_second_root_in_a_file_of_one(tmp_path, end):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.rstrip() + end)
    model = umlmm.load(path)
    umlmm.Package(model).name = "second"
    model.save()
    assert [root.name for root in umlmm.load(path).rootElements()] == ["shop", "second"]


def test_the_one_tag_of_a_file_gives_way_to_another(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE[ECLIPSE.index(b"<uml:Model"):].rstrip())
    model = umlmm.load(path)
    umlmm.Package(model).name = "second"
    model.by_id("_m").destroy()
    model.save()
    assert [root.name for root in umlmm.load(path).rootElements()] == ["second"]


def test_a_prefix_of_nothing_is_not_taken_for_that_of_uml(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.replace(b'<uml:Model ', b'<uml:Model xmi:type="odd:Model" '))
    model = umlmm.load(path)
    model.by_id("_m").packagedElement.append(umlmm.Interface(model))
    model.save()
    assert b'"uml:Interface"' in path.read_bytes()


def test_what_is_at_the_top_survives_the_element_that_it_stands_in(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.replace(b'isAbstract="true"/>',
                                     b'><odd xmi:type="uml:Class" xmi:id="_z" name="Z"/></packagedElement>'))
    model = umlmm.load(path)
    item = model.by_id("_i")
    model.by_id("_m").packagedElement.remove(item)
    for remains in (b"Item", b"shop"):
        model.save()
        assert path.read_bytes().count(b'"_z"') == 1 and remains in path.read_bytes()
        assert model.by_id("_z").owner is None and umlmm.load(path).by_id("_z").name == "Z"
        if item.isvalid():
            item.destroy()


def test_roots_in_roots_survive_once(tmp_path):
    path = tmp_path / "shop.uml"
    path.write_bytes(ECLIPSE.replace(b'isAbstract="true"/>', b'><odd xmi:type="uml:Class" xmi:id="_y"><odd xmi:type="uml:Class"'
                                     b' xmi:id="_z" name="Z"/></odd></packagedElement>'))
    model = umlmm.load(path)
    model.by_id("_i").destroy()
    model.save()
    assert path.read_bytes().count(b'"_z"') == 1 and umlmm.load(path).report.elements["Class"] == 3


def test_a_file_in_the_frame_of_xmi_1_is_not_opened_empty():
    with pytest.raises(umlmm.files.NotUml, match="UML 2.0 in XMI 1.1"):
        umlmm.load(b'<XMI xmi.version="1.1" xmlns:UML="http://omg.org/UML2.0"><UML:Project/><UML:Class xmi.id="a"/></XMI>')


def many(count, root, part):
    roots, parts = (b"".join(text.replace(b"%d", b"%d" % i) for i in range(count)) for text in (root, part))
    return ECLIPSE.replace(b' name="shop"', roots).replace(b"</uml:Model>", parts + b"</uml:Model>")


@pytest.mark.parametrize("text", [
    many(10_000, b"", b'<packagedElement xmi:type="uml:Class" name="C%d"><ownedAttribute type="//C9999"/></packagedElement>'),
    many(80_000, b' xmlns:p%d="http://p"', b'<ownedComment p%d:a="1"/>')], ids=["names", "prefixes"])
def test_what_many_look_for_is_found_at_once(text):
    start = time.process_time()
    umlmm.load(text).close()
    assert time.process_time() - start < 3


SEEDS = sorted((pathlib.Path(__file__).parents[4] / "fuzz" / "files" / "seeds").iterdir())


@pytest.mark.parametrize("path", SEEDS, ids=lambda path: path.name)
def test_damaged_files_give_a_model_or_a_sentence(path):
    text = path.read_bytes()
    for at in range(0, len(text), 97):
        for damaged in (text[:at], text[:at] + b"<" + text[at + 1:], text[:at] + b"\0" + text[at + 1:]):
            try:
                model = umlmm.load(damaged)
                assert umlmm.files.text(model) == damaged
            except umlmm.files.Error as error:
                assert len(str(error)) > 20
