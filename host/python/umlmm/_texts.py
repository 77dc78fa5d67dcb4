"""What metaclasses, enumerations, literals, features and operations mean, from the catalogue."""

import functools
import os
import re


@functools.cache
def texts():
    """The texts by name: "Class", "Property.aggregation", "Classifier.conformsTo", "VisibilityKind.Private"."""
    found = {}
    with open(os.path.join(os.path.dirname(__file__), "texts.txt"), encoding="utf-8") as lines:
        for line in lines:
            name, bar, text = line.partition(" | ")
            if bar and name[0].isupper():
                found[name.strip()] = text.strip()
    return found


def text_of(subject, member=""):
    """The text of a metaclass or enumeration, or of a member of it, with the clause of the standard in brackets; empty if
    there is none. What the kernel adds to all elements is of "Kelm.ClassObject"."""
    text = texts().get(f"{subject}.{member}" if member else subject, "")
    clause = re.search(r" \([\d.]+\)$", texts().get(subject, "")) if text and member else None
    return text + clause[0] if clause else text


def meaning(cls, name):
    """What errors add about a feature that a class declares; None where nothing is known."""
    subject = cls.__name__.removeprefix("Immutable")
    text = text_of(subject if cls.__module__ == "umlmm" else f"{cls.__module__.rpartition('.')[2]}.{subject}", name)
    return text and f"{subject}.{name}: {text}"


def text_about(record, member=""):
    """The text of what a class is about, or of a member of it."""
    return text_of(record.subject if record.package.name == "umlmm" else f"{record.package.name}.{record.subject}", member)
