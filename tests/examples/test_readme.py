"""The scripts in the README do what the README says."""

import pathlib
import re
import subprocess
import sys

README = pathlib.Path(__file__).resolve().parents[2] / "README.md"
BLOCKS = re.findall(r"^```(python|text)\n(.*?)^```$", README.read_text(), re.MULTILINE | re.DOTALL)

SHOP = """<uml:Model xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML">
  <packagedElement xmi:type="uml:Class" xmi:id="_Hx4kQ" name="Order"/>
</uml:Model>
"""


def run(script, folder):
    return subprocess.run([sys.executable, "-c", script], cwd=folder, capture_output=True, text=True, check=False)


def test_scripts_do_what_is_told(tmp_path):
    (script_kind, script), (shown_kind, shown), (files_kind, files) = BLOCKS
    assert (script_kind, shown_kind, files_kind) == ("python", "text", "python")
    result = run(script, tmp_path)
    assert (result.stderr, result.stdout) == ("", shown)
    (tmp_path / "shop.uml").write_text(SHOP)
    result = run("import umlmm\n" + files, tmp_path)
    assert result.stderr == "" and "1 Class" in result.stdout
    assert (tmp_path / "shop.uml").read_text() == SHOP.replace("Order", "Purchase")
    assert 'name="Purchase"' in (tmp_path / "shop.xmi").read_text()
