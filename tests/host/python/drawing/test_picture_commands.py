"""The command line on what model files show."""

import subprocess
import sys

import pytest

MODEL = b"""<?xml version="1.0" encoding="UTF-8"?>
<uml:Model xmi:version="20131001" xmlns:xmi="http://www.omg.org/spec/XMI/20131001"
    xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="_m" name="shop">
  <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order" isAbstract="true">
    <ownedAttribute xmi:id="_a" name="item" type="_i"/>
    <ownedAttribute xmi:id="_b" name="a|b,&lt;i&gt;"/>
  </packagedElement>
  <packagedElement xmi:type="uml:Class" xmi:id="_i" name="Item">
    <generalization xmi:id="_g" general="_o"/>
  </packagedElement>
</uml:Model>
"""


@pytest.mark.parametrize("arguments, code, out, err", [
    ("draw", 0, "shop.svg\n", ""),
    ("draw shop::Order --hide attributes -o x.puml", 0, "x.puml\n", ""),
    ("draw _i", 0, "_i.svg\n", ""),
    ("draw --limit 1 -o all.dot", 0, "all.dot\n", "All of it would be 3 boxes, more than 1"),
    ("draw shop::Ordr", 2, "", "did you mean 'Order'"),
    ("draw --kind clas", 2, "", "no kind of view"),
    ("draw -o shop.bmp", 2, "", "tells no form of picture"),
    ("draw -o none/shop.svg", 2, "", "none/"),
    ("table Class --columns name,isAbstract,superClass", 0,
     "name,isAbstract,superClass\nOrder,true,\nItem,false,shop::Order\n", ""),
    ("table Property --format markdown", 0, "| name | qualifiedName |\n| --- | --- |\n| item | shop::Order::item |\n"
     "| a\\|b,&lt;i&gt; | shop::Order::a\\|b,&lt;i&gt; |\n", ""),
    ("table Property --columns name,type --format json", 0,
     '[\n {\n  "name": "item",\n  "type": "shop::Item"\n },\n {\n  "name": "a|b,<i>",\n  "type": null\n }\n]\n', ""),
    ("table Property --columns nam", 2, "", "did you mean 'name'"),
    ("table Proprty", 2, "", "did you mean 'Property'"),
])
def test_commands(tmp_path, arguments, code, out, err):
    (tmp_path / "shop.uml").write_bytes(MODEL)
    command, *rest = arguments.split()
    done = subprocess.run([sys.executable, "-m", "umlmm", command, "shop.uml", *rest], cwd=tmp_path,
                          capture_output=True, text=True)
    assert (done.returncode, done.stdout) == (code, out), done
    assert err in done.stderr and (err or not done.stderr) and "Traceback" not in done.stderr
    if command == "draw" and not code:
        assert (tmp_path / out.strip()).stat().st_size > 100
