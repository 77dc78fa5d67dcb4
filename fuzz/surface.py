"""Drives everything that is published at random, with right and wrong arguments, and expects an answer or an exception.

    PYTHONPATH=build/release/python python3 fuzz/surface.py --seed 7 --seconds 60

Values are of every kind: living, destroyed and foreign elements, read-only views, objects of closed models, sequences
and iterators, huge numbers, broken texts, and objects whose conversions, finalizers and weak reference callbacks change
models while a call is under way. A crash, a hang, a SystemError or an object that is left over at the end is a fault.
The same seed and number of steps do the same again; `--trace` names each step before it is done.
"""

import argparse
import collections
import faulthandler
import gc
import itertools
import operator
import os
import pathlib
import random
import re
import sys
import time
import weakref

import umlmm
from umlmm import Kelm, _host

HUNG_AFTER = 300  # seconds without a thousand steps
# A path that begins with the folder of the sources; their names alone are no secret.
BUILD_PATH = re.compile(r"(?<![\w/.])" + re.escape(str(pathlib.Path(__file__).resolve().parents[1])) + "/")
NUMBERS = [0, 1, 2, 3, -1, -2, 7, 100, 2**31 - 1, 2**31, -2**31, -2**31 - 1, 2**32 - 1, 2**32, 2**63 - 1, 2**64, -2**63]
TEXTS = ["", "a", "name", "*", "1", "private", "composite", "None", "umlmm.Class", "Class", "ExternalId", "x" * 3000,
         "\ud800", "a\udc00b", "nul\0inside", "\U0001f600", "Ä ß", "Model { }", "Class (name = 'a')", "-1", "true"]
BINARY = [operator.eq, operator.ne, operator.lt, operator.ge, operator.contains, operator.getitem, operator.add,
          operator.iadd, operator.sub, operator.delitem, isinstance, issubclass]
UNARY = [len, iter, repr, str, bool, hash, list, tuple, set, sorted, reversed, dir, type, operator.index, vars, id,
         operator.length_hint, weakref.ref, callable]
CLASSES = [getattr(package, name) for package in (umlmm, Kelm) for name in sorted(dir(package))
           if isinstance(getattr(package, name), type) and not issubclass(getattr(package, name), BaseException)]
ELEMENTS = [cls for cls in CLASSES if cls.__name__ in set(umlmm.Factory.__dict__) or hasattr(cls, "asImmutable")]
# What a script can do to the process and not to models is out of bounds.
SKIPPED = {"print", "__init_subclass__", "__subclasshook__", "__class_getitem__"}
# Nor are other programs started: what shows itself in a notebook does so as if Graphviz were not installed.
os.environ["PATH"] = ""


class Planned(Exception):
    """Raised on purpose by Python code that the library calls."""


class World:
    """What there is at the moment, and the random choices."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.models, self.things, self.depth = [], [], 0
        self.recent, self.references = collections.deque(maxlen=30), collections.deque(maxlen=100)
        self.refresh()

    def refresh(self):
        while len(self.models) < 3:
            self.models.append(umlmm.Factory.createNewModel())
        for _ in range(6):
            self.keep(self.new_element())

    def keep(self, thing):
        """Python's own objects are not kept: what they do with a random number may take all memory."""
        if not type(thing).__module__.startswith("umlmm"):
            return
        if len(self.things) < 150:
            self.things.append(thing)
        else:
            self.things[self.random.randrange(150)] = thing

    def thing(self):
        return self.random.choice(self.things)

    def new_element(self, cls=None):
        cls = cls or self.random.choice([umlmm.Class, umlmm.Property, umlmm.Package, umlmm.Operation, umlmm.Association,
                                         self.random.choice(ELEMENTS)])
        try:
            return cls(self.random.choice(self.models))
        except Exception:  # abstract, or the model has just been closed
            return None

    # --- values

    def value(self, depth=0):
        pick = self.random.random()
        if pick < 0.45:
            return self.thing()
        if pick < 0.55:
            return self.new_element()
        if pick < 0.65:
            return self.random.choice(NUMBERS)
        if pick < 0.75:
            return self.random.choice(TEXTS)
        if pick < 0.80:
            return self.random.choice([None, True, False, 0.5, float("nan"), float("inf"), b"bytes", 1j, slice(0, 2),
                                       slice(None, None, -1), slice(2**70, None, 3), range(3), ..., len])
        if pick < 0.84:
            return self.random.choice(CLASSES)
        if pick < 0.92 and depth < 2:
            values = [self.value(depth + 1) for _ in range(self.random.randrange(5))]
            return self.random.choice([list, tuple, iter, EvilList, lambda v: (item for item in v), dict.fromkeys
                                       if all(type(item) in (int, str) for item in values) else list])(values)
        return self.random.choice([Evil, EvilInt, EvilText, Finalized])(self)

    def values(self, most=4):
        return [self.value() for _ in range(self.random.randrange(most))]

    # --- what Python code that is called from within the library may do

    def disturb(self):
        if self.depth > 2:
            return
        self.depth += 1
        try:
            self.random.choice([self.destroy, self.clear_list, self.forget, self.step, gc.collect, self.refresh,
                                self.fail, lambda: None, lambda: None])()
        except Planned:
            raise
        except Exception as error:
            judge(error)
        finally:
            self.depth -= 1

    def fail(self):
        raise Planned("on purpose")

    def destroy(self):
        getattr(self.thing(), "destroy", id)()

    def clear_list(self):
        getattr(self.thing(), "clear", id)()

    def forget(self):
        for _ in range(self.random.randrange(40)):
            if len(self.things) > 20:
                self.things.pop(self.random.randrange(len(self.things)))

    def close(self):
        if self.random.random() < 0.2:
            self.models.pop(self.random.randrange(len(self.models))).__exit__()
            self.refresh()

    # --- steps

    def step(self):
        action = self.random.choices(
            [self.read, self.call, self.write, self.construct, self.unbound, self.protocol, self.change_list,
             self.watch, self.meddle, self.disturb_plainly, self.close],
            [20, 25, 15, 8, 6, 10, 10, 3, 1, 1, 1])[0]
        action()

    def note(self, *words):
        self.recent.append(words)
        if TRACE:
            print(*(shown(word) for word in words), file=TRACE, flush=True)

    def name_in(self, thing):
        names = NAMES.get(type(thing))
        if names is None:
            names = NAMES[type(thing)] = [name for name in dir(type(thing)) if name not in SKIPPED]
        return self.random.choice(names)

    def read(self):
        thing = self.thing()
        name = self.name_in(thing)
        self.note("read", type(thing), name)
        self.keep(getattr(thing, name))

    def call(self):
        thing = self.thing() if self.random.random() < 0.9 else self.random.choice(CLASSES)
        name = self.name_in(thing) if not isinstance(thing, type) else self.random.choice(dir(thing))
        if name in SKIPPED or name.startswith("__") and isinstance(thing, type):
            return
        arguments = self.values()
        self.note("call", type(thing), name, arguments)
        self.keep(getattr(thing, name)(*arguments))

    def write(self):
        thing = self.thing()
        name, value = self.name_in(thing), self.value()
        self.note("write", type(thing), name, value)
        setattr(thing, name, value)
        if self.random.random() < 0.05:
            delattr(thing, name)

    def construct(self):
        cls = self.random.choice(CLASSES)
        arguments = [self.random.choice(self.models), *self.values(2)] if self.random.random() < 0.6 else self.values()
        self.note("construct", cls, arguments)
        self.keep(cls(*arguments))

    def unbound(self):
        cls = self.random.choice(CLASSES)
        name = self.random.choice(dir(cls))
        if name in SKIPPED or name.startswith("__"):
            return
        arguments = self.values(5)
        self.note("unbound", cls, name, arguments)
        self.keep(getattr(cls, name)(*arguments))

    def protocol(self):
        if self.random.random() < 0.5:
            function, arguments = self.random.choice(UNARY), [self.thing()]
        else:
            function, arguments = self.random.choice(BINARY), [self.thing(), self.value()]
        self.note("protocol", function, arguments)
        result = function(*arguments)
        if function is not dir and function is not vars:
            self.keep(result)

    def change_list(self):
        thing = self.thing()
        if not hasattr(type(thing), "__len__"):
            return
        start, stop, step = (self.random.choice([None, 0, 1, 2, -1, 5, 2**40]) for _ in range(3))
        value = self.value()
        self.note("list", type(thing), start, stop, step, value)
        change = self.random.randrange(6)
        if change == 0:
            thing[start or 0] = value
        elif change == 1:
            thing[start:stop:step] = value
        elif change == 2:
            del thing[start:stop]
        elif change == 3:
            thing += value
        elif change == 4:
            again = thing if self.random.random() < 0.3 and len(thing) < 50 else []
            # A list of Python's own never comes to its end when it is added to itself on the way.
            thing.extend(itertools.chain([value], list(again) if isinstance(again, list) else again))
        else:
            for item in thing:
                self.disturb()
                self.keep(item)

    def watch(self):
        thing = self.thing()
        self.note("watch", type(thing))
        self.references.append(weakref.ref(thing, lambda _: self.disturb()))

    def meddle(self):
        """What immutable types refuse."""
        cls, other = self.random.choice(CLASSES), self.random.choice(CLASSES)
        slot = self.random.choice(["__bases__", "__name__", "__qualname__", "__module__", "__doc__", "__class__"])
        self.note("meddle", cls, slot)
        target = cls if slot != "__class__" else self.thing()
        holder = type if slot != "__class__" else object
        holder.__dict__[slot].__set__(target, (other,) if slot == "__bases__" else other if slot == "__class__" else "x")

    def disturb_plainly(self):
        self.note("disturb")
        self.disturb()


class Evil:
    """Changes the world whenever it is asked to be something."""

    def __init__(self, world):
        self.world = world

    def answer(self, *choices):
        self.world.disturb()
        return self.world.random.choice(choices)

    def __index__(self): return self.answer(0, 1, -1, 2**40)
    def __int__(self): return self.answer(0, 1, 2**40)
    def __float__(self): return self.answer(0.0, 1e300)
    def __bool__(self): return self.answer(True, False)
    def __len__(self): return self.answer(0, 1, 3)
    def __length_hint__(self): return self.answer(0, 1, 3)
    def __iter__(self): return iter(self.answer([], [self.world.thing(), self.world.thing()], [self]))
    def __getitem__(self, index): return self.answer(1, "a", self.world.thing())
    def __eq__(self, other): return self.answer(True, False, NotImplemented)
    def __lt__(self, other): return self.answer(True, False, NotImplemented)
    def __hash__(self): return self.answer(0, 1)
    def __repr__(self): return self.answer("evil", "\ud800")
    def __str__(self): return self.answer("evil", "")


class EvilInt(int):
    def __new__(cls, world):
        made = super().__new__(cls, world.random.choice(NUMBERS))
        made.world = world
        return made

    answer = Evil.answer
    __index__, __bool__, __eq__, __hash__ = Evil.__index__, Evil.__bool__, Evil.__eq__, Evil.__hash__
    __int__, __repr__ = Evil.__int__, Evil.__repr__


class EvilText(str):
    def __new__(cls, world):
        made = super().__new__(cls, world.random.choice(TEXTS))
        made.world = world
        return made

    answer = Evil.answer
    __len__, __iter__, __eq__, __hash__ = Evil.__len__, Evil.__iter__, Evil.__eq__, Evil.__hash__
    __str__ = Evil.__str__


class EvilList(list):
    """A list that changes while it is looked at."""

    def __len__(self):
        if self and WORLD.random.random() < 0.3:
            self.pop()
        return super().__len__()

    def __iter__(self):
        WORLD.disturb()
        return super().__iter__()


class Finalized:
    """Changes the world when it goes, which may be while the collector runs anywhere."""

    def __init__(self, world):
        self.world, self.cycle = world, self

    def __del__(self):
        self.world.disturb()


def shown(word):
    if isinstance(word, (str, int)) and type(word) in (str, int):
        return repr(word)[:60]
    if isinstance(word, type) or callable(word) and hasattr(word, "__name__"):
        return word.__name__
    if type(word) in (list, tuple):
        return "[" + ", ".join(shown(item) for item in word) + "]"
    return f"<{type(word).__name__}>"


def judge(error):
    """A failure is right if it is an exception with a text that tells nothing of where the library was built."""
    if isinstance(error, (SystemError, AssertionError)):
        raise error
    if not isinstance(error, (UnicodeError, Planned)):
        assert not BUILD_PATH.search(str(error)), f"a path of the build: {error}"


def probe():
    """Whatever was done before, a new model behaves."""
    model = umlmm.Factory.createNewModel()
    package, cls, part = umlmm.Package(model), umlmm.Class(model), umlmm.Property(model)
    package.packagedElement, cls.ownedAttribute = [cls], [part]
    package.name, cls.name, part.name = "p", "c", "a"
    assert part.qualifiedName == "p::c::a" and list(package.ownedMember) == [cls]
    assert list(package.allOwnedElements()) == [cls.asImmutable(), part.asImmutable()]
    cls.destroy()
    assert not part.isvalid() and not list(package.ownedMember)
    model.close()
    assert not package.isvalid()


def run(seed, steps, seconds):
    global WORLD
    for cls in CLASSES:  # literals stay for good once they are made
        for name in dir(cls):
            getattr(cls, name, None)
    gc.collect()
    before = _host.live_counts()
    world = WORLD = World(seed)
    end = time.monotonic() + seconds
    unraisable = []
    sys.unraisablehook = lambda note: unraisable.append(note.exc_value)
    done = 0
    while done < steps and time.monotonic() < end:
        if done % 1000 == 0:
            faulthandler.dump_traceback_later(HUNG_AFTER, exit=True)
            probe()
        try:
            world.step()
        except Exception as error:
            judge(error)
        if len(world.things) < 20 or done % 50 == 0:
            world.refresh()
        while unraisable:  # none is kept by a name: its traceback holds objects
            judge(unraisable.pop(0))
        done += 1
    world.depth = 10  # nothing is disturbed any more
    while world.models:
        world.models.pop().__exit__()  # it may be closed already
    world.things.clear()
    world.recent.clear()
    world.references.clear()
    unraisable.clear()
    gc.collect()
    left = {name: count - before[name] for name, count in _host.live_counts().items() if count > before[name]}
    assert not left, f"left over: {left}"
    return done


NAMES = {}
TRACE = None
WORLD = None

if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    parser.add_argument("--steps", type=int, default=10**12)
    parser.add_argument("--seconds", type=float, default=10**9)
    parser.add_argument("--trace", type=argparse.FileType("w"), help="file for the steps")
    options = parser.parse_args()
    TRACE = options.trace
    faulthandler.enable()
    try:
        count = run(options.seed, options.steps, options.seconds)
    except BaseException:
        print(f"seed {options.seed}; the last steps:", file=sys.stderr)
        for words in WORLD.recent:
            print("  ", *(shown(word) for word in words), file=sys.stderr)
        raise
    print(f"seed {options.seed}: {count} steps, no fault")
