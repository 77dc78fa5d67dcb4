#!/usr/bin/python3
"""Writes at random through every feature of every metaclass, and checks what must hold whatever was written.

    fuzz/writes.py [--seed N] [--seconds S | --steps N] [--size N]

It knows the metamodel from its own reflection and the catalogue's flags alone, and looks at elements through what
scripts can read. After every hundred steps it checks: one owner for each element and no circle of owners, both ends of
every pair, each union equal to its subsets, types and bounds of each feature and of all that it subsets or redefines,
and the order of elements. A refused write must leave the feature as it was. A failure prints the seed and the last
steps; the same seed takes the same steps.
"""

from __future__ import annotations

import argparse
import collections
import dataclasses
import functools
import pathlib
import random
import sys
import time

import umlmm
from umlmm import Kelm

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "uml_metamodel_mi" / "catalogue"))

from generator.read import read_tables  # noqa: E402

REFUSALS = (Kelm.Error, TypeError, ValueError, AttributeError, IndexError)
BETWEEN_CHECKS = 100
SHOWN_STEPS = 40
# An owner is there, too, when its containment has no named far end to collect it from.
UNIONS_OF_OWNERS = {"Element.owner", "NamedElement.namespace", "Feature.featuringClassifier",
                    "RedefinableElement.redefinitionContext"}


@dataclasses.dataclass(frozen=True)
class Feature:
    """What reflection and catalogue say of one feature; `key` names it, `name` reads it."""

    key: str
    name: str
    type: str
    values: tuple[str, ...]
    is_reference: bool
    is_many: bool
    is_read_only: bool
    is_composite: bool
    is_union: bool
    is_unique: bool
    upper: int
    opposite: str
    subsets: tuple[str, ...]
    redefines: tuple[str, ...]


def key_of(prop) -> str:
    return f"{prop.owner().name}.{prop.name}" if prop is not None else ""


class Facts:
    """The metaclasses and their features."""

    def __init__(self):
        tables = read_tables(pathlib.Path(sys.path[0]) / "tables")
        self._unions = {row.key for row in tables.features if "union" in row.flags}
        self.classes = {cls.name: cls for cls in umlmm.MetaPackage().classes()}
        self.concrete = [name for name, cls in self.classes.items() if not cls.isAbstract()]
        self.features = {}

    @functools.cache
    def ancestors(self, name: str) -> tuple[str, ...]:
        above = [self.ancestors(base.name) for base in self.classes[name].superClasses() if base.name in self.classes]
        return tuple(dict.fromkeys([name, *(one for line in above for one in line)]))

    @functools.cache
    def of(self, name: str) -> tuple[Feature, ...]:
        """All features of a metaclass, redefined ones as well."""
        return tuple(self.feature(prop) for one in self.ancestors(name) for prop in self.classes[one].ownedProperties())

    @functools.cache
    def contributors(self, name: str, union: str) -> tuple[Feature, ...]:
        return tuple(one for one in self.of(name) if union in one.subsets)

    def feature(self, prop) -> Feature:
        key = key_of(prop)
        if key not in self.features:
            literals = getattr(prop.type, "literals", None)
            self.features[key] = Feature(
                key, prop.name, prop.typeName, tuple(literals()) if literals else (), prop.typeName in self.classes,
                prop.isMultivalued, prop.isReadOnly, prop.isComposite, key in self._unions, prop.isUnique, prop.upper,
                key_of(prop.opposite), tuple(map(key_of, prop.subsetted)), tuple(map(key_of, prop.redefined)))
        return self.features[key]


class Broken(Exception):
    """Something that must hold does not."""


def require(holds: bool, text: str, *things) -> None:
    if not holds:
        raise Broken(f"{text}: {', '.join(map(repr, things))}")


def metaclass(element) -> str:
    return type(element).__name__


def is_list(value) -> bool:
    """A feature may be many-valued where a redefinition of it takes one value: scripts see a list there."""
    return "SequenceOf" in type(value).__name__


def values(element, feature: Feature) -> list:
    value = getattr(element, feature.name)
    if is_list(value):
        return list(value)
    return [] if value is None else [value]


def reached(model) -> list:
    """The elements of the top level, each followed by all that it owns."""
    found, open_ = [], list(model.rootElements())[::-1]
    while open_:
        found.append(open_.pop())
        open_.extend(list(found[-1].ownedElement)[::-1])
        require(len(found) < 100_000, "owners in a circle", found[-1])
    return found


class Check:
    """One look at all elements of a model."""

    def __init__(self, facts: Facts, model, elements: list):
        self._facts, self._model, self._elements = facts, model, elements
        self._values = {}

    def values(self, element, feature: Feature) -> list:
        place = element, feature.name
        if place not in self._values:
            self._values[place] = values(element, feature)
        return self._values[place]

    def run(self) -> None:
        for element in self._elements:
            for feature in self._facts.of(metaclass(element)):
                if feature.is_reference:
                    self._references(element, feature)
                elif feature.upper > 0:
                    require(len(self.values(element, feature)) <= feature.upper, "too many", element, feature.key)
        self._owners()
        self._order()

    def _references(self, element, feature: Feature) -> None:
        found = self.values(element, feature)
        shown = element, feature.key
        require(len(set(found)) == len(found), "repeated", *shown, found)
        require(feature.upper < 0 or len(found) <= feature.upper, "too many", *shown, found)
        for value in found:
            require(value.isvalid(), "refers to what is gone", *shown)
            require(feature.type in self._facts.ancestors(metaclass(value)), "wrong type", *shown, value)
            for far in self._facts.of(metaclass(value)):
                if far.key == feature.opposite:
                    require(element in self.values(value, far), "one-sided", *shown, value)
        for wide in self._facts.of(metaclass(element)):
            if wide.key in feature.subsets:
                require(set(found) <= set(self.values(element, wide)), "not in its superset", *shown, wide.key)
            if wide.key in feature.redefines and not feature.is_read_only:
                require(set(found) == set(self.values(element, wide)) or wide.name == "general",
                        "not what it redefines", *shown, wide.key)
        if feature.is_union and feature.key not in UNIONS_OF_OWNERS:
            parts = [self.values(element, part) for part in self._facts.contributors(metaclass(element), feature.key)]
            require(set(found) == {value for part in parts for value in part}, "not its subsets", *shown, found, parts)

    def _owners(self) -> None:
        owners = {}
        for element in self._elements:
            for part in element.ownedElement:
                require(part not in owners, "two owners", part, element, owners.get(part))
                owners[part] = element
            for feature in self._facts.of(metaclass(element)):
                for part in self.values(element, feature) if feature.is_composite else ():
                    require(part.owner is element, "a part that another owns", element, feature.key, part)
        roots = set(self._model.rootElements())
        for element in self._elements:
            require(element.owner is owners.get(element), "not in its owner", element, element.owner)
            require((element.owner is None) == (element in roots), "not at the top", element)
            line = set()
            while element is not None:
                require(element not in line, "owns itself", element)
                line.add(element)
                element = element.owner

    def _order(self) -> None:
        all_elements = list(self._model.allElements())
        require(all_elements == self._elements, "not in order", all_elements, self._elements)
        for name in random.Random(len(all_elements)).sample(list(self._facts.classes), 3):
            instances = [element for element in all_elements if name in self._facts.ancestors(metaclass(element))]
            require(list(self._model.instancesOf(self._facts.classes[name])) == instances, "not in order", name)


class Writer:
    """Writes to a model at random; `last` tells the latest steps."""

    def __init__(self, facts: Facts, seed: int, size: int):
        self._facts, self._random, self._size = facts, random.Random(seed), size
        self._model = umlmm.Factory.createNewModel()
        self._elements, self._by_type = [], collections.defaultdict(list)
        self._serial = 0
        self.last = collections.deque(maxlen=SHOWN_STEPS)
        self.taken = self.refused = 0

    def step(self) -> None:
        choice = self._random.random()
        if len(self._elements) < self._size // 2 or choice < 0.02:
            self._create()
        elif choice < 0.03 and len(self._elements) > self._size // 2:
            self._destroy()
        else:
            self._write()

    def check(self) -> None:
        known = [element for element in self._elements if element.isvalid()]
        self._take(reached(self._model))
        require(set(known) <= set(self._elements), "out of reach", set(known) - set(self._elements))
        Check(self._facts, self._model, self._elements).run()

    def _take(self, elements: list) -> None:
        """Writes to computed features make and destroy elements, too."""
        self._elements = elements
        self._by_type.clear()
        for element in elements:
            for ancestor in self._facts.ancestors(metaclass(element)):
                self._by_type[ancestor].append(element)

    def _create(self) -> None:
        if len(self._elements) >= self._size:
            return self._destroy()
        name = self._random.choice(self._facts.concrete)
        element = getattr(umlmm, name)(self._model)
        self._serial += 1
        if hasattr(element, "name"):
            element.name = f"e{self._serial}"
        self.last.append(f"create {element!r}")
        self._elements.append(element)
        for ancestor in self._facts.ancestors(name):
            self._by_type[ancestor].append(element)

    def _destroy(self) -> None:
        element = self._random.choice(self._elements)
        self.last.append(f"destroy {element!r}")
        if element.isvalid():
            element.destroy()
        self._take([one for one in self._elements if one.isvalid()])

    def _write(self) -> None:
        element = self._random.choice(self._elements)
        if not element.isvalid():
            return
        feature = self._random.choice(self._facts.of(metaclass(element)))
        before = values(element, feature)
        target = getattr(element, feature.name)
        action, write = (self._many(element, feature, target) if is_list(target)
                         else self._single(element, feature))
        self.last.append(f"{element!r}.{feature.name} {action}")
        try:
            write()
            self.taken += 1
        except REFUSALS as refusal:
            self.last[-1] += f" -> {type(refusal).__name__}: {refusal}"
            self.refused += 1
            require(values(element, feature) == before, "a refused write changed",
                    element, feature.key)

    def _single(self, element, feature: Feature):
        if self._random.random() < 0.1:
            return "unset", lambda: element.unset(feature.name)
        value = None if self._random.random() < 0.15 else self._value(feature)
        return f"= {value!r}", lambda: setattr(element, feature.name, value)

    def _many(self, element, feature: Feature, target):
        value, others = self._value(feature), [self._value(feature) for _ in range(self._random.randrange(4))]
        place = self._random.randint(1, len(target) + 1)
        at = self._random.randrange(len(target)) if len(target) else 0

        def iterator():
            found = target.begin()
            for _ in range(place - 1):
                found.getNext()
            return found

        return self._random.choice([
            (f"append {value!r}", lambda: target.append(value)),
            (f"append {value!r}", lambda: target.append(value)),
            (f"push_front {value!r}", lambda: target.push_front(value)),
            (f"insert {place} {value!r}", lambda: target.insert(place, value)),
            (f"insert iterator {place} {value!r}", lambda: target.insert(iterator(), value)),
            (f"replace {place} {value!r}", lambda: target.replace(place, value)),
            (f"[{at}] = {value!r}", lambda: target.__setitem__(at, value)),
            (f"[{at}:] = {others!r}", lambda: target.__setitem__(slice(at, None), others)),
            (f"extend {others!r}", lambda: target.extend(others)),
            (f"= {others!r}", lambda: setattr(element, feature.name, others)),
            (f"= itself reversed, {value!r}", lambda: setattr(element, feature.name, [*list(target)[::-1], value])),
            (f"removeAll {value!r}", lambda: target.removeAll(value)),
            (f"erase {place}", lambda: target.erase(place)),
            (f"erase iterator {place}", lambda: target.erase(iterator())),
            (f"erase iterators {place}", lambda: target.erase(iterator(), target.end())),
            ("pop_back", lambda: target.pop_back()),
            ("pop_front", lambda: target.pop_front()),
            ("unset", lambda: element.unset(feature.name)),
            ("clear", lambda: target.clear()),
        ])

    def _value(self, feature: Feature):
        """Mostly one that the feature takes."""
        wrong = self._random.random() < 0.05
        if feature.is_reference:
            fitting = self._by_type[feature.type]
            return self._random.choice(fitting if fitting and not wrong else self._elements)
        if wrong:
            return self._random.choice([object(), "text", -1, True, []])
        if feature.values:
            return getattr(getattr(umlmm, feature.type), self._random.choice(feature.values))
        return self._random.choice({"Boolean": [True, False], "Integer": [0, 1, -7, 2**31 - 1],
                                    "UnlimitedNatural": ["*", "0", 3], "String": ["", "a", "b", "ü€"]}[feature.type])

    def close(self) -> None:
        self._model.close()


def main() -> int:
    parser = argparse.ArgumentParser(description="Writes at random through every feature and checks what must hold.")
    parser.add_argument("--seed", type=int, default=time.time_ns() % 10**9)
    parser.add_argument("--seconds", type=float, default=20)
    parser.add_argument("--steps", type=int, help="stop after so many steps instead")
    parser.add_argument("--size", type=int, default=150, help="elements of the model")
    arguments = parser.parse_args()
    end = time.monotonic() + arguments.seconds
    writer = Writer(Facts(), arguments.seed, arguments.size)
    step = 0
    try:
        while step < arguments.steps if arguments.steps is not None else time.monotonic() < end:
            step += 1
            writer.step()
            if step % BETWEEN_CHECKS == 0:
                writer.check()
        writer.check()
    except Exception as failure:
        print(*writer.last, sep="\n")
        print(f"seed {arguments.seed}, step {step}: {type(failure).__name__}: {failure}")
        if not isinstance(failure, Broken):
            raise
        return 1
    writer.close()
    print(f"seed {arguments.seed}: {step} steps, {writer.taken} writes taken, {writer.refused} refused")
    return 0


if __name__ == "__main__":
    sys.exit(main())
