"""Models in several files: what is read with a file, what belongs to which, and how they name each other."""

import os

import pytest

import umlmm

DOCUMENT = ('<?xml version="1.0" encoding="UTF-8"?>\n<xmi:XMI xmi:version="2.0" xmlns:xmi="http://www.omg.org/XMI" '
            'xmlns:e="http://e" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML">\n{}\n</xmi:XMI>\n')


@pytest.fixture
def write(tmp_path):
    def write(name, body):
        path = tmp_path / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(DOCUMENT.format(body))
        return path
    return write


def names(model):
    return [element.qualifiedName for element in model.allElements() if isinstance(element, umlmm.NamedElement)]


def made(model, metaclass, **values):
    element = metaclass(model)
    for name, value in values.items():
        if isinstance(value, list):
            getattr(element, name).extend(value)
        else:
            setattr(element, name, value)
    return element


def test_parts_in_other_files_are_read_with_their_owner(write, tmp_path):
    (tmp_path / "other.json").write_text("{}")
    write("p.xml", '<D:T xmlns:D="http://d" base_Class="C"/><e:n/>')
    first = write("a.uml", '<uml:Package xmi:id="A" name="A">\n<packagedElement href="sub/b.uml#B"/>\n<packagedElement xmi:type="uml:Class" name="D"/>\n'
                  + "".join(f'<packagedElement href="{gone}#x"/>' for gone in ("gone.uml", "other.json", "p.xml", ".", "http://a/b.uml"))
                  + '<packageImport importedPackage="plain.uml#P"/></uml:Package>')
    write("sub/b.uml", '<uml:Package xmi:id="B" name="B"><packagedElement href="../a.uml#A"/><packagedElement href="./c%20c.uml#C"/></uml:Package>')
    third = write("sub/c c.uml", '<uml:Class xmi:id="C" name="C"/>')
    write("plain.uml", '<uml:Package xmi:id="P" name="P"/>')
    before = first.read_bytes()
    model = umlmm.load(first)
    assert names(model) == ["A", "A::B", "A::B::C", "A::D"]
    assert [os.path.relpath(file.path, tmp_path) for file in model.files] == ["a.uml", "sub/b.uml", "sub/c c.uml"]
    assert len(model.unresolved) == 7 and model.by_id("C", f"{tmp_path}/sub/../sub/c c.uml").owner is model.by_id("B")
    model.by_id("C").name = "E"
    model.save()
    assert first.read_bytes() == before and 'name="E"' in third.read_text()
    package = model.by_id("A")
    package.packagedElement.insert(2, made(model, umlmm.Class, name="F"))
    package.packagedElement.append(made(model, umlmm.Class, name="G"))
    model.by_id("B").packagedElement.remove(model.by_id("C"))
    model.save()
    assert names(umlmm.load(first)) == ["A", "A::B", "A::F", "A::D", "A::G"] and len(umlmm.load(first).unresolved) == 7
    assert "C" in names(umlmm.load(third)) or "E" in names(umlmm.load(third))


def test_what_addresses_mean(write, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    write("w/proj/a.uml", '<uml:Package xmi:id="A" name="A"/>')
    found = ["platform:/resource/proj/a.uml#A", "platform:/plugin/x/proj/a.uml#A", "pathmap://MY/a.uml#A", "pathmap://MY/LIB#A", "http://x.org/a.uml#A",
             "w/proj/a.uml#//", "w/proj/a.uml#/", r"w\proj\a.uml#A", f"file://{tmp_path}/w/proj/a.uml#A", f"file:{tmp_path}/w/proj/./a.uml#A",
             f"{tmp_path}/w/proj/a.uml#A?A/Package?", "file:w/proj/a.uml#A"]
    lost = ["w/proj/a.uml#none", "W/proj/a.uml#A", "pathmap://YOURS/a.uml#A"]
    write("b.uml", '<uml:Package xmi:id="B">' + "".join(f'<packageImport importedPackage="{one}"/>' for one in found + lost) + "</uml:Package>")
    paths = {"pathmap://MY/": tmp_path / "w/proj", "pathmap://MY/LIB": "w/proj/a.uml", "http://x.org": "w/proj", "platform:/plugin/x": "w"}
    both = umlmm.load_all(["b.uml", "w/proj/a.uml", tmp_path / "w" / ".." / "b.uml"], paths=paths)
    assert len(both.files) == 2 and [one.address for one in both.unresolved] == lost
    # One file alone: what the caller knows the place of is read as well.
    assert len(umlmm.load("b.uml", paths=paths).files) == 2 and len(umlmm.load("b.uml").unresolved) == len(found + lost)


def test_new_links_between_files(write, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    write("a b%.uml", '<uml:Package xmi:id="A"><packagedElement xmi:type="uml:Class" name="old"/></uml:Package>')
    write("sub/b.uml", '<uml:Package xmi:id="B"/>')
    write("c.uml", '<uml:Package xmi:id="C"><packageImport importedPackage="platform:/resource/sub/b.uml#B"/></uml:Package>')
    model = umlmm.load_all(["c.uml", tmp_path / "a b%.uml", "sub/b.uml"])
    a, b, c = (model.by_id(id) for id in "ABC")
    new = made(model, umlmm.Class, name="new")
    a.packagedElement.append(new)
    b.packagedElement.append(made(model, umlmm.Class, name="user"))
    b.packagedElement[0].ownedAttribute.extend([made(model, umlmm.Property, type=new), made(model, umlmm.Property, type=a.packagedElement[0])])
    c.packagedElement.append(made(model, umlmm.Dependency, supplier=[b.packagedElement[0], new]))
    model.save()
    assert "platform:/resource/sub/b.uml#_" in (tmp_path / "c.uml").read_text() and "../a%20b%25.uml#_" in (tmp_path / "sub/b.uml").read_text()
    again = umlmm.load_all(["sub/b.uml", "c.uml", "a b%.uml"])
    assert again.unresolved == [] and [one.type.name for one in again.by_id("B").packagedElement[0].ownedAttribute] == ["new", "old"]
    assert [one.name for one in again.by_id("C").packagedElement[0].supplier] == ["user", "new"]


def test_elements_move_from_file_to_file(write):
    first = write("a.uml", """<uml:Package xmi:id="A" name="A">
  <packagedElement xmi:type="uml:Class" xmi:id="X" name="X" e:plain="1" isFinalSpecialization="true"><eAnnotations source="s"><e:z/></eAnnotations>
    <ownedBehavior xmi:type="uml:StateMachine"><region><subvertex><entry xmi:type="uml:OpaqueBehavior" name="entry"/></subvertex></region></ownedBehavior>
    <ownedAttribute xmi:id="x" name="x" type="Y gone"/><ownedComment xmi:id="k" annotatedElement="X"/></packagedElement>
  <packagedElement xmi:type="uml:Class" xmi:id="Y" name="Y"><generalization general="X"/></packagedElement>
  <packagedElement xmi:type="uml:Package" href="b.uml#T"/>
</uml:Package>
<uml:Package xmi:id="R" name="R"/>
<D:Mark xmlns:D="http://d" base_Class="X" v="1"/>""")
    second = write("b.uml", """<uml:Package xmi:id="B" name="B"><packagedElement xmi:type="uml:Class" xmi:id="Y" name="Z">
  <ownedAttribute xmi:id="z" name="z"><type xmi:type="uml:Class" href="a.uml#X"/></ownedAttribute></packagedElement></uml:Package>
<uml:Package xmi:id="T" name="T"/>
<D:Mark xmlns:D="http://d"><base_Class href="a.uml#X"/></D:Mark>""")
    second.write_text(second.read_text().replace('xmlns:e="http://e" ', ""))
    model = umlmm.load_all([first, second])
    a, b, x = model.by_id("A"), model.by_id("B"), model.by_id("X")
    b.packagedElement.extend([x, model.by_id("Y", first), model.by_id("R")])
    b.packagedElement.append(model.by_id("T"))
    model.save()
    again = umlmm.load_all([first, second])
    assert sorted(names(again)) == sorted(names(model))
    assert '<uml:Package xmi:id="R" name="R"/>' in first.read_text() and 'href="a.uml#R"' in second.read_text()
    x = again.by_id("X", second)
    assert again.by_id("X", first) is None and again.by_id("z").type is x and x.ownedComment[0].annotatedElement[0] is x
    assert again.by_id("x").type.qualifiedName == "B::Y" and x.owner.packagedElement[2].general[0] is x
    assert [one.address for one in again.unresolved] == ["gone"] and len(x.stereotypes) == 2
    assert {unknown.tag for unknown in x.unknown} == {"e:plain", "isFinalSpecialization", "eAnnotations", "ownedBehavior"}


def test_files_that_become_one(write, tmp_path):
    paths = [write(f"{name}.uml", f'<uml:Package xmi:id="A" name="{name}"><packagedElement xmi:type="uml:Class" xmi:id="B" name="{name}">'
                   f'<ownedAttribute xmi:id="C" type="B"/></packagedElement></uml:Package>') for name in "pq"]
    model = umlmm.load_all(paths)
    for dialect in (None, "eclipse", "omg-2.5.1"):
        model.save(tmp_path / "one.xmi", dialect=dialect)
        one = umlmm.load(tmp_path / "one.xmi")
        assert names(one) == names(model) and one.report.duplicate_ids == []
        assert [root.packagedElement[0].ownedAttribute[0].type.name for root in one.rootElements()] == ["p", "q"]


def test_of_a_damaged_part_nothing_is_taken(write):
    part = write("b.uml", '<uml:Package xmi:id="B">' + '<packagedElement xmi:type="uml:Class" name="x"/>\n' * 5000)
    model = umlmm.load(write("a.uml", '<uml:Package xmi:id="A" name="A"><packagedElement href="b.uml#B"/></uml:Package>'))
    assert part.stat().st_size > 100_000 and names(model) == ["A"] and len(model.unresolved) == 1


def test_what_is_named_by_what_moves_or_goes(write):
    two = "".join(f'<packagedElement xmi:type="uml:Class" xmi:id="{id}"/>' for id in "XY")
    paths = [write("a.uml", f'<uml:Package xmi:id="A">{two}</uml:Package><uml:Package xmi:id="R"/>'
                            '<D:M xmlns:D="http://d" base_Class="X Y"/><D:M xmlns:D="http://d" base_Class="X" base_Package="R"/>'),
             write("b.uml", '<uml:Package xmi:id="B"><packagedElement xmi:type="uml:Package" xmi:id="C">'
                            '<packagedElement href="a.uml#R"/></packagedElement></uml:Package>'),
             write("c.uml", '<uml:Package xmi:id="Z"/>')]
    model = umlmm.load_all(paths)
    model.by_id("A").packagedElement.append(model.by_id("C"))
    model.by_id("B").packagedElement.append(model.by_id("X"))
    model.by_id("Y").destroy()
    model.save()
    again = umlmm.load_all(paths)
    assert again.by_id("R", paths[0]).owner is again.by_id("C", paths[0]) and again.by_id("X", paths[1]).owner is again.by_id("B")
    assert [len(again.by_id(id).stereotypes) for id in "XR"] == [2, 1]
    model.by_id("Z").destroy()
    with pytest.raises(umlmm.files.Error, match="c.uml was not saved: all its elements are gone"):
        model.save()


def test_what_led_nowhere_leads_to_nothing_that_comes(write):
    paths = [write("a.uml", '<uml:Package xmi:id="A"><packagedElement xmi:type="uml:Class" name="user"><ownedAttribute type="X"/>'
                            '<ownedAttribute><type href="b.uml#Y"/></ownedAttribute></packagedElement></uml:Package>'),
             write("b.uml", '<uml:Package xmi:id="B"><packagedElement xmi:type="uml:Class" xmi:id="X" name="x"/></uml:Package>'),
             write("c.uml", '<uml:Package xmi:id="C"><packagedElement xmi:type="uml:Class" xmi:id="Y" name="y"/></uml:Package>')]
    model = umlmm.load_all(paths)
    model.by_id("A").packagedElement.append(model.by_id("X"))
    model.by_id("B").packagedElement.append(model.by_id("Y"))
    model.save()
    again = umlmm.load_all(paths)
    assert names(again) == names(model) and [one.address for one in again.unresolved] == ["X", "b.uml#Y"]
