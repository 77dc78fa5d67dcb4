"""The generator makes what it lists and leaves alone what did not change."""

import subprocess
import sys

import pytest


def run(catalogue, *arguments):
    return subprocess.run([sys.executable, "-B", catalogue / "generate.py", *arguments], capture_output=True, text=True)


def test_files_are_those_listed_and_name_their_template(catalogue, tmp_path):
    listed = run(catalogue, "--list", "headers").stdout.split()
    assert run(catalogue, "--set", "headers", "--output", tmp_path).returncode == 0
    made = sorted(str(path.relative_to(tmp_path)) for path in tmp_path.rglob("*") if path.is_file())
    assert made == sorted(listed) and len(set(listed)) == len(listed)
    for path in made:
        assert "templates/" in (tmp_path / path).read_text().splitlines()[0]


def test_an_unchanged_file_is_left_untouched(catalogue, tmp_path):
    run(catalogue, "--set", "values", "--output", tmp_path)
    path = next(tmp_path.rglob("*.cpp"))
    before = path.stat().st_mtime_ns
    run(catalogue, "--set", "values", "--output", tmp_path)
    assert path.stat().st_mtime_ns == before
    path.write_text("changed")
    run(catalogue, "--set", "values", "--output", tmp_path)
    assert path.read_text() != "changed"


@pytest.mark.parametrize("arguments", [(), ("--set", "headers"), ("--list", "no such set")])
def test_wrong_calls_are_refused(catalogue, arguments):
    answer = run(catalogue, *arguments)
    assert answer.returncode != 0 and "generate.py: error" in answer.stderr
