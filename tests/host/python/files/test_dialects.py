"""What tools write in ways of their own: each with the elements that it means, and saved to the same bytes."""

import pytest

import umlmm
from umlmm import files

OMG = "http://www.omg.org/spec/UML/20131001"
OLD = "http://schema.omg.org/spec/UML/2.0"
ECLIPSE = "http://www.eclipse.org/uml2/5.0.0/UML"


def document(body, uml=OMG):
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n<!-- a tool -->\n<xmi:XMI xmlns:xmi="http://schema.omg.org/spec/XMI/2.1" '
            f'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:uml="{uml}">\n{body}\n</xmi:XMI>\n').encode()


def names(model):
    return [element.qualifiedName for element in model.allElements() if isinstance(element, umlmm.NamedElement)]


CLASS = '<uml:Class xmi:id="c" name="C"/>'


@pytest.mark.parametrize("address", [
    "http://schema.omg.org/spec/UML/2.1.2", "http://schema.omg.org/spec/UML/2.1/uml.xml", "https://www.omg.org/spec/UML/20161101",
    "http://www.omg.org/spec/UML/20110701/UML.xmi", "http://www.omg.org/spec/UML/2.4.1/Superstructure.cmof",
    "http://www.omg.org/spec/UML", "http://www.eclipse.org/uml2/1.0.0/UML", "https://www.eclipse.org/UML2/3.0.0/UML/"])
def test_addresses_of_uml(address):
    assert umlmm.load(document(CLASS, address)).report.elements == {"Class": 1}


@pytest.mark.parametrize("text", [
    document(CLASS, OMG + "/StandardProfile"), document(CLASS, ECLIPSE + "/Profile/Standard"),
    document(CLASS, "http://www.omg.org/UML/1.3"), document(CLASS, "http://www.omg.org/spec/UMLDI/20131001"),
    document('<uml:Class href="other.uml#c"/>'),
    b'<a xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:type="Class"/>'])
def test_what_only_looks_like_uml(text):
    with pytest.raises(files.NotUml):
        umlmm.load(text)


# Text, elements by metaclass, and what must hold.
CASES = {
    "names of lists that follow from others": (OLD, """
<uml:Class xmi:id="c"><ownedPort xmi:type="uml:Port" xmi:id="p"/><ownedPort xmi:id="q" name="Q"/>
<ownedMember xmi:type="uml:Class" xmi:id="n"/><ownedMember xmi:type="uml:Constraint" xmi:id="r"/></uml:Class>
<uml:Profile xmi:id="f"><ownedStereotype xmi:id="s"/></uml:Profile><uml:Package xmi:id="o"><ownedStereotype xmi:id="v"/></uml:Package>""",
        {"Class": 2, "Port": 2, "Constraint": 1, "Profile": 1, "Stereotype": 2, "Package": 1},
        "list(c.ownedAttribute) == [p, q] and n.owner is c and list(c.ownedRule) == [r] and s.owner is f and v.owner is o"),
    "inside what isn't covered": (ECLIPSE, """
<uml:StateMachine xmi:id="m"><region xmi:id="g"><transition xmi:id="t" guard="r"><trigger xmi:id="tr" name="T"/><ownedRule xmi:id="r" name="R"/>
<ownedComment xmi:id="k" body="why"/><effect xmi:type="uml:Activity" xmi:id="e"/></transition></region>
<ownedAttribute xmi:id="a" name="A"/><ownedTemplateSignature xmi:id="ts"><ownedParameter xmi:id="tp"/></ownedTemplateSignature><eAnnotations><contents xmi:type="uml:Class"/></eAnnotations></uml:StateMachine>
<uml:Class xmi:id="c"/>""",
        {"Constraint": 1, "Comment": 1, "Activity": 1, "Property": 1, "Class": 1, "Trigger": 1}, "r.name == 'R' and k.body == 'why'"),
    "features that the metamodel lacks": (ECLIPSE, """
<uml:Activity xmi:id="a"><node xmi:type="uml:OpaqueAction" xmi:id="o"><localPrecondition xmi:id="l" name="L"/></node>
<node xmi:type="uml:AddStructuralFeatureValueAction" xmi:id="v"><result xmi:id="r" name="R"/></node>
<node xmi:type="uml:CreateLinkAction" xmi:id="k"><endData xmi:id="d"><qualifier xmi:id="q"/></endData></node>
<node xmi:type="uml:Action" xmi:id="b"/></uml:Activity>""",
        {"Activity": 1, "OpaqueAction": 1, "Constraint": 1, "AddStructuralFeatureValueAction": 1, "OutputPin": 1,
         "CreateLinkAction": 1, "LinkEndCreationData": 1}, "l.name == 'L' and r.name == 'R'"),
    "whole elements where references stand": (OMG, """
<uml:Property xmi:id="p"><type xmi:type="uml:DataType" xmi:id="t"/></uml:Property>
<uml:Component xmi:id="c"><provided xmi:type="uml:Interface" xmi:id="i"/></uml:Component>""",
        {"Property": 1, "DataType": 1, "Component": 1, "Interface": 1}, "p.type is t and i.owner is None"),
    "ids with blanks and signs, and none": (OMG, """
<uml:Class xmi:id="" name="A"/><uml:Class xmi:id="x#y" name="B"/><uml:Class xmi:id="x y z" name="C"/>
<uml:Property xmi:id="p" type="x y z"/><uml:Dependency xmi:id="d" client="x y z x#y p" supplier="gone p x y z"/>""",
        {"Class": 3, "Property": 1, "Dependency": 1}, """p.type.name == 'C' and [e.name for e in d.client] == ['C', 'B', '']
        and [e.name for e in d.supplier] == ['', 'C'] and [u.address for u in model.unresolved] == ['gone']"""),
    "one type under many addresses": (OMG, "".join(f"""<uml:Property><type href="{address}">
<xmi:Extension><referenceExtension referentPath="{path}"/></xmi:Extension></type></uml:Property>""" for address, path in [
        ("http://www.omg.org/spec/UML/20131001/PrimitiveTypes.xmi#String", ""), ("http://schema.omg.org/spec/UML/2.1/String", ""),
        ("http://www.omg.org/spec/PrimitiveTypes/20110701#String", ""), ("http://www.eclipse.org/uml2/5.0.0/Types#//String", ""),
        ("pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#_String?a/b?", ""),
        ("x.mdzip#_9_0_62", "UML Standard Profile::UML2 Metamodel::PrimitiveTypes::String")]),
        {"Property": 6}, "len({e.type for e in model.rootElements() if isinstance(e, umlmm.Property)}) == 1 and not model.unresolved"),
    "unlimited": (OMG, "".join(f"""<uml:Property><upperValue xmi:type="uml:Literal{kind}" value="{value}"/></uml:Property>"""
        for kind, value in [("Integer", "*"), ("Integer", "-1"), ("UnlimitedNatural", "-1"), ("UnlimitedNatural", "n")]),
        {"Property": 4, "LiteralInteger": 2, "LiteralUnlimitedNatural": 2},
        "[str(e.upper) for e in model.rootElements()] == ['*'] * 4"),
    "what follows from others, and is written all the same": (OMG, """
<uml:Property xmi:id="p" upper="*" default="5" isComposite="true"><upperValue xmi:type="uml:LiteralInteger" value="3"/>
<defaultValue xmi:type="uml:LiteralString" value="q"/></uml:Property><uml:Property xmi:id="r" upper="*"/>""",
        {"Property": 2, "LiteralInteger": 1, "LiteralString": 1}, """(str(p.upper), p.default, p.isComposite, str(r.upper)) == ('3', 'q', True, '*')
        and model.rootElements() == [p, r]"""),
    "beside what isn't covered": (OMG, """
<uml:CommunicationPath xmi:id="w"><ownedEnd xmi:id="e" name="E"/></uml:CommunicationPath>
<uml:Collaboration xmi:id="c"><collaborationUse xmi:id="u"><roleBinding xmi:id="b"/></collaborationUse></uml:Collaboration>
<uml:Activity xmi:id="a"><node xmi:type="uml:AcceptCallAction"><returnInformation xmi:id="o"/></node>
</uml:Activity><uml:ReplyAction><returnInformation xmi:id="i"/></uml:ReplyAction>
<uml:StateMachine><xmi:Extension><modelExtension><ownedComment xmi:type="uml:Comment" xmi:id="k" body="K"/></modelExtension></xmi:Extension></uml:StateMachine>""",
        {"Property": 1, "Dependency": 1, "Activity": 1, "OutputPin": 1, "InputPin": 1, "Comment": 1}, "(e.name, k.body) == ('E', 'K')"),
    "several blocks of a tool in an element": (OMG, """
<uml:Property xmi:id="p"><xmi:Extension><modelExtension><lowerValue xmi:type="uml:LiteralInteger" xmi:id="l"/></modelExtension>
<other/><modelExtension><upperValue xmi:type="uml:LiteralUnlimitedNatural" xmi:id="u" value="*"/></modelExtension></xmi:Extension></uml:Property>""",
        {"Property": 1, "LiteralInteger": 1, "LiteralUnlimitedNatural": 1}, "p.lower == 0 and str(p.upper) == '*'"),
    "unknown attributes and parts with elements of their own": (OMG, """
<uml:Class xmi:id="c" isFinalSpecialization="true"><ownedBehavior xmi:type="uml:StateMachine" xmi:id="m"><region xmi:id="g"><subvertex xmi:id="s">
<entry xmi:type="uml:OpaqueBehavior" xmi:id="b" name="B"><body>x</body></entry></subvertex></region></ownedBehavior></uml:Class>""",
        {"Class": 1, "OpaqueBehavior": 1}, """b.owner is None and '<isFinalSpecialization>true<' in str(files.text(model, dialect='eclipse'))
        and b'xmi:type="uml:OpaqueBehavior" xmi:id="b"' in files.text(model, dialect='eclipse')"""),
    "known by uuid": (OMG, """
<uml:Class xmi:uuid="one" name="A"/><uml:Class xmi:id="c" xmi:uuid="two"/>
<uml:Dependency xmi:id="d" client="one two"><supplier xmi:uuidref="two"/><supplier href="#one"/></uml:Dependency>""",
        {"Class": 2, "Dependency": 1}, "[e.name for e in d.client] == ['A', ''] and d.supplier[0] is c and len(d.supplier) == 2"),
    "a part in a list of another kind": ("http://www.eclipse.org/uml2/1.0.0/UML", """
<uml:Model xmi:id="m"><packageImport xmi:type="uml:ProfileApplication" xmi:id="a"><importedProfile xmi:idref="f"/></packageImport>
<ownedMember xmi:type="uml:Component" xmi:id="c"><realization xmi:type="uml:Realization" xmi:id="r"/></ownedMember>
<ownedMember xmi:type="uml:Profile" xmi:id="f"/></uml:Model>""",
        {"Model": 1, "ProfileApplication": 1, "Component": 1, "Realization": 1, "Profile": 1},
        "list(m.profileApplication) == [a] and a.appliedProfile is f and r.owner is c and not m.packageImport"),
    "names of features whose metaclass is not here": (OLD, """
<uml:Class xmi:id="c" containedNode="c"><containedEdge xmi:type="uml:ControlFlow" xmi:id="e"/></uml:Class>
<uml:Class xmi:id="d" containedEdge="c"><containedNode xmi:idref="c"/></uml:Class>""",
        {"Class": 2, "ControlFlow": 1}, "e.owner is None"),
    "kinds of metaclasses that are gone": (OLD, """
<uml:Interaction xmi:id="i"><fragment xmi:type="uml:ExecutionOccurrence"/><fragment xmi:type="uml:InteractionOccurrence"/>
<formalGate xmi:type="gate"/></uml:Interaction>""",
        {"Interaction": 1, "BehaviorExecutionSpecification": 1, "InteractionUse": 1, "Gate": 1}, "len(i.fragment) == 2"),
}


@pytest.mark.parametrize("name", CASES)
def test_what_tools_mean(name):
    uml, body, elements, holds = CASES[name]
    text = document(body, uml)
    model = umlmm.load(text)
    assert model.report.elements == elements and files.text(model) == text
    named = {element.externalId: element for element in model.allElements() if element.externalId}
    assert eval(" ".join(holds.split()), {"model": model, "umlmm": umlmm, "files": files, **named})  # of the table above
    for element in named.values():
        if hasattr(element, "name") and not element.name:
            element.name = "named"
    for dialect in (None, "eclipse", "omg-2.5.1"):
        again = umlmm.load(files.text(model, dialect=dialect))
        assert elements.items() <= again.report.elements.items() and sorted(names(again)) == sorted(names(model)), dialect


@pytest.mark.parametrize("version, expected", [("2.2", False), ("2.3", True), ("20081001", False), ("20090901", True)])
def test_the_default_of_the_version_of_a_file(version, expected):
    model = umlmm.load(document('<uml:OpaqueBehavior xmi:id="b"/>', f"http://www.omg.org/spec/UML/{version}"))
    assert model.by_id("b").isReentrant is expected


def test_what_a_tool_keeps_in_its_extension():
    entry = """<attribute xmi:idref="a"><stereotype stereotype="key &amp; more"/><documentation value="why"/>
<xrefs value="Name=key &amp; more;FQName=Data::key &amp; more;"/></attribute>"""
    text = document(f"""<uml:Class xmi:id="c"><ownedAttribute xmi:type="uml:Property" xmi:id="a"/></uml:Class>
<D:Table xmlns:D="http://d" base_Class="c"/><xmi:Extension extender="Enterprise Architect"><elements>
<element xmi:idref="c"><properties stereotype="Table"/><tags><tag name="k" value="v"/></tags><attributes>{entry}</attributes></element>
<element xmi:idref="gone"><properties stereotype="Table"/></element></elements></xmi:Extension>""")
    model = umlmm.load(text)
    table, key = model.by_id("c"), model.by_id("a")
    assert [(one.name, one.profile, one.values) for one in table.stereotypes + key.stereotypes] == [
        ("Table", "D", {}), ("", "", {"k": "v"}), ("key & more", "Data", {"documentation": "why"})]
    assert model.stereotyped("Table") == [table] and model.stereotyped("key & more") == [key]
    assert model.report.stereotype_count == 2 and [unknown.tag for unknown in key.unknown] == ["attribute"]
    assert files.text(model) == text and b"key" not in files.text(model, dialect="omg-2.5.1")
    key.destroy()
    assert entry.encode() not in files.text(model) and b'<tag name="k" value="v"/>' in files.text(model)


def test_addresses_of_other_files(tmp_path):
    (tmp_path / "parts").mkdir()
    shop, part = tmp_path / "shop.uml", tmp_path / "parts" / "a part.uml"
    addresses = ["parts/a%20part.uml#b", f"platform:/resource/{tmp_path.name}/parts/a%20part.uml#b", "pathmap://MINE/a%20part.uml#b?B?",
                 "parts/a%20part.uml#/"]
    shop.write_bytes(document('<uml:Package xmi:id="a">' + "".join(
        f'<packageImport><importedPackage href="{address}"/></packageImport><packageImport importedPackage="{address}"/>'
        for address in addresses) + '<packageImport importedPackage="shop.uml#a"/></uml:Package>'))
    part.write_bytes(document('<uml:Package xmi:id="b" name="B"><packageImport importedPackage="../shop.uml#a"/></uml:Package>'))
    before = shop.read_bytes()
    model = umlmm.load_all([shop, part], paths={"pathmap://MINE/": f"{tmp_path}/parts/"})
    assert model.unresolved == [] and {one.importedPackage for one in model.by_id("a").packageImport} == {model.by_id("a"), model.by_id("b")}
    model.by_id("b").name = "C"
    model.save()
    assert shop.read_bytes() == before and b'name="C"' in part.read_bytes()
    assert len(umlmm.load(shop).unresolved) == 8


def test_what_followed_goes_with_what_it_follows_from(tmp_path):
    path = tmp_path / "a.xmi"
    path.write_bytes(document('<uml:Property xmi:id="p" upper="*" name="P"/><uml:Property xmi:id="q" default="5">'
                              '<defaultValue xmi:type="uml:LiteralString" xmi:id="v" value="w"/></uml:Property>'))
    model = umlmm.load(path)
    model.by_id("p").upper = 7
    model.by_id("v").destroy()
    model.save()
    assert b'<uml:Property xmi:id="p" name="P">' in path.read_bytes() and b"default" not in path.read_bytes()
    assert str(umlmm.load(path).by_id("p").upper) == "7"
