"""Applied stereotypes: what is changed is seen at once, and saving changes the text where they stand and nowhere else."""

import copy
import pickle
import random

import pytest

import umlmm
from sample_models import STRANGE
from umlmm import files

HEAD = (b'<?xml version="1.0" encoding="UTF-8"?>\n<xmi:XMI xmlns:xmi="http://www.omg.org/spec/XMI/20131001" '
        b'xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmlns:P="http://p/1" xmlns:P_1="http://p/2">\n')
TEXT = HEAD + b"""\
  <uml:Model xmi:id="m" name="M">
    <packagedElement xmi:type="uml:Package" xmi:id="p" name="P">
      <packagedElement xmi:type="uml:Class" xmi:id="a" name="A">
        <ownedAttribute xmi:id="t" name="t"/>
      </packagedElement>
      <P:Inside xmi:id="s1" base_Class="a" tag="in"/>
    </packagedElement>
    <packagedElement xmi:type="uml:Class" xmi:id="b" name="B"/>
    <packagedElement xmi:type="uml:Class" xmi:id="c" name="C"/>
  </uml:Model>
  <P:Table xmi:id="s2" base_Class="b" name="orders" size='3'>
    <key>x</key>
    <key>y</key>
    <next href="other.uml#z"/>
    <part xmi:id="s9"><deep/></part>
  </P:Table>
  <!-- between -->
  <P_1:Table xmi:id="s3" base_Class="b" base_Element="b"/>
  <P:Both xmi:id="s4" base_Class="b c" base_Element="a" ref="s2"/>
  <P:Child xmi:id="s5" of="t"><base_Property href="#t"/></P:Child>
  <P:Away><base_Class href="gone.uml#x"/><base_Element href="#a"/></P:Away>
</xmi:XMI>
"""


def applied(model, id, name="Table", profile="P"):
    return next(one for one in model.by_id(id).stereotypes if (one.name, one.profile) == (name, profile))


def assign(tag, value):
    return lambda model: applied(model, "b").__setitem__(tag, value)


def destroy(*ids):
    return lambda model: [model.by_id(id).destroy() for id in ids]


def rescue(model):
    model.by_id("m").packagedElement.append(model.by_id("a"))
    model.by_id("p").destroy()


def line(start, text=TEXT):
    return next(one for one in text.splitlines(keepends=True) if one.strip().startswith(start))


# A change, and the pieces of the text that it replaces.
CHANGES = {
    "an attribute": (assign("name", 'a<"&'), {b'"orders"': b'"a&lt;&quot;&amp;"'}),
    "an attribute in other quotes": (assign("size", 4), {b"'3'": b"'4'"}),
    "a new tag": (assign("new", True), {b"size='3'": b"size='3' new=\"true\""}),
    "one of several values": (assign("key", ["x", "z"]), {b"<key>y</key>": b"<key>z</key>"}),
    "one value less": (assign("key", "y"), {b"    <key>x</key>\n": b""}),
    "one value more": (assign("key", ["x", " ", "y"]),
                       {b"<key>y</key>\n": b"<key>&#32;</key>\n    <key>y</key>\n"}),
    "a reference": (assign("next", "b.uml#q"), {b"other.uml#z": b"b.uml#q"}),
    "several instead of one": (assign("size", [1, 2]), {b" size='3'": b"", b"</part>\n": b"</part>\n    <size>1</size>\n    <size>2</size>\n"}),
    "no value": (assign("name", None), {b' name="orders"': b""}),
    "a value with parts, gone": (lambda model: applied(model, "b").values.pop("part"), {line(b"<part"): b""}),
    "what is set back": (lambda model: [assign("name", "z")(model), assign("name", "orders")(model)], {}),
    "removed": (lambda model: applied(model, "b", "Table", "P_1").remove(), {line(b"<P_1:T"): b""}),
    "removed from the list": (lambda model: model.by_id("a").stereotypes.clear(),
                              {line(b"<P:In"): b"", line(b"<P:Both"): b"", line(b"<P:Away"): b""}),
    "added": (lambda model: model.by_id("c").stereotypes.add("Inside", tag="1", more=["2", "3"]),
              {b"</P:Away>\n": b'</P:Away>\n  <P:Inside base_Class="c" tag="1"><more>2</more><more>3</more></P:Inside>\n'}),
    "one element of several": (destroy("c"), {line(b'<packagedElement xmi:type="uml:Class" xmi:id="c"'): b"", b'"b c"': b'"b"'}),
    "all but one": (destroy("b", "c"), {TEXT[TEXT.index(b"  <P:Table"):TEXT.index(b"  <!--")]: b"", line(b"<P_1"): b"", b' base_Class="b c"': b"",
                                        TEXT[TEXT.index(b'    <packagedElement xmi:type="uml:Class" xmi:id="b"'):TEXT.index(b"  </uml")]: b""}),
    "an attribute's": (destroy("t"), {b'id="a" name="A">\n        <ownedAttribute xmi:id="t" name="t"/>\n      </': b'id="a" name="A">\n      </', line(b"<P:Child"): b""}),
    "with the owner, but what names others": (
        destroy("p"), {TEXT[TEXT.index(b'    <packagedElement xmi:type="uml:Package"'):TEXT.index(b'    <packagedElement xmi:type="uml:Class" xmi:id="b"')]: b"",
                       b' base_Element="a"': b"", line(b"<P:Child"): b"", b'<base_Element href="#a"/>': b""}),
}


def told(model):
    return {element.externalId: sorted(((one.name, one.uri, sorted(one.values.items())) for one in element.stereotypes))
            for element in model.allElements()}


@pytest.mark.parametrize("name", CHANGES)
def test_a_change_is_seen_at_once_and_changes_its_place_alone(tmp_path, name):
    change, replaced = CHANGES[name]
    path = tmp_path / "model.uml"
    path.write_bytes(TEXT)
    model = umlmm.load(path)
    change(model)
    expected = TEXT
    for old, new in replaced.items():
        assert expected.count(old) == 1
        expected = expected.replace(old, new)
    now = told(model)
    assert (now == told(umlmm.load(TEXT))) == (expected == TEXT)
    assert told(pickle.loads(pickle.dumps(model))) == now == told(copy.deepcopy(model))
    assert files.text(copy.deepcopy(model)) == expected
    model.save()
    assert path.read_bytes() == expected and told(model) == told(umlmm.load(path)) == now
    for dialect in ("omg-2.5.1", "eclipse"):
        model.save(tmp_path / "other.xmi", dialect=dialect)
        assert told(umlmm.load(tmp_path / "other.xmi")) == now


def test_an_application_outlives_the_element_around_it():
    model = umlmm.load(TEXT)
    rescue(model)
    again = umlmm.load(files.text(model))
    assert applied(again, "a", "Inside")["tag"] == "in" and told(again) == told(model)


def test_applications_are_the_same_after_saving_and_end(tmp_path):
    path = tmp_path / "model.uml"
    path.write_bytes(TEXT)
    model = umlmm.load(path)
    one, other = applied(model, "b"), applied(model, "b")
    both = applied(model, "b", "Both")
    one["name"] = "first"
    assert other["name"] == "first" and one == other and "name" in other and model.stereotyped("Table") == [model.by_id("b")]
    applied(model, "a", "Inside").remove()
    model.save()
    other.values.update(name="second", ref=model.by_id("c"))
    assert one["name"] == "second" and one["ref"] == "c" and both["ref"] == "s2"
    del one["name"]
    one.remove()
    assert [one.uri for one in model.by_id("b").stereotypes if one.name == "Table"] == ["http://p/2"]
    for use in (one.remove, lambda: one.values, lambda: one.__setitem__("name", "x")):
        with pytest.raises(files.Error, match="no longer applied to M::B"):
            use()
    model.save()
    assert told(umlmm.load(path)) == told(model)


ENTRY = (b'<xmi:Extension extender="Enterprise Architect"><elements><element xmi:idref="_o"><properties documentation="why" stereotype="Table"/>'
         b'<xrefs value="$XREFPROP=$DES=@STEREO;Name=Table;GUID=1;@ENDSTEREO;$DES;$ENDXREF;"/></element></elements></xmi:Extension>\n')


def test_what_a_tool_repeats_in_its_extension_goes_too():
    text = STRANGE.replace(b"</xmi:XMI>", ENTRY + b"</xmi:XMI>")
    model = umlmm.load(text)
    applied(model, "_o", "Table", "Data").remove()
    gone = text.replace(line(b"<Data", text), b"").replace(b' stereotype="Table"', b"").replace(ENTRY[ENTRY.index(b"$X"):ENTRY.rindex(b'"/>')], b"")
    assert files.text(model) == gone and [one.values for one in umlmm.load(gone).by_id("_o").stereotypes] == [{"documentation": "why"}]
    model = umlmm.load(STRANGE.replace(line(b"<Data", STRANGE), ENTRY))
    for change in (lambda one: one.remove(), lambda one: one.__setitem__("documentation", "x")):
        with pytest.raises(files.Error, match='"Table" of shop::Order stands in an extension'):
            change(model.by_id("_o").stereotypes[0])


@pytest.mark.parametrize("use, error, words", [
    (assign("a b", "x"), files.Error, "can't be the name"),
    (assign("base_Class", "c"), files.Error, "no tagged value"),
    (assign("part", "x"), files.Error, "parts of its own"),
    (assign("name", "\1"), files.Error, "control character"),
    (assign("name", "\x1f"), ValueError, "control character"),
    (assign("name", {1: 2}.get), TypeError, ""),
    (lambda model: applied(model, "b")["none"], KeyError, "none"),
    (lambda model: model.by_id("b").stereotypes.add("Table", "P"), files.Error, "already"),
    (lambda model: model.by_id("c").stereotypes.add("Table"), files.Error, "several profiles"),
    (lambda model: model.by_id("c").stereotypes.add("New"), files.Error, "nowhere"),
    (lambda model: model.by_id("c").stereotypes.add("Table", "Q"), files.Error, "doesn't know"),
    (lambda model: model.by_id("c").stereotypes.add("New", "P", **{"a b": "1"}), files.Error, "can't be the name"),
    (lambda model: model.by_id("b").stereotypes.append(1), TypeError, "add"),
    (lambda model: model.by_id("b").asImmutable().stereotypes[0].remove(), umlmm.Kelm.ReadOnlyError, ""),
    (lambda model: umlmm.Class(umlmm.Factory.createNewModel()).stereotypes.add("X"), files.Error, "no file"),
])
def test_what_is_refused_changes_nothing(use, error, words):
    model = umlmm.load(TEXT)
    with pytest.raises(error, match=words):
        use(model)
    assert files.text(model) == TEXT and told(model) == told(umlmm.load(TEXT))


def test_a_failed_save_keeps_the_changes(tmp_path):
    path = tmp_path / "model.uml"
    path.write_bytes(TEXT)
    model = umlmm.load(path)
    applied(model, "b")["name"] = "mine"
    path.write_bytes(TEXT + b"\n")
    with pytest.raises(files.Error, match="force"):
        model.save()
    assert applied(model, "b")["name"] == "mine" and path.read_bytes() == TEXT + b"\n"
    model.save(force=True)
    assert path.read_bytes() == TEXT.replace(b"orders", b"mine")


def test_files_that_apply_stereotypes_to_each_other(tmp_path):
    profile, shop = tmp_path / "applied.uml", tmp_path / "shop.uml"
    shop.write_bytes(b'<uml:Model xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="s">\n'
                     b'  <packagedElement xmi:type="uml:Class" xmi:id="k"/>\n</uml:Model>\n')
    profile.write_bytes(TEXT.replace(b'href="gone.uml#x"', b'href="shop.uml#k"'))
    model = umlmm.load_all([profile, shop])
    before = shop.read_bytes()
    applied(model, "k", "Away")["tag"] = "v"
    model.save()
    assert shop.read_bytes() == before and profile.read_bytes().count(b'<P:Away tag="v">') == 1
    model.by_id("k").stereotypes.add("Table", "http://p/2")
    model.save()
    assert b'</uml:Model>\n<P_1:Table xmlns:P_1="http://p/2" ' in shop.read_bytes() and told(umlmm.load_all([shop, profile])) == told(model)
    model.save(tmp_path / "both.xmi", dialect="omg-2.5.1")
    assert told(umlmm.load(tmp_path / "both.xmi")) == told(model)
    model.by_id("k").destroy()
    model.save()
    assert b"P_1" not in shop.read_bytes() and b"shop.uml" not in profile.read_bytes()


def change(chance, model):
    element = chance.choice([element.asMutable() for element in model.allElements() if element.externalId])
    tag = chance.choice(["name", "key", "size", "new"])
    values = [chance.choice(["", " ", "a<b", "\n", "ü", "x"]) for _ in range(chance.randrange(4))]
    what = chance.choice(["destroy", "move", "add", "remove", "set", "set", "set"])
    if what == "destroy" and element.owner is not None and chance.random() < 0.3:
        element.destroy()
    elif what == "move" and isinstance(element, umlmm.Class):
        package = model.by_id(chance.choice("mp"))
        if package is not None:
            package.packagedElement = [element, *(one for one in package.packagedElement if one != element)]
    elif what == "add" and model.stereotyped("Both") and not any(one.name == "Both" for one in element.stereotypes):
        element.stereotypes.add("Both", name=values)
    elif element.stereotypes:
        one = chance.choice(element.stereotypes)
        one.remove() if what == "remove" else one.__setitem__(tag, values)


@pytest.mark.parametrize("seed", range(8))
def test_random_changes(tmp_path, seed):
    path, chance = tmp_path / "model.uml", random.Random(seed)
    path.write_bytes(TEXT)
    model = umlmm.load(path)
    for _ in range(6):
        for _ in range(8):
            change(chance, model)
        now = told(model)
        assert told(umlmm.load(files.text(model))) == now
        model.save()
        assert told(model) == told(umlmm.load(path)) == now
