"""Long texts are read piece by piece: it must not matter where a piece ends."""

import json

import pytest
import umlmm

from umlmm import files

LENGTH = 65_536
HEAD = b"""<?xml version="1.0"?>
<xmi:XMI xmi:version="2.1" xmlns:uml="http://schema.omg.org/spec/UML/2.1" xmlns:xmi="http://schema.omg.org/spec/XMI/2.1">
<uml:Model xmi:type="uml:Model" name="shop" xmi:id="_m">"""
BODY = b"""
 <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order &amp; more"><!-- <packagedElement> -->
  <ownedComment xmi:type="uml:Comment" xmi:id="_c"><body>a <![CDATA[<b> c]]> d</body></ownedComment>
  <ownedAttribute xmi:type="uml:Property" xmi:id="_t" name="item">
   <type xmi:idref="_i"/><xmi:Extension extender="x"><modelExtension>
    <lowerValue xmi:type="uml:LiteralInteger" xmi:id="_l" value="3"/></modelExtension></xmi:Extension>
  </ownedAttribute>
  <region xmi:type="uml:Region" xmi:id="_r"><subvertex xmi:type="uml:State"><entry xmi:type="uml:Activity" xmi:id="_e"/>
  </subvertex></region>
  <eAnnotations source="note"><details key="colour" value="red"/></eAnnotations>
 </packagedElement>
 <packagedElement xmi:type="uml:Class" xmi:id="_i" name="Item"><isAbstract>true</isAbstract></packagedElement>
 <packagedElement xmi:type="uml:Class" xmi:id="_i" name="Again"/>
 <node xmi:type="uml:AcceptCallAction"><returnInformation xmi:id="_u" name="info"/><xmi:Extension extender="x">
  <modelExtension><entry xmi:type="uml:Activity" xmi:id="_f" xmi:uuid="u&#45;1"/></modelExtension></xmi:Extension></node>
 <packagedElement xmi:type="uml:Class" xmi:id="_j"><classifierBehavior xmi:uuidref="u-1"/></packagedElement>
</uml:Model>
<xmi:Extension extender="Enterprise Architect"><elements>
 <element xmi:idref="_o"><properties stereotype="table" documentation="told"/></element>
</elements></xmi:Extension>
<p:Row xmlns:p="http://example.org/p"><base_Class xmi:idref="_i"/></p:Row>
</xmi:XMI>
"""


def told(text):
    model = umlmm.load(text)
    report = {key: value for key, value in json.loads(model.report.json()).items() if "time" not in key and key != "files"}
    elements = [(type(element), element.externalId, element.qualifiedName if isinstance(element, umlmm.NamedElement)
                 else element.body if isinstance(element, umlmm.Comment) else None,
                 [str(part) for part in element.unknown], [(one.name, one.values) for one in element.stereotypes])
                for element in model.allElements()]
    bounds = [(element.lower, element.type.name) for element in model.allElements()
              if isinstance(element, umlmm.Property)]
    return report, elements, bounds


def filled(until):
    """The text, the body from so many bytes before the end of its first piece on."""
    return HEAD + b"<!---->" * ((LENGTH - len(HEAD) - until) // 7) + BODY


@pytest.mark.parametrize("first", range(0, len(BODY), 97))
def test_a_piece_may_end_anywhere(first):
    wanted = told(HEAD + BODY)
    for until in range(first, min(first + 97, len(BODY)), 7):
        assert told(filled(until)) == wanted, until


def test_what_is_longer_than_a_piece():
    words = b"word " * LENGTH
    text = filled(300).replace(b"told", words).replace(b"CDATA[", b"CDATA[" + words)
    model = umlmm.load(text.replace(b"<!-- <packaged", b"<!-- " + words + b"<packaged"))
    comment = model.by_id("_c")
    assert comment.body == "a " + words.decode() + "<b> c d"
    model.by_id("_o").name = "Row"
    assert umlmm.load(files.text(model)).by_id("_o").name == "Row"


@pytest.mark.parametrize("right, wrong", [(b"</region>", b"</regions>"), (b"</p:Row>", b""), (b'key="colour"', b"key=colour")])
def test_failures_in_later_pieces_tell_their_place(right, wrong):
    text = HEAD + b"<!---->" * LENGTH + BODY.replace(right, wrong)
    with pytest.raises(files.ReadError) as later:
        umlmm.load(text)
    with pytest.raises(files.ReadError) as first:
        umlmm.load(HEAD + BODY.replace(right, wrong))
    assert later.value.line == first.value.line > 3
