import pytest
import umlmm.files  # noqa: F401 -- what only the first use makes is there when tests count

import sample_models


@pytest.fixture(scope="session")
def large_file(tmp_path_factory):
    """About 5 MB."""
    path = tmp_path_factory.mktemp("models") / "large.uml"
    path.write_bytes(sample_models.large(30_000))
    return path
