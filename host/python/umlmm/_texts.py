"""What metaclasses, enumerations, literals and features mean, from the catalogue."""

import functools
import pathlib


@functools.cache
def texts():
    """The texts by name: "Class", "Property.aggregation", "VisibilityKind.Private"."""
    found = {}
    _, _, rows = pathlib.Path(__file__).with_name("texts.txt").read_text("utf-8").partition("| ----\n")
    for line in rows.splitlines():
        name, bar, text = line.partition(" | ")
        if bar:
            found[name.strip()] = text.strip()
    return found


def text_of(subject, member=""):
    """The text of a metaclass or enumeration, or of a member of it; empty if there is none."""
    return texts().get(f"{subject}.{member}" if member else subject, "")
