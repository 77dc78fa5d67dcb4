"""The reader of Python packages: its counts against a count of its own kind, its model on a package full of traps."""

import ast
import importlib.util
import os
import pathlib
import re
import subprocess
import sys
import textwrap

import pytest

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"


def run_example(*arguments):
    return subprocess.run(
        [sys.executable, EXAMPLES / "reverse_python.py", *arguments], capture_output=True, text=True, check=False
    )


class Counter(ast.NodeVisitor):
    """Counts what one file should become, scope by scope."""

    def __init__(self):
        self.counts = dict.fromkeys(("Generalization", "Property", "Operation", "Parameter", "Comment"), 0)
        self.classes = set()
        self.class_count = 0
        self.bases = set()
        self.members = None  # of the class being visited: name -> kind

    def visit_Module(self, node):
        self.counts["Comment"] += ast.get_docstring(node) is not None
        self.generic_visit(node)

    def visit_ClassDef(self, node):
        self.class_count += 1
        self.classes.add(node.name)
        self.bases |= {ast.unparse(base) for base in node.bases}
        self.counts["Generalization"] += len(node.bases)
        self.counts["Comment"] += ast.get_docstring(node) is not None
        outer, self.members = self.members, {}
        self.generic_visit(node)
        self.counts["Property"] += sum(kind == "Property" for kind in self.members.values())
        self.counts["Operation"] += sum(kind == "Operation" for kind in self.members.values())
        self.members = outer

    def visit_FunctionDef(self, node):
        if self.members is None:
            return
        # `self.x += 1` makes no attribute, it needs one.
        changed = {inner.target for inner in ast.walk(node) if isinstance(inner, ast.AugAssign)}
        for inner in set(ast.walk(node)) - changed:
            is_store = isinstance(inner, ast.Attribute) and isinstance(inner.ctx, ast.Store)
            if is_store and getattr(inner.value, "id", None) == "self":
                self.members.setdefault(inner.attr, "Property")
        marks = {ast.unparse(mark) for mark in node.decorator_list}
        if self.members.get(node.name) == "Operation" or marks & {f"{node.name}.setter", f"{node.name}.deleter"}:
            return
        self.members[node.name] = "Property" if "property" in marks else "Operation"
        self.counts["Comment"] += ast.get_docstring(node) is not None
        if "property" not in marks:
            arguments = [part for part in ast.walk(node.args) if isinstance(part, ast.arg)]
            self.counts["Parameter"] += len(arguments) - ("staticmethod" not in marks) + (node.returns is not None)

    visit_AsyncFunctionDef = visit_FunctionDef

    def visit_comprehension(self, node):
        """Its variables are its own."""

    def visit_Name(self, node):
        if self.members is not None and isinstance(node.ctx, ast.Store):
            self.members.setdefault(node.id, "Property")


def expected_counts(package):
    folder = pathlib.Path(importlib.util.find_spec(package).origin).parent
    files = list(folder.rglob("*.py"))
    counter = Counter()
    for path in files:
        counter.visit(ast.parse(path.read_text()))
    external = {base for base in counter.bases if base.rpartition(".")[2] not in counter.classes}
    # Every file is a package, __init__.py the top one; one more holds the bases from elsewhere.
    packages = {"Package": len(files) + 1, "Class": counter.class_count + len(external)}
    return {**packages, **counter.counts}


@pytest.mark.parametrize("package", ["http", "unittest"])
def test_counts_agree_with_the_source(package):
    result = run_example(*([] if package == "http" else [package]))
    assert result.returncode == 0, result.stderr
    printed = {kind: int(count) for count, kind in re.findall(r"^ +(\d+) (\w+)$", result.stdout, re.MULTILINE)}
    assert printed == expected_counts(package)


def test_unknown_package_is_a_plain_message():
    result = run_example("no.such.package")
    assert result.returncode == 1
    assert result.stderr == "There is no package 'no.such.package' whose source could be read.\n"


SHOP = {
    "__init__.py": '"""A shop."""\nclass Shop: pass\n',
    "broken.py": "class Broken(:\n",
    "goods/__init__.py": "",
    "goods/order.py": '''
        from threading import Thread as Base
        from shop import Shop

        class Item:
            class Kind: pass
            kind: "Item.Kind" = Kind()
            _count, total = 0, 0
            __slots__ = ()

        class Order(Item):
            """What somebody wants."""
            def __init__(self, shop: "Shop | None", *items, express=False, **rest):
                self.shop = shop
                if items:
                    self.first = self.last = items[0]
                def inner(self):
                    self.hidden = 1
            @property
            def size(self) -> int:
                """How much it is."""
                return 1
            @size.setter
            def size(self, value): self.first = value
            @staticmethod
            def parse(text: str) -> "list[Order]": ...
        ''',
    "goods/thread.py": '''
        from threading import Thread
        if True:
            class Thread(Thread):
                order = None
            class Item(Thread): pass
            class Special(Item): pass
        ''',
}


@pytest.fixture
def shop(tmp_path, monkeypatch):
    """The model of the package `shop`."""
    for name, text in SHOP.items():
        path = tmp_path / "shop" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(textwrap.dedent(text))
    monkeypatch.syspath_prepend(tmp_path)
    monkeypatch.syspath_prepend(EXAMPLES)
    import reverse_python
    import umlmm

    model = umlmm.Factory.createNewModel()
    yield reverse_python.Reader(model).read("shop")
    model.close()


def member(namespace, *path):
    for name in path:
        (namespace,) = [found for found in namespace.ownedMember if found.name == name]
    return namespace


def test_structure_and_bases(shop):
    assert [part.name for part in shop.ownedMember] == ["Shop", "goods"]
    (comment,) = shop.ownedComment
    assert (comment.body, list(comment.annotatedElement)) == ("A shop.", [shop])
    order, item = member(shop, "goods", "order", "Order"), member(shop, "goods", "order", "Item")
    assert list(order.superClass) == [item]
    # A class that shares its name with its base, and two of one name in different modules.
    thread = member(shop, "goods", "thread", "Thread")
    assert [general.qualifiedName for general in thread.superClass] == ["external::Thread"]
    special = member(shop, "goods", "thread", "Special")
    assert [cls.namespace.name for cls in special.allParents()] == ["thread", "thread", "external"]


def test_members(shop):
    import umlmm

    item, order = member(shop, "goods", "order", "Item"), member(shop, "goods", "order", "Order")
    assert [part.name for part in item.ownedAttribute] == ["kind", "_count", "total", "__slots__"]
    assert member(item, "kind").type == member(item, "Kind")
    assert member(item, "_count").visibility == umlmm.VisibilityKind.Private
    assert member(item, "__slots__").visibility == umlmm.VisibilityKind.Public

    assert [part.name for part in order.ownedAttribute] == ["size", "shop", "first", "last"]
    assert [part.isReadOnly for part in order.ownedAttribute] == [True, False, False, False]
    assert member(order, "shop").type == member(shop, "Shop")
    assert member(order, "size").ownedComment[0].body == "How much it is."

    create, parse = order.ownedOperation
    assert [part.name for part in create.ownedParameter] == ["shop", "items", "express", "rest"]
    assert [part.default for part in create.ownedParameter] == ["", "", "False", ""]
    assert (create.isStatic, parse.isStatic) == (False, True)
    assert [part.direction.toString() for part in parse.ownedParameter] == ["In", "Return"]
    assert parse.type == order


def test_questions(shop):
    import reverse_python

    special = member(shop, "goods", "thread", "Special")
    line = reverse_python.line_above(special)
    assert [cls.name for cls in line] == ["Special", "Item", "Thread", "Thread"]
    assert reverse_python.users(member(shop, "Shop")) == [
        "shop.goods.order.Order.__init__",
        "shop.goods.order.Order.shop",
    ]
    assert reverse_python.users(special) == []
