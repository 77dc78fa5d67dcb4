"""The command line on what model files show."""

import os
import signal
import subprocess
import sys
import time

import pytest

MODEL = b"""<?xml version="1.0" encoding="UTF-8"?>
<uml:Model xmi:version="20131001" xmlns:xmi="http://www.omg.org/spec/XMI/20131001"
    xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="_m" name="shop">
  <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order" isAbstract="true">
    <ownedAttribute xmi:id="_a" name="item" type="_i"/>
    <ownedAttribute xmi:id="_b" name="a|b,&lt;i&gt;"/>
    <ownedOperation xmi:id="_c" name="=cmd|' /c x'!A0"/><ownedOperation xmi:id="_d" name="-1.5"/>
    <ownedOperation xmi:id="_e" name="@x"/><ownedOperation xmi:id="_f" name="-1+2"/>
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
    ("table Operation --columns name,isAbstract", 0,
     "name,isAbstract\n'=cmd|' /c x'!A0,false\n-1.5,false\n'@x,false\n'-1+2,false\n", ""),
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


@pytest.mark.parametrize("command", ["draw shop.uml -o x.svg", "site shop.uml -o pages"])
@pytest.mark.parametrize("end", [os.kill, os.killpg], ids=["a signal to the command", "Ctrl-C at a terminal"])
def test_what_is_interrupted_leaves_nothing(tmp_path, command, end):
    (tmp_path / "shop.uml").write_bytes(MODEL)
    slow = tmp_path / "bin" / "dot"
    slow.parent.mkdir()
    slow.write_text(f'#!/bin/sh\necho $$ > "{tmp_path}/bin/$$"\nexec sleep 60\n')
    slow.chmod(0o755)
    path = f"{slow.parent}:{os.environ['PATH']}"
    with subprocess.Popen([sys.executable, "-m", "umlmm", *command.split()], cwd=tmp_path, stderr=subprocess.PIPE,
                          env=os.environ | {"PATH": path}, start_new_session=True) as running:
        while len(list(slow.parent.iterdir())) < 2 and running.poll() is None:
            time.sleep(.02)
        time.sleep(.3)  # until the command waits for it
        end(running.pid, signal.SIGINT)
        told = running.communicate(timeout=20)[1]
    assert running.returncode == 130 and b"Traceback" not in told
    assert {path.name for path in tmp_path.iterdir()} == {"shop.uml", "bin"}
    for child in slow.parent.glob("[0-9]*"):
        with pytest.raises(ProcessLookupError):
            os.kill(int(child.name), 0)
