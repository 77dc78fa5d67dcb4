"""Models of every dialect, changed at random from fixed seeds and in ways that are hard to write: what is saved is what
is in the model. Saving itself reads what it is about to write and holds it against the model, so an edit that it can't
write raises."""

import random

import pytest

import umlmm
from comparing import differences
from editing import Editor
from sample_models import DIALECTS, ECLIPSE, OMG, STRANGE
from umlmm import files

TWICE = OMG.replace(b"</packagedElement>", b"""
<ownedOperation xmi:type='uml:Operation' xmi:id='_f' name='one'>
<ownedRule xmi:type='uml:Constraint' xmi:id='_r' name='r1'/><precondition xmi:idref='_r'/></ownedOperation>
<ownedOperation xmi:type='uml:Operation' xmi:id='_f' name='two'>
<ownedRule xmi:type='uml:Constraint' xmi:id='_r' name='r2'/><precondition xmi:idref='_r'/></ownedOperation>
</packagedElement>""", 1)
WRAPPED = OMG.replace(b"<type xmi:idref='_i'/>", b"""<xmi:Extension extender='tool'><modelExtension>
<upperValue xmi:type='uml:LiteralUnlimitedNatural' value='*'/></modelExtension></xmi:Extension>""")
TYPED = ECLIPSE.replace(b'type="_i"/>', b'><type xmi:type="uml:PrimitiveType" '
                        b'href="pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#String"/></ownedAttribute>')

SPECIAL = OMG.replace(b"</packagedElement>", b"""<ownedOperation xmi:type='uml:Operation' xmi:id='_f'>
<bodyCondition xmi:type='uml:Constraint' xmi:id='_b'/><ownedRule xmi:type='uml:Constraint' xmi:id='_r'/>
</ownedOperation></packagedElement>""", 1)

# A feature under both of its names, an element where it is referred to, and an edge that three nodes claim.
ODD = ECLIPSE.replace(b'type="_i"/>', b'''><type xmi:type="uml:Class" xmi:id="_w" name="Whole"/></ownedAttribute>
<ownedOperation xmi:id="_f"><ownedParameter xmi:id="_p" kind="in" direction="out"/></ownedOperation>''').replace(
    b"</uml:Model>", b"""  <packagedElement xmi:type="uml:Activity" xmi:id="_a"><node xmi:type="uml:InitialNode" xmi:id="_1"/>
<node xmi:type="uml:MergeNode" xmi:id="_2" incoming="_e"/><node xmi:type="uml:MergeNode" xmi:id="_3" incoming="_e"/>
<edge xmi:type="uml:ControlFlow" xmi:id="_e" source="_1" target="_1"/></packagedElement>\n</uml:Model>""")

CHANGED = DIALECTS | {"strange": STRANGE, "twice": TWICE, "wrapped": WRAPPED, "typed": TYPED, "special": SPECIAL, "odd": ODD}

# A weight that no metaclass has a place for stands at the top of the model, and in the tag of another element.
INSIDE = ECLIPSE.replace(b"</uml:Model>", b"""  <packagedElement xmi:type="uml:Activity" xmi:id="_a">
<edge xmi:type="uml:ControlFlow" xmi:id="_e"><weight xmi:type="uml:LiteralInteger" xmi:id="_w" value="3"/></edge>
</packagedElement></uml:Model>""").strip()
CHANGED["inside"] = INSIDE


def part(model, owner, feature, kind, **values):
    made = kind(model)
    getattr(owner, feature).append(made)
    for name, value in values.items():
        setattr(made, name, value)
    return made


def realize(model):
    part(model, model.by_id("_m"), "packagedElement", umlmm.Dependency, client=[model.by_id("_o")])
    part(model, model.by_id("_o"), "interfaceRealization", umlmm.InterfaceRealization)


def before(model):
    part(model, model.by_id("_m"), "packagedElement", umlmm.Class)
    model.by_id("_i").package = None


def string(model):
    return model.by_id("_t").type


def operations(model):
    return {operation.name: operation for operation in model.by_id("_o").ownedOperation}


EDITS = {
    "in front of what moves": (b"".join(map(bytes.strip, ECLIPSE.splitlines())), before),
    "an end that files leave to the other one": (ECLIPSE, realize),
    "no value where there is a default": (OMG, lambda model: part(
        model, model.by_id("_o"), "generalization", umlmm.Generalization).unset("isSubstitutable")),
    "no value any more": (ECLIPSE.replace(b'name="Order">', b'name="Order"><generalization xmi:id="_g" '
                                          b'isSubstitutable="false" general="_i"/>'),
                          lambda model: model.by_id("_g").unset("isSubstitutable")),
    "beside what a tool has wrapped": (WRAPPED, lambda model: part(
        model, model.by_id("_t"), "qualifier", umlmm.Property)),
    "inside of what goes": (INSIDE, lambda model: model.by_id("_e").destroy()),
    "behind the only root": (INSIDE, lambda model: setattr(model.by_id("_i"), "package", None)),
    "an id that means another element": (TWICE, lambda model: part(
        model, model.by_id("_m"), "ownedComment", umlmm.Comment,
        annotatedElement=[operations(model)["two"], operations(model)["one"]])),
    "beside a part in a special feature": (SPECIAL, lambda model: part(
        model, model.by_id("_f"), "ownedParameter", umlmm.Parameter)),
    "in front of a part in a special feature": (SPECIAL, lambda model: model.by_id("_f").ownedRule.reverse()),
    "a feature under two names": (ODD, lambda model: setattr(
        model.by_id("_p"), "direction", umlmm.ParameterDirectionKind.Inout)),
    "an element that stands where it is referred to": (ODD, lambda model: setattr(
        model.by_id("_w"), "package", model.by_id("_m"))),
    "another one in the place of an element": (ODD, lambda model: setattr(model.by_id("_t"), "type", model.by_id("_i"))),
    "a link that the file tells in three ways": (ODD, lambda model: model.by_id("_e").unset("target")),
    "a standard type with a comment": (TYPED, lambda model: part(model, string(model), "ownedComment", umlmm.Comment)),
    "a standard type with another name": (TYPED, lambda model: setattr(string(model), "name", "Text")),
    "a standard type as a part": (TYPED, lambda model: model.by_id("_m").packagedElement.append(string(model))),
}


@pytest.mark.parametrize("name", EDITS)
def test_what_is_hard_to_write(tmp_path, name):
    text, edit = EDITS[name]
    path = tmp_path / "model.xmi"
    path.write_bytes(text)
    model = umlmm.load(path)
    edit(model)
    model.save()
    assert differences(model, umlmm.load(path)) == []
    check_conversions(model)


def test_parts_stay_with_their_owner_when_an_id_is_declared_twice():
    model = umlmm.load(TWICE)
    assert {name: [rule.name for rule in operation.precondition] for name, operation in operations(model).items()} \
        == {"one": ["r1"], "two": ["r2"]}


def check_conversions(model):
    for dialect in ("omg-2.5.1", "eclipse"):
        assert differences(model, umlmm.load(files.text(model, dialect=dialect))) == []


def change_and_save(path, seed, rounds, count):
    """Changes the model of a file at random, and holds each saving against what can be read then."""
    model = umlmm.load(path)
    editor = Editor(model, random.Random(seed))
    for _ in range(rounds):
        editor.edit(count)
        model.save()
        assert differences(model, umlmm.load(path)) == []
        written = path.read_bytes()
        model.save()
        assert path.read_bytes() == written
    assert editor.done > rounds * count / 2
    return model


@pytest.mark.parametrize("name", CHANGED)
@pytest.mark.parametrize("seed", range(5))
def test_random_changes(tmp_path, name, seed):
    path = tmp_path / "model.xmi"
    path.write_bytes(CHANGED[name])
    check_conversions(change_and_save(path, seed, 3, 12))
