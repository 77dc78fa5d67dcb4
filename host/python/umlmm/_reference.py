"""Reference pages in Markdown, written from the filled classes: one for what a metaclass, enumeration or other value
is to scripts, with all classes that are about it."""

import pathlib

import umlmm
from umlmm._classes import Packages, python_name
from umlmm._texts import text_about, text_of
from umlmm._types import Types

_UNLIMITED = -1


def write_reference(folder):
    """Writes the pages into a folder, which is made if need be; `index.md` leads to all. Pages of an earlier run are
    written over, not removed."""
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in _Reference(Packages()).pages().items():
        (folder / f"{name}.md").write_text(text, "utf-8")


class _Reference:
    def __init__(self, packages):
        self._packages = packages
        self._types = Types(packages, "umlmm")
        self._metaclasses = {cls.name: cls for cls in umlmm.MetaPackage().classes()}
        self._subclasses = {name: [] for name in self._metaclasses}
        for cls in self._metaclasses.values():
            for base in cls.superClasses():
                self._subclasses.get(base.name, []).append(cls.name)
        self._subjects = {}
        for cls in packages.classes.values():
            self._subjects.setdefault(self._page_of(cls), []).append(cls)
        # What every element has stands once, on the page of the kernel.
        kernel = packages.classes["Kelm.ClassObject"]
        self._common = {method.name for cls in packages.linear(kernel) for method in cls.methods} | {"MetaProperty"}

    def pages(self):
        pages = {"index": self._index(), "Lists": self._lists()}
        for subject, classes in self._subjects.items():
            pages[subject] = "\n".join([f"# {subject}\n", *self._body(subject, classes)]) + "\n"
        return pages

    def _body(self, subject, classes):
        if subject in self._metaclasses:
            return self._metaclass(self._metaclasses[subject], classes)
        if classes[0].literals:
            return self._enumeration(classes)
        if all(cls.item for cls in classes) and subject != "Kelm":
            return [self._value_sentence(subject, classes), *self._classes(classes)]
        return self._full(classes)

    # --- links

    @staticmethod
    def _page_of(cls):
        return cls.subject if cls.package.name == "umlmm" else cls.package.name

    def _page(self, name):
        return f"[{name}]({name}.md)"

    def _class(self, name):
        """A link to a class, or a data type as scripts know it."""
        cls = self._packages.classes.get(name)
        if cls is None:
            return f"`{self._types.read(name)}`"
        return f"[`{self._types.shown(name)}`]({self._page_of(cls)}.md#{cls.name})"

    def _feature(self, prop):
        owner = prop.owner().name
        if owner not in self._metaclasses:
            return f"`{owner}.{prop.name}`"
        return f"[{owner}.{prop.name}]({owner}.md#{prop.name})"

    def _type(self, prop):
        return self._page(prop.typeName) if prop.typeName in self._subjects else prop.typeName

    # --- metaclasses

    def _metaclass(self, metaclass, classes):
        name = metaclass.name
        own = self._packages.classes[f"umlmm.Immutable{name}"]
        supers = [base.name for base in metaclass.superClasses() if base.name in self._metaclasses]
        kind = "An abstract metaclass" if metaclass.isAbstract() else "A metaclass"
        lines = [f"{kind} of {metaclass.qualifiedName.partition('::')[0]}."]
        lines += [f"- Superclasses: {', '.join(map(self._page, supers)) or 'none'}",
                  f"- Subclasses: {', '.join(map(self._page, self._subclasses[name])) or 'none'}"]
        constructors = self._packages.classes[f"umlmm.{name}"].constructors
        lines += [f"- Made by `umlmm.{name}({', '.join(self._types.argument_names(method))})`"
                  for method in constructors]
        lines += self._properties(metaclass, own)
        lines += self._operations(own)
        lines += self._inherited(own)
        return [text_of(name), "", lines[0], "", *lines[1:], *self._classes(classes)]

    def _properties(self, metaclass, own):
        rows = [self._property(prop, own) for prop in metaclass.ownedProperties()]
        if not rows:
            return []
        return ["", "## Properties", "", "| Property | Meaning | Type | A script reads | Facts | Relations |",
                "|---|---|---|---|---|---|", *rows]

    def _property(self, prop, own):
        upper = "*" if prop.upper == _UNLIMITED else prop.upper
        facts = [word for word, holds in (
            ("composite", prop.isComposite), ("ordered", prop.isOrdered and prop.isMultivalued),
            ("repeatable", prop.isMultivalued and not prop.isUnique), ("derived", prop.isDerived),
            ("read-only", prop.isReadOnly)) if holds]
        facts += [f"default `{prop.default}`"] if prop.default else []
        relations = [f"opposite {self._feature(prop.opposite)}"] if prop.opposite else []
        for word, others in (("subsets", prop.subsetted), ("redefines", prop.redefined)):
            relations += [f"{word} {', '.join(map(self._feature, others))}"] if others else []
        published = next((entry for entry in own.properties if entry.name == prop.name), None)
        if published:
            reads = self._class(self._packages.type_through_changeable(published))
            name = python_name(prop.name)
        else:  # a redefinition under the name of what it redefines has no property of its own
            reads, name = "as inherited", prop.name
        meaning = text_of(prop.owner().name, prop.name)
        return (f'| <a id="{prop.name}"></a>`{name}` | {meaning} | {self._type(prop)} [{prop.lower}..{upper}] '
                f"| {reads} | {', '.join(facts)} | {'; '.join(relations)} |")

    def _operations(self, own):
        methods = [method for method in own.methods if method.name not in self._common]
        lines = [": ".join(filter(None, (self._signature(method), text_about(own, method.name)))) for method in methods]
        return ["", "## Operations", "", *lines] if lines else []

    def _signature(self, method):
        arguments = ", ".join(f"{name}: {self._class(type_name)}" for name, type_name in
                              zip(self._types.argument_names(method), method.arguments))
        text = f"- **{python_name(method.name)}**({arguments})"
        text += "" if method.result == "void" else f" → {self._class(method.result)}"
        return text + (", of the class" if method.is_static else "")

    def _inherited(self, own):
        lines = []
        for base in self._packages.linear(own)[1:]:
            names = [f"`{python_name(entry.name)}`" for entry in base.properties]
            names += [f"`{name}()`" for name in dict.fromkeys(method.name for method in base.methods)
                      if name not in self._common]
            if names and base.package.name == "umlmm":
                lines += [f"- {self._page(base.subject)}: {', '.join(names)}"]
        return ["", "## Inherited", "", *lines, "- [Kelm](Kelm.md#Kelm.ClassObject): what every element has"] \
            if lines or own.superclasses else []

    # --- other subjects

    def _enumeration(self, classes):
        name = classes[0].short
        literals = [f"| {number} | `umlmm.{name}.{python_name(literal)}` | `\"{literal}\"` | {text_of(name, literal)} |"
                    for number, literal in enumerate(classes[0].literals)]
        methods = [method for method in classes[0].methods if method.name not in classes[0].literals]
        return [text_of(name), "",
                "An enumeration. A literal is also what its call answers, and may be given by its name.", "",
                "| Number | Literal | Name | Meaning |", "|---|---|---|---|", *literals,
                "", "## Methods", "", *map(self._signature, methods), *self._classes(classes)]

    def _value_sentence(self, subject, classes):
        return f"Values of the primitive type {subject} are `{self._types.read(classes[0].item)}` in lists of scripts."

    def _full(self, classes):
        lines = []
        for cls in classes:
            lines += [f'## <a id="{cls.name}"></a>{self._types.shown(cls.name)}', ""]
            lines += [cls.description, ""] if cls.description else []
            lines += [f"Superclasses: {', '.join(map(self._class, cls.superclasses))}", ""] if cls.superclasses else []
            lines += [f"- `{entry.name}`: {self._class(entry.type)}" + (f", {entry.summary}" if entry.summary else "")
                      for entry in cls.properties]
            lines += [*map(self._signature, cls.methods), ""]
        return lines

    def _classes(self, classes):
        lines = ["", "## Classes", "", "| Class | Superclasses | |", "|---|---|---|"]
        for cls in classes:
            supers = ", ".join(map(self._class, cls.superclasses))
            lines += [f'| <a id="{cls.name}"></a>`{cls.name}` | {supers} | {self._purpose(cls)} |']
        return lines

    def _purpose(self, cls):
        if cls.is_list:
            kind = "Changeable list" if cls.is_changeable_list else "List"
            return f"[{kind}](Lists.md) of {self._class(cls.item)}"
        if cls.item:
            return f"[Iterator](Lists.md#iterators) over {self._class(cls.item)}"
        if not cls.changeable:
            return f"{len(cls.methods)} [meta properties](Kelm.md#Kelm.ImmutableProperty)"
        if cls.literals:
            return "The literals"
        return "Changeable reference" if cls.changeable == cls.name else "Read-only reference"

    def _lists(self):
        """All lists have the same methods, so those of the most general ones stand for them."""
        lists = "umlmm.ImmutableSequenceOfImmutableElement", "umlmm.SequenceOfElement"
        iterator = "umlmm.ElementIterator"
        lines = ["# Lists and iterators\n", "Python's own ways of a list count from 0, the published methods from 1. "
                 "What follows is for elements; other lists have the same methods for what they hold.", ""]
        for title, name in (("Lists", lists[0]), ("Changeable lists", lists[1]), ("Iterators", iterator)):
            lines += [f'## <a id="{title.split()[-1].lower()}"></a>{title}' if title == "Iterators" else f"## {title}",
                      "", *map(self._signature, self._packages.classes[name].methods), ""]
        return "\n".join(lines)

    # --- the index

    def _index(self):
        metaclasses = [f"- {self._page(name)}{' (abstract)' if cls.isAbstract() else ''}: {text_of(name)}"
                       for name, cls in sorted(self._metaclasses.items())]
        enumerations = [name for name, classes in self._subjects.items() if classes[0].literals]
        others = [name for name in self._subjects if name not in self._metaclasses and name not in enumerations]
        return "\n".join([
            "# umlmm\n", f"{len(self._packages.packages[-1].classes)} classes of package umlmm and those of the kernel "
            "below it. A property is named as scripts write it; lists are explained under [Lists](Lists.md).", "",
            "## Metaclasses", "", *metaclasses,
            "", "## Enumerations", "", *(f"- {self._page(name)}: {text_of(name)}" for name in sorted(enumerations)),
            "", "## Values, factory and kernel", "", *(f"- {self._page(name)}" for name in sorted(others)),
            "", "## Functions", "", *map(self._signature, self._packages.packages[-1].functions)]) + "\n"
