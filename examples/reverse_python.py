"""Reads a Python package, builds its UML model and asks the model about it.

    make run                    reads the standard library's `http`
    make run ARGS=asyncio       reads any other package or module that can be imported

The source is read as text; its modules are not run. What becomes what:

    package or module     Package, modules inside their packages
    class                 Class, with a Generalization for each of its bases
    attribute             Property: assigned in the class, `self.x = ...` in a method, or a @property
    method                Operation with its Parameters
    docstring             Comment

Names are looked up in the package itself. Bases from elsewhere become classes of a package "external".
Functions outside classes have no place in a class model and are left out.
"""

import ast
import os
import sys
import tempfile

import python_source as source
import umlmm


class Reader:
    """Builds the model of one package: first all classes, then what they hold, which may name any class."""

    def __init__(self, model):
        self.model = model
        self.external = self.new(umlmm.Package, "external")
        self.trees = []  # class, package of its module, syntax tree
        self.namesakes = {}  # classes by simple name

    def read(self, name):
        top = self.new(umlmm.Package, name)
        for path, place in source.source_files(name):
            try:
                tree = ast.parse(path.read_bytes())
            except SyntaxError as error:
                print(f"{path} is left out: {error}", file=sys.stderr)
                continue
            module = self.package_at(top, place)
            self.add_docstring(module, tree)
            self.add_classes(tree, module, module.packagedElement)
        for cls, module, tree in self.trees:
            self.add_bases(cls, module, tree)
            self.add_members(cls, module, tree)
        return top

    def new(self, metaclass, name, owner=None):
        """A named element; `owner` is the list to put it into, such as `cls.ownedAttribute`."""
        element = metaclass(self.model)
        element.name = name
        is_private = name.startswith("_") and not name.endswith("__")
        element.visibility = umlmm.VisibilityKind.Private if is_private else umlmm.VisibilityKind.Public
        if owner is not None:
            owner.append(element)
        return element

    def package_at(self, package, place):
        for name in place:
            inner = [nested for nested in package.nestedPackage if nested.name == name]
            package = inner[0] if inner else self.new(umlmm.Package, name, package.packagedElement)
        return package

    def add_docstring(self, element, tree):
        text = ast.get_docstring(tree)
        if text:
            comment = umlmm.Comment(self.model)
            comment.body = text
            comment.annotatedElement.append(element)
            element.ownedComment.append(comment)

    def add_classes(self, scope, module, owner):
        for tree in source.classes(scope):
            cls = self.new(umlmm.Class, tree.name, owner)
            self.trees.append((cls, module, tree))
            self.namesakes.setdefault(cls.name, []).append(cls)
            self.add_docstring(cls, tree)
            self.add_classes(tree, module, cls.nestedClassifier)

    def find(self, name, module):
        """The class that `Jar`, `jars.Jar` or `Outer.Inner` means in a module, or None if unknown."""
        namesakes = self.namesakes.get(name.rpartition(".")[2], [])
        found = [cls for cls in namesakes if f".{dotted_name(cls)}".endswith(f".{name}")]
        near = [cls for cls in found if module in cls.allNamespaces()]
        return (near or found or [None])[0]

    def find_external(self, name):
        known = [cls for cls in self.external.ownedType if cls.name == name]
        return known[0] if known else self.new(umlmm.Class, name, self.external.packagedElement)

    def find_type(self, annotation, value, module):
        """The first class of the package that the annotation or else the value names."""
        found = (self.find(name, module) for name in source.type_names(annotation, value))
        return next(filter(None, found), None)

    def add_bases(self, cls, module, tree):
        for name in source.base_names(tree):
            general = self.find(name, module)
            if general is None or general.conformsTo(cls):  # `class Thread(Thread)` extends an imported one
                general = self.find_external(name)
            generalization = umlmm.Generalization(self.model)
            generalization.general = general
            cls.generalization.append(generalization)

    def add_members(self, cls, module, tree):
        methods = source.methods(tree)
        for method in methods:
            if source.is_decorated(method, "property", "cached_property"):
                attribute = self.add_attribute(cls, module, method.name, method.returns, None)
                attribute.isReadOnly = True
                self.add_docstring(attribute, method)
            else:
                self.add_operation(cls, module, method)
        taken = {method.name for method in methods}
        for name, annotation, value in source.attributes(tree):
            if name not in taken:
                self.add_attribute(cls, module, name, annotation, value)

    def add_attribute(self, cls, module, name, annotation, value):
        attribute = self.new(umlmm.Property, name, cls.ownedAttribute)
        attribute.type = self.find_type(annotation, value, module)
        if isinstance(value, ast.Constant):
            attribute.default = ast.unparse(value)
        return attribute

    def add_operation(self, cls, module, method):
        operation = self.new(umlmm.Operation, method.name, cls.ownedOperation)
        operation.isStatic = source.is_decorated(method, "staticmethod", "classmethod")
        self.add_docstring(operation, method)
        for argument, default in source.arguments(method):
            parameter = self.new(umlmm.Parameter, argument.arg, operation.ownedParameter)
            parameter.type = self.find_type(argument.annotation, default, module)
            if default is not None:
                parameter.default = ast.unparse(default)
        if method.returns is not None:
            result = self.new(umlmm.Parameter, "return", operation.ownedParameter)
            result.direction = umlmm.ParameterDirectionKind.Return
            result.type = self.find_type(method.returns, None, module)


def dotted_name(element):
    return element.qualifiedName.replace("::", ".")


def line_above(cls):
    """The longest line of inheritance from a class upwards."""
    return [cls] + max((line_above(general) for general in cls.superClass), key=len, default=[])


def users(cls):
    """The attributes and operations that have a class for a type."""
    typed = [element for element in cls.referencedBy() if isinstance(element, umlmm.TypedElement)]
    members = [element.operation if isinstance(element, umlmm.Parameter) else element for element in typed]
    return sorted({dotted_name(member) for member in members})


def print_tree(namespace, depth=0):
    line = "    " * depth + namespace.name
    if isinstance(namespace, umlmm.Class):
        bases = ", ".join(general.name for general in namespace.superClass)
        members = f"properties {len(namespace.ownedAttribute)}, operations {len(namespace.ownedOperation)}"
        line += f"({bases}): {members}" if bases else f": {members}"
    print(line)
    for member in namespace.ownedMember:
        if isinstance(member, (umlmm.Package, umlmm.Class)):
            print_tree(member, depth + 1)


def print_counts(model):
    print("\nThe model holds")
    for metaclass in (umlmm.Package, umlmm.Class, umlmm.Generalization, umlmm.Property, umlmm.Operation,
                      umlmm.Parameter, umlmm.Comment):
        print(f"{len(model.instancesOf(metaclass.MetaClass())):8} {metaclass.__name__}")


def print_answers(model):
    classes = model.instancesOf(umlmm.Class.MetaClass())
    deepest = max(map(line_above, classes), key=len, default=[])
    print("\nThe deepest inheritance:\n    " + " < ".join(cls.name for cls in deepest))

    print("\nThe classes with most operations:")
    for cls in sorted(classes, key=lambda cls: len(cls.ownedOperation), reverse=True)[:5]:
        inherited = [member for member in cls.inheritedMember if isinstance(member, umlmm.Operation)]
        print(f"    {cls.name:32}{len(cls.ownedOperation):4}, and {len(inherited)} inherited")

    print("\nThe classes that others refer to most:")
    for cls in sorted(filter(users, classes), key=lambda cls: len(users(cls)), reverse=True)[:5]:
        print(f"    {cls.name:32}{len(users(cls)):4}, such as {users(cls)[0]}")


def save_picture(package):
    """Draws the package; without Graphviz, as a text of PlantUML."""
    view = umlmm.draw(package, hide=["parameters", "comments"])
    for suffix in (".svg", ".puml"):
        path = os.path.join(tempfile.gettempdir(), f"umlmm-{package.name}{suffix}")
        try:
            view.save(path)
            return print(f"\nThe picture of {package.name} is {path}")
        except RuntimeError as missing:
            print(f"\n{missing}")


def main():
    model = umlmm.Factory.createNewModel()
    reader = Reader(model)
    package = reader.read(sys.argv[1] if len(sys.argv) > 1 else "http")
    print_tree(package)
    print("\nBases from elsewhere:", ", ".join(cls.name for cls in reader.external.ownedType))
    print_counts(model)
    print_answers(model)
    save_picture(package)
    model.close()


if __name__ == "__main__":
    main()
