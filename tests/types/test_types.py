"""What checkers of types at their strictest say: nothing of the scripts of the documents, and of the lines of
`typed_script.py` that all are wrong which are marked so, and no other. An error in the stubs would be one more."""

import json
import os
import pathlib
import re
import subprocess
import sys

import pytest

import umlmm

TYPED = pathlib.Path(__file__).with_name("typed_script.py")
DOCUMENTS = TYPED.parents[2] / "docs"
STUBS = pathlib.Path(umlmm.__file__).parents[1]
# What lies on Python's own path counts as installed: errors in it are not shown.
ENVIRONMENT = {name: text for name, text in os.environ.items() if name not in ("LD_PRELOAD", "PYTHONPATH")}


def said_by_mypy(folder):
    done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--hide-error-context", "--no-error-summary",
                           "--cache-dir", folder.parent / "cache", "."],
                          env=ENVIRONMENT | {"MYPYPATH": str(STUBS)}, cwd=folder, capture_output=True, text=True)
    assert done.returncode in (0, 1), done.stdout + done.stderr
    return [line for line in done.stdout.splitlines() if ": note: " not in line]


def said_by_pyright(folder):
    settings = {"include": ["."], "typeCheckingMode": "strict", "extraPaths": [str(STUBS)]}
    (folder / "pyrightconfig.json").write_text(json.dumps(settings))
    done = subprocess.run([os.environ["UMLMM_PYRIGHT"], "--outputjson", "--pythonpath", sys.executable],
                          env=ENVIRONMENT, cwd=folder, capture_output=True, text=True)
    assert done.returncode in (0, 1), done.stdout + done.stderr
    return [f"{pathlib.Path(one['file']).name}:{one['range']['start']['line'] + 1}: {one['message']}"
            for one in json.loads(done.stdout)["generalDiagnostics"]]


@pytest.fixture(scope="module", params=[said_by_mypy, *[said_by_pyright] * ("UMLMM_PYRIGHT" in os.environ)])
def said(request, tmp_path_factory):
    """What a checker says, of the typed script and of all scripts of the documents."""
    folder = tmp_path_factory.mktemp(request.param.__name__) / "scripts"
    folder.mkdir()
    (folder / TYPED.name).write_text(TYPED.read_text("utf-8"))
    for page in DOCUMENTS.rglob("*.md"):
        script = "\n".join(re.findall(r"^```python\n(.*?)^```$", page.read_text("utf-8"), re.MULTILINE | re.DOTALL))
        if script:
            (folder / f"{page.stem.replace('-', '_')}.py").write_text(script)
    assert len([*folder.iterdir()]) > 12
    return request.param(folder)


def test_of_the_lines_of_the_typed_script_what_is_wrong_is_found_and_nothing_else(said):
    wrong = {line for line, text in enumerate(TYPED.read_text("utf-8").splitlines(), 1) if text.endswith("# wrong")}
    found = {int(line.split(":")[1]) for line in said if line.startswith(TYPED.name)}
    assert len(wrong) >= 40 and found == wrong, said


def test_of_the_scripts_of_the_documents_nothing_is_said(said):
    assert [line for line in said if not line.startswith(TYPED.name)] == []
