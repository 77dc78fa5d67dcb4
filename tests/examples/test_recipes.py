"""The recipes do what they say."""

import os
import pathlib
import re
import subprocess
import sys

import pytest

import umlmm

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "docs" / "recipes"
RECIPES = sorted(path for path in FOLDER.glob("*.md") if path.stem != "README")


def blocks_of(recipe):
    return re.findall(r"^```(python|text)\n(.*?)^```$", recipe.read_text("utf-8"), re.MULTILINE | re.DOTALL)


@pytest.mark.parametrize("recipe", RECIPES, ids=[path.stem for path in RECIPES])
def test_recipes(recipe):
    blocks = blocks_of(recipe)
    assert [kind for kind, _ in blocks] == ["python", "text"]
    (_, script), (_, shown) = blocks
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=False)
    assert (done.stderr, done.stdout) == ("", shown)


def test_a_strict_check_of_types_has_nothing_to_say(tmp_path):
    scripts = [tmp_path / f"{recipe.stem.replace('-', '_')}.py" for recipe in RECIPES]
    for recipe, script in zip(RECIPES, scripts):
        script.write_text(blocks_of(recipe)[0][1])
    # What lies on Python's own path counts as installed: errors in it are not shown.
    environment = {name: value for name, value in os.environ.items() if name not in ("LD_PRELOAD", "PYTHONPATH")}
    done = subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--cache-dir", tmp_path / "cache", *scripts], cwd=tmp_path,
        env=environment | {"MYPYPATH": str(pathlib.Path(umlmm.__file__).parents[1])}, capture_output=True, text=True)
    assert done.stdout == f"Success: no issues found in {len(RECIPES)} source files\n", done.stdout + done.stderr


def test_the_index_names_every_recipe():
    index = (FOLDER / "README.md").read_text("utf-8")
    assert len(RECIPES) >= 12 and [path.stem for path in RECIPES if f"({path.name})" not in index] == []
