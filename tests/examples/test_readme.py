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
TABLES = f"""<xmi:XMI xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:D="http://example.org/Data">
{SHOP}<D:Audited base_Class="_i"/>
<D:Table base_Class="_Hx4kQ" name="order"/>
</xmi:XMI>
""".replace("  <packagedElement", '  <packagedElement xmi:type="uml:Class" xmi:id="_i"/>\n  <packagedElement')


def run(script, folder):
    return subprocess.run([sys.executable, "-c", script], cwd=folder, capture_output=True, text=True, check=False)


def test_scripts_do_what_is_told(tmp_path):
    assert [kind for kind, _ in BLOCKS] == ["python", "text", "python", "python", "python"]
    script, shown, files, stereotypes, pictures = (text for _, text in BLOCKS)
    result = run(script, tmp_path)
    assert (result.stderr, result.stdout) == ("", shown)
    (tmp_path / "shop.uml").write_text(SHOP)
    result = run("import umlmm\n" + files, tmp_path)
    assert result.stderr == "" and "1 Class" in result.stdout
    assert (tmp_path / "shop.uml").read_text() == SHOP.replace("Order", "Purchase")
    assert 'name="Purchase"' in (tmp_path / "shop.xmi").read_text()
    (tmp_path / "tables.uml").write_text(TABLES)
    start = 'import umlmm\nmodel = umlmm.load("tables.uml")\norder = model.by_id("_Hx4kQ")\n'
    assert run(start + stereotypes + "model.save()", tmp_path).stderr == ""
    assert (tmp_path / "tables.uml").read_text() == TABLES.replace('<D:Table base_Class="_Hx4kQ" name="order"/>',
                                                                   '<D:Audited base_Class="_Hx4kQ"/>')
    assert run(script + pictures, tmp_path).stderr == ""
    assert "Order" in (tmp_path / "shop.svg").read_text()
