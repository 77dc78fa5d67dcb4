"""Diagrams of packages, of use cases, of objects, of activities and of components: boxes and lines as those of classes
are, of other elements and in other shapes."""

from __future__ import annotations

import umlmm
from umlmm.drawing import notation, relating
from umlmm.drawing.class_diagram import Diagram
from umlmm.drawing.view import End, Text


class _Special(Diagram):
    """A diagram of some classes of elements, and of the packages that have any of them."""

    of: tuple[type, ...] = ()

    def is_shown(self, element):
        return isinstance(element, self.of)

    def has_box(self, element):
        if self.options.hides(element):
            return False
        if isinstance(element, umlmm.ImmutablePackage):
            return any(self.is_shown(part) for kind in self.of for part in element.descendants(kind))
        return self.is_shown(element)

    def members(self, element):
        return [part for part in getattr(element, "packagedElement", ()) if self.has_box(part)]


def _typed(element):
    return f"{notation.clean(element.name or '')} : {notation.name_of(element.type)}".strip()


class UseCaseDiagram(_Special):
    """Actors and use cases, these in the classifiers whose use cases they are."""

    kind = "use case"
    of = (umlmm.ImmutableActor, umlmm.ImmutableUseCase)

    @staticmethod
    def opens(element):
        return isinstance(element, umlmm.ImmutablePackage) or _is_subject(element)

    def has_box(self, element):
        return super().has_box(element) or _is_subject(element) and not self.options.hides(element)

    def members(self, element):
        if not isinstance(element, umlmm.ImmutablePackage):
            parts = [*element.ownedUseCase, *(case for case in element.useCase if case.subject[0] == element)]
            return [part for part in dict.fromkeys(parts) if self.has_box(part)]
        return [part for part in super().members(element)
                if not (isinstance(part, umlmm.ImmutableUseCase) and len(part.subject))]

    def shape(self, element):
        shape = relating.nearest({"Package": "package", "UseCase": "ellipse", "Actor": "actor"}, element)
        return shape or "frame"

    def box(self, element, is_full=True):
        box = super().box(element, is_full=False)
        if box.shape in ("ellipse", "actor"):
            box.keywords = box.keywords[1:]
        return box


def _is_subject(element):
    return isinstance(element, umlmm.ImmutableClassifier) and not isinstance(element, umlmm.ImmutableUseCase) \
        and bool(len(element.ownedUseCase) or len(element.useCase))


class ObjectDiagram(_Special):
    """Instances with their slots; a slot whose value is an instance that is shown is a line."""

    kind = "object"
    of = (umlmm.ImmutableInstanceSpecification,)

    def is_shown(self, element):
        return (isinstance(element, umlmm.ImmutableInstanceSpecification)
                and not isinstance(element, umlmm.ImmutableEnumerationLiteral) and not _links(element))

    def box(self, element, is_full=True):
        box = super().box(element, is_full=False)
        if isinstance(element, umlmm.ImmutableInstanceSpecification):
            kinds = ", ".join(notation.name_of(kind) for kind in element.classifier)
            name = notation.clean(element.name or "") + (f" : {kinds}" if kinds else "")
            box.name = Text(notation.clean(name.strip(), 100), element, bold=True, underlined=True)
            box.keywords = box.keywords[1:]
            if is_full and "attributes" in self.options:
                box.compartments = [[notation.line(slot, _slot(slot)) for slot in element.slot]]
        return box

    def relate(self, only=None):
        super().relate(only)
        for instance in [each for each in self.shown if isinstance(each, umlmm.ImmutableInstanceSpecification)]:
            for slot in instance.slot:
                for other in _instances(slot):
                    if other in self.shown:
                        name = notation.name_of(slot.definingFeature) if slot.definingFeature is not None else ""
                        self.line(slot, End(self.shown[instance]),
                                  End(self.shown[other], "arrow", name if "roles" in self.options else "", "", slot))
        self._link()
        self.finish()

    def _link(self):
        """Instances of associations: a line for each, with the roles of those that it links."""
        links = dict.fromkeys(link for instance in list(self.shown) for link in _links_of(instance))
        for link in links:
            ends = [(slot, other) for slot in link.slot for other in _instances(slot)]
            if len(ends) == 2 and all(other in self.shown for _, other in ends) and not self.options.hides(link):
                first, second = (End(self.shown[other], "", notation.name_of(slot.definingFeature), "", slot)
                                 for slot, other in ends)
                self.line(link, first, second, label=notation.clean(link.name or "") or _links(link))


def _links(element):
    """The name of the association that an instance is of, if it is of one."""
    for kind in element.classifier:
        if isinstance(kind, umlmm.ImmutableAssociation):
            return notation.name_of(kind)
    return ""


def _links_of(instance):
    """The instances of associations that name an instance in a slot."""
    for value in instance.referencedBy():
        owner = value.owner
        if isinstance(value, umlmm.ImmutableInstanceValue) and isinstance(owner, umlmm.ImmutableSlot) \
                and _links(owner.owningInstance):
            yield owner.owningInstance


def _instances(slot):
    return [value.instance for value in slot.value
            if isinstance(value, umlmm.ImmutableInstanceValue) and value.instance is not None]


def _slot(slot):
    name = notation.name_of(slot.definingFeature) if slot.definingFeature is not None else "?"
    return f"{name} = {', '.join(notation.value(value) for value in slot.value)}"


class ActivityDiagram(_Special):
    """Nodes and edges; the pins of an action are where its edges come to it."""

    kind = "activity"
    of = (umlmm.ImmutableActivity, umlmm.ImmutableActivityNode)
    _SHAPES = {"InitialNode": "initial", "ActivityFinalNode": "final", "ControlNode": "diamond", "Action": "action",
               "Package": "package", "Activity": "frame", "Element": "box"}

    @staticmethod
    def opens(element):
        return isinstance(element, (umlmm.ImmutablePackage, umlmm.ImmutableActivity))

    def is_shown(self, element):
        return isinstance(element, self.of) and not isinstance(element, umlmm.ImmutablePin)

    def members(self, element):
        if isinstance(element, umlmm.ImmutableActivity):
            return [node for node in element.node if self.has_box(node)]
        return super().members(element)

    def shape(self, element):
        return relating.nearest(self._SHAPES, element)

    def box(self, element, is_full=True):
        box = super().box(element, is_full=False)
        if isinstance(element, umlmm.ImmutableActivityNode):
            box.keywords = []
            if isinstance(element, umlmm.ImmutableControlNode):
                box.name.text = notation.clean(element.name or "")
            if isinstance(element, umlmm.ImmutableObjectNode) and element.type is not None:
                box.name = Text(_typed(element), element)
        return box

    def relate(self, only=None):
        super().relate(only)
        edges = dict.fromkeys(edge for element in self.shown if isinstance(element, umlmm.ImmutableActivity)
                              for edge in element.edge)
        for edge in edges:
            if edge.source is not None and edge.target is not None and not self.options.hides(edge):
                source, target = self._node(edge.source), self._node(edge.target)
                if source and target:
                    target.mark = f"arrow {target.mark}".strip()
                    self.line(edge, source, target, label=notation.clean(edge.name or ""))
        self.finish()

    def _node(self, node):
        """The end of an edge at a node: at its box, or for a pin at that of the action."""
        if node in self.shown:
            return End(self.shown[node], element=node)
        if isinstance(node, umlmm.ImmutablePin) and node.owner in self.shown:
            return End(self.shown[node.owner], "pin", notation.clean(node.name or ""), "", node)
        return None


class ComponentDiagram(_Special):
    """Components with parts, ports and connectors; interfaces are balls, in the sockets of those that require them."""

    kind = "component"
    of = (umlmm.ImmutableComponent,)
    _SHAPES = {"Package": "package", "Component": "component", "Port": "port", "Element": "box"}

    @staticmethod
    def opens(element):
        return isinstance(element, (umlmm.ImmutablePackage, umlmm.ImmutableComponent))

    def is_shown(self, element):
        return isinstance(element, self.of) or isinstance(element, umlmm.ImmutableProperty) and (
            isinstance(element, umlmm.ImmutablePort) or element.isComposite and element.association is None)

    def members(self, element):
        inner = super().members(element)
        return [*inner, *(part for part in getattr(element, "ownedAttribute", ()) if self.has_box(part))]

    def shape(self, element):
        return relating.nearest(self._SHAPES, element)

    def box(self, element, is_full=True):
        box = super().box(element, is_full=False)
        box.keywords = [word for word in box.keywords if word not in ("property", "port")]
        if box.shape == "box" and getattr(element, "type", None) is not None:
            box.name = Text(_typed(element), element)
        return box

    def relate(self, only=None):
        super().relate(only)
        components = [each for each in self.shown if isinstance(each, umlmm.ImmutableComponent)]
        users = {}
        for component in components:
            for interface in component.provided:
                users.setdefault(interface, []).append((component, ""))
            for interface in component.required:
                users.setdefault(interface, []).append((component, "socket"))
        for interface, ends in users.items():
            if self.options.hides(interface):
                continue
            keys = [self.shown[component] for component, _ in ends]
            ball = self.add(interface, "ball", keys, notation.name_of(interface))
            for key, (_, mark) in zip(keys, ends):
                self.line(interface, End(key), End(ball, mark)).kind = "required" if mark else "provided"
        for component in components:
            for connector in component.ownedConnector:
                ends = [self._role(end) for end in connector.end]
                if len(ends) == 2 and all(ends) and not self.options.hides(connector):
                    is_delegation = connector.kind == "delegation"
                    ends[1].mark = ends[1].mark or ("arrow" if is_delegation else "")
                    self.line(connector, *ends, keyword="delegate" if is_delegation else "",
                              label=notation.clean(connector.name or ""))
        self.finish()

    def _role(self, end):
        if end.partWithPort in self.shown:
            return End(self.shown[end.partWithPort], "pin", notation.name_of(end.role) if end.role else "", "", end)
        return End(self.shown[end.role], element=end) if end.role in self.shown else None


class PackageDiagram(_Special):
    """Packages alone: which stand in which, what they import and depend on."""

    kind = "package"
    of = (umlmm.ImmutablePackage,)

    def has_box(self, element):
        return self.is_shown(element) and not self.options.hides(element)


KINDS = {each.kind: each for each in (PackageDiagram, ComponentDiagram, ObjectDiagram, UseCaseDiagram, ActivityDiagram)}
