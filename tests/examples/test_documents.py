"""The scripts of the README and of the pages of `docs` do what these say."""

import os
import pathlib
import re
import subprocess
import sys

import pytest

import umlmm

ROOT = pathlib.Path(__file__).resolve().parents[2]
RECIPES = sorted(path for path in (ROOT / "docs" / "recipes").glob("*.md") if path.stem != "README")


def blocks_of(page):
    return re.findall(r"^```(python|text)\n(.*?)^```$", page.read_text("utf-8"), re.MULTILINE | re.DOTALL)


def run(script, folder):
    environment = os.environ | {"PYTHONPATH": str(pathlib.Path(umlmm.__file__).absolute().parents[1])}
    done = subprocess.run([sys.executable, "-c", script], cwd=folder, env=environment, capture_output=True, text=True)
    assert done.stderr == ""
    return done.stdout


PAGES = [page for page in (ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))) if "python" in dict(blocks_of(page))]
TOLD = [page for page in PAGES if "text" in dict(blocks_of(page))]


@pytest.mark.parametrize("page", TOLD, ids=[str(page.relative_to(ROOT)) for page in TOLD])
def test_a_page_is_one_script_that_prints_what_is_told(page, tmp_path):
    blocks = blocks_of(page)
    script = "\n".join(text for kind, text in blocks if kind == "python")
    assert run(script, tmp_path) == "".join(text for kind, text in blocks if kind == "text")


SHOP = """<uml:Model xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" name="shop">
  <packagedElement xmi:type="uml:Class" xmi:id="_Hx4kQ" name="Order"/>
</uml:Model>
"""
TABLES = f"""<xmi:XMI xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:D="http://example.org/Data">
{SHOP}<D:Audited base_Class="_i"/>
<D:Table base_Class="_Hx4kQ" name="order"/>
</xmi:XMI>
""".replace("  <packagedElement", '  <packagedElement xmi:type="uml:Class" xmi:id="_i"/>\n  <packagedElement')


def test_what_model_files_and_pictures_are_told_to_do(tmp_path):
    assert {page.stem for page in PAGES} - {page.stem for page in TOLD} == {"model-files", "pictures"}
    (_, pictures), = blocks_of(ROOT / "docs" / "pictures.md")
    (_, files), (_, stereotypes) = blocks_of(ROOT / "docs" / "model-files.md")
    model = tmp_path / "shop.uml"
    model.write_text(SHOP)
    run(pictures, tmp_path)
    assert "Order" in (tmp_path / "shop.svg").read_text()
    assert "1 Class" in run(files, tmp_path)
    assert model.read_text() == SHOP.replace("Order", "Purchase")
    assert 'name="Purchase"' in (tmp_path / "shop.xmi").read_text()
    model.write_text(TABLES)
    run('import umlmm\nmodel = umlmm.load("shop.uml")\norder = model.by_id("_Hx4kQ")\n' + stereotypes + "model.save()", tmp_path)
    assert model.read_text() == TABLES.replace('<D:Table base_Class="_Hx4kQ" name="order"/>',
                                               '<D:Audited base_Class="_Hx4kQ"/>')


def lines_of(script):
    return len([line for line in script.splitlines() if line.strip() and not line.strip().startswith("#")])


def test_recipes_have_at_most_half_the_lines_of_published_calls_alone(tmp_path):
    now = then = 0
    for recipe in RECIPES:
        (_, script), (_, told) = blocks_of(recipe)
        published = (ROOT / "benchmarks" / "lines" / f"{recipe.stem}.py").read_text("utf-8")
        assert run(published, tmp_path) == told, recipe.stem
        now, then = now + lines_of(script), then + lines_of(published)
    assert now * 2 <= then, (now, then)


def test_the_index_names_every_recipe():
    index = (ROOT / "docs" / "recipes" / "README.md").read_text("utf-8")
    assert len(RECIPES) >= 12 and [path.stem for path in RECIPES if f"({path.name})" not in index] == []
