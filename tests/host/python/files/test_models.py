"""Real files, from the folder that `make test MODELS=folder` names: nothing is lost, and nothing changes."""

import os
import pathlib
import xml.etree.ElementTree as ElementTree

import pytest

import counting
import umlmm
from sample_models import DIALECTS
from umlmm import files

FOLDER = os.environ.get("MODELS")
MODELS = sorted(path for path in pathlib.Path(FOLDER).rglob("*") if path.is_file()) if FOLDER else []


@pytest.mark.parametrize("path", MODELS, ids=str)
def test_nothing_is_lost(path):
    try:
        model = umlmm.load(path)
    except files.NotUml:
        try:
            assert counting.counted(path) == {}
        except ElementTree.ParseError:
            pass
        return
    assert model.report.elements == counting.counted(path)
    assert files.text(model) == path.read_bytes()


def test_counting(tmp_path):
    path = tmp_path / "shop.xmi"
    for text in DIALECTS.values():
        path.write_bytes(text)
        model = umlmm.load(path)
        assert model.report.elements == counting.counted(path) and sum(counting.counted(path).values()) > 3
