"""The command line on model files."""

import json
import subprocess
import sys

import pytest

from sample_models import ECLIPSE, OMG, STRANGE

# An end that redefines a list and takes one value; and one that lacks its type.
PROFILE = ECLIPSE.replace(b"</uml:Model>", b"""
  <packagedElement xmi:type="uml:Extension" xmi:id="_x" memberEnd="_b _e">
    <ownedEnd xmi:type="uml:ExtensionEnd" xmi:id="_e"/>
  </packagedElement>
  <packagedElement xmi:type="uml:Class" xmi:id="_u"><ownedAttribute xmi:id="_b" association="_x"/></packagedElement>
</uml:Model>""")
WRONG = ECLIPSE.replace(b'type="_i"', b'type="_c"').replace(
    b'isAbstract="true"/>', b'isAbstract="perhaps"><ownedComment xmi:id="_c"/></packagedElement>')


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    folder = tmp_path_factory.mktemp("models")
    for name, text in {"a.uml": ECLIPSE, "b.xmi": OMG, "strange.uml": STRANGE, "c.json": b"{}", "profile.uml": PROFILE,
                       "wrong.uml": WRONG}.items():
        (folder / name).write_bytes(text)
    return folder


def run(folder, *arguments):
    return subprocess.run([sys.executable, "-m", "umlmm", *arguments], cwd=folder, capture_output=True, text=True)


@pytest.mark.parametrize("arguments, code, out, err", [
    ("info a.uml", 0, ["a.uml", "Class"], []),
    ("info a.uml c.json b.xmi", 2, ["a.uml", "b.xmi"], ["umlmm: ", "c.json", "JSON"]),
    ("tree a.uml", 0, ["Model shop\n  Class Order\n    Property item : Item\n  Class Item\n"], []),
    ("tree a.uml --depth 2", 0, ["Model shop\n  Class Order\n  Class Item\n"], []),
    ("tree none.uml", 2, [], ["none.uml"]),
    ("check a.uml b.xmi", 0, ["a.uml: no findings\n", "b.xmi: no findings\n"], []),
    ("check a.uml strange.uml", 1, ["the id '_o' is declared again", "type names '_gone', which is not in the file",
                                    "importedPackage has no value, and needs 1", "strange.uml: 3 findings"], []),
    ("check profile.uml", 1, ["ExtensionEnd _e: type has no value, and needs 1\nprofile.uml: 1 finding\n"], []),
    ("check wrong.uml", 1, ["wrong.uml:4: Property shop::Order::item: type names '_c', a Comment, which it does not take\n",
                            'wrong.uml:6: isAbstract "perhaps" is no value\nwrong.uml: 2 findings\n'], []),
    ("check c.json strange.uml", 2, ["strange.uml: 3 findings"], ["c.json"]),
    ("convert a.uml nowhere/b.xmi", 2, [], ["nowhere"]),
    ("convert a.uml", 2, [], ["OUT"]),
])
def test_commands(folder, arguments, code, out, err):
    done = run(folder, *arguments.split())
    assert done.returncode == code
    assert all(words in done.stdout for words in out) and all(words in done.stderr for words in err)
    assert "Traceback" not in done.stderr and bool(done.stderr) == bool(err)


def test_convert_and_json(folder):
    assert run(folder, "convert", "a.uml", "c.xmi").returncode == 0
    assert run(folder, "convert", "c.xmi", "d.uml").returncode == 0
    assert b"spec/UML/20131001" in (folder / "c.xmi").read_bytes()
    assert b"eclipse.org/uml2" in (folder / "d.uml").read_bytes()
    shown = run(folder, "info", "--json", "a.uml", "c.xmi", "d.uml").stdout.splitlines()
    reports = [json.loads(line) for line in shown]
    assert reports[0]["elements"] == reports[1]["elements"] == reports[2]["elements"]
