"""What a notebook shows once it has been run by a kernel, and as the page that is made of it."""

import json
import os
import subprocess

from conftest import ROOT

CELLS = ["import umlmm\nfrom shop_models import shop, talk\ntop = shop()", "top", "top['Order']", "top['Order::total']",
         "top.packagedElement", "top.modelKelm", "umlmm.draw(talk())",
         "top['Order::total'].default = '<script>alert(1)</script>'\ntop['Order::total']"]
PICTURES = {1, 2, 5, 6}


def test_a_notebook(tmp_path):
    cell = {"cell_type": "code", "metadata": {}, "execution_count": None, "outputs": []}
    book = {"nbformat": 4, "nbformat_minor": 5, "metadata": {"kernelspec": {"name": "python3", "display_name": "Python"}},
            "cells": [{**cell, "id": f"c{at}", "source": text} for at, text in enumerate(CELLS)]}
    (tmp_path / "book.ipynb").write_text(json.dumps(book))
    environment = os.environ | {"HOME": str(tmp_path), "PYTHONPATH": f"{os.environ['PYTHONPATH']}:{ROOT / 'examples'}"}

    def convert(form, *options):
        done = subprocess.run(["/usr/bin/python3", "-m", "nbconvert", "--to", form, "--output-dir", tmp_path, *options],
                              env=environment, capture_output=True, text=True)
        assert done.returncode == 0, done.stderr

    convert("notebook", "--execute", "--output", "run", tmp_path / "book.ipynb")
    cells = json.loads((tmp_path / "run.ipynb").read_text())["cells"]
    shown = [{form for output in cell["outputs"] for form in output["data"]} for cell in cells]
    assert shown[0] == set()
    assert [at for at, forms in enumerate(shown) if "image/svg+xml" in forms] == sorted(PICTURES)
    assert all("text/html" in forms for at, forms in enumerate(shown) if at and at not in PICTURES)
    convert("html", tmp_path / "run.ipynb")
    page = (tmp_path / "run.html").read_text()
    assert "Class shop::Order" in page and "<td>" in page and "<script>alert" not in page
