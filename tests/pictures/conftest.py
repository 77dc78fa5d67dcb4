"""Checks of pictures by other programs: a browser, PlantUML, Mermaid, a notebook's kernel. They need packages of their
own (`make pictures-check`), so no other suite has them."""

import importlib.machinery
import importlib.util
import pathlib
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/host/python/drawing"))

_loader = importlib.machinery.SourceFileLoader("gallery", str(ROOT / "tools/make-gallery"))
gallery = sys.modules["gallery"] = importlib.util.module_from_spec(importlib.util.spec_from_loader("gallery", _loader))
_loader.exec_module(gallery)


@pytest.fixture(scope="session")
def browser():
    from browser import Browser
    opened = Browser()
    yield opened
    opened.close()
