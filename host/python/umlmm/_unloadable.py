"""Why the extension module can't be loaded."""

import pathlib
import re
import sys

from umlmm import errors


def explained(error):
    """The error to raise for one that importing the extension module has raised."""
    built = sorted({path.name.split(".")[1] for path in pathlib.Path(__file__).parent.glob("_host.*.so")})
    running = sys.implementation.cache_tag
    if any(name.startswith(running + "-") for name in built):
        return error  # it is there, and something else is wrong
    names = " and ".join(re.sub(r"cpython-3(\d+)-(\w+)-.*", r"CPython 3.\1 on \2", name) for name in built)
    return errors.CannotLoad(
        f"This is Python {sys.version.split()[0]} ({running}), and umlmm is built for {names or 'none'}: run it with "
        "that Python, or make a wheel for this one (make wheel PYTHON=" + sys.executable + ")", name="umlmm._host")
