import gc

import pytest


@pytest.fixture
def settled():
    """For tests that count what lives: what earlier tests left to the collector is gone, and it runs no more."""
    gc.collect()
    gc.disable()
    yield
    gc.enable()
