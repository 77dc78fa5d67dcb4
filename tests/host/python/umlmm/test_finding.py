"""Look-ups by name, held against a walk over the model while it is changed at random."""

import random
import sys
import types

import pytest

import umlmm

NAMES = ["a", "b", "c", "d", ""]


def by_walk(model):
    """Each path with the first element that it leads to."""
    found = {}
    waiting = [("", list(model.rootElements()))]
    while waiting:
        prefix, parts = waiting.pop()
        for part in parts:
            if part.name and prefix + part.name not in found:
                found[prefix + part.name] = part
                waiting.append((f"{prefix}{part.name}::", list(part.containeeKelm)))
    return found


def change(model, rng):
    """Makes, names, moves, orders or destroys a package."""
    packages = model.all(umlmm.Package)
    one, other = (rng.choice(packages) for _ in range(2)) if packages else (None, None)
    action = rng.random()
    if one is None or action < 0.4:
        umlmm.Package(owner=model if one is None or rng.random() < 0.1 else one, name=rng.choice(NAMES))
    elif action < 0.6:
        one.name = rng.choice(NAMES)
    elif action < 0.8 and other not in [one, *one.descendants()]:
        other.packagedElement.append(one)
    elif action < 0.85:
        one.packagedElement.reverse()
    elif action < 0.93 and one.owner is not None:
        one.owner.packagedElement.remove(one)
    elif action > 0.93:
        one.destroy()


@pytest.mark.parametrize("seed", range(3))
def test_look_ups_find_what_a_walk_finds(seed):
    rng = random.Random(seed)
    with umlmm.new_model() as model:
        for step in range(600):
            change(model, rng)
            if step % 10:
                continue
            expected = by_walk(model)
            paths = [*expected, *("::".join(rng.choices("abcd", k=rng.randrange(1, 4))) for _ in range(10))]
            assert {path: model[path] for path in paths if path in model} == expected


def test_the_first_look_up_may_come_after_elements_have_left_the_top_level():
    with umlmm.new_model() as model:
        packages = [umlmm.Package(owner=model, name=f"p{number}") for number in range(9)]
        packages[1].destroy()
        packages[0].packagedElement.append(packages[4])
        assert model["p8"] is packages[8]
        assert model["p0::p4"] is packages[4]
        assert "p1" not in model and "p4" not in model


class Graph:
    """As much of a graph of networkx as is asked for here."""

    def __init__(self):
        self.nodes, self.edges = {}, []

    def __contains__(self, node):
        return node in self.nodes

    def add_node(self, node, **attributes):
        self.nodes[node] = attributes

    def add_edge(self, source, target, **attributes):
        assert source in self and target in self
        self.edges.append((source.name, target.name, attributes["feature"]))


def test_what_was_found_is_a_graph(model, monkeypatch):
    a, b, c = (umlmm.Class(model, name=name) for name in "abc")
    umlmm.generalize(a, b)
    x = a.ownedAttribute.create(name="x", type=c)
    monkeypatch.setitem(sys.modules, "networkx", types.SimpleNamespace(MultiDiGraph=Graph))
    graph = model.where(umlmm.Class, lambda each: each != c).graph("general", "ownedAttribute.type")
    assert graph.edges == [("a", "b", "general"), ("a", "c", "ownedAttribute.type")]
    assert graph.nodes[c] == {"kind": "Class", "path": "c"} and len(graph.nodes) == 3
    assert a.descendants(umlmm.Property).graph().edges == []
    assert umlmm.queries.Found([a, x, c]).graph().edges == [
        ("a", "x", "ownedAttribute"), ("x", "a", "class_"), ("x", "c", "type")]
    for name, ask in (("networkx", lambda: model.all().graph()), ("pandas", lambda: model.all().table("path").dataframe())):
        monkeypatch.setitem(sys.modules, name, None)
        with pytest.raises(ImportError, match=f"needs the Python package {name}, which is not installed"):
            ask()


def test_a_table_is_written_as_comma_separated_values(model, tmp_path):
    umlmm.Class(model, name='a "quoted", name')
    umlmm.Class(model, name="=1")  # which a spreadsheet would run
    text = model.all(umlmm.Class).table("name", "isAbstract").csv(tmp_path / "table.csv")
    assert (tmp_path / "table.csv").read_text() == text == 'name,isAbstract\n"a ""quoted"", name",False\n\'=1,False\n'
