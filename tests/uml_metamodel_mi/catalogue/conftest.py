import pathlib
import sys

import pytest

CATALOGUE = pathlib.Path(__file__).resolve().parents[3] / "uml_metamodel_mi" / "catalogue"
sys.path.insert(0, str(CATALOGUE))


@pytest.fixture(scope="session")
def catalogue():
    return CATALOGUE


@pytest.fixture(scope="session")
def model():
    from generator.derive import derive_model
    from generator.read import read_tables

    return derive_model(read_tables(CATALOGUE / "tables"))
