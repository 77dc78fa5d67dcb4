"""The recipes do what they say."""

import pathlib
import re
import subprocess
import sys

import pytest

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


def test_the_index_names_every_recipe():
    index = (FOLDER / "README.md").read_text("utf-8")
    assert len(RECIPES) >= 12 and [path.stem for path in RECIPES if f"({path.name})" not in index] == []
