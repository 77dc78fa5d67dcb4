"""The script in the README prints what the README says."""

import pathlib
import re
import subprocess
import sys

README = pathlib.Path(__file__).resolve().parents[2] / "README.md"


def test_script_prints_what_is_shown():
    blocks = re.findall(r"^```(python|text)\n(.*?)^```$", README.read_text(), re.MULTILINE | re.DOTALL)
    (script_kind, script), (shown_kind, shown) = blocks
    assert (script_kind, shown_kind) == ("python", "text")
    result = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=False)
    assert (result.stderr, result.stdout) == ("", shown)
