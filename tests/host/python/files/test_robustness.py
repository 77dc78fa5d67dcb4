"""Files that nobody would write, and what is left of one when something fails."""

import pytest

import umlmm
from sample_models import ECLIPSE


def test_ids_are_those_of_xmi():
    text = ECLIPSE.replace(b' xmi:id="_i"', b' own:id="other" x:id="_i" xmlns:x="http://www.omg.org/spec/XMI/2.1" own:id="more"')
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
    assert text.count(b"lowerValue") == 2 and text.count(inside) == 1 and text.count(b"<upperValue") == 1
    assert umlmm.load(path).report.elements == model.report.elements | {"LiteralUnlimitedNatural": 1}
