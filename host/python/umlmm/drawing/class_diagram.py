"""Class diagrams: packages with what is in them, classifiers with their features, and the relations among them."""

from __future__ import annotations

import umlmm
from umlmm.drawing import choosing, notation, relating
from umlmm.drawing.view import Box, End, Relation, Text, View

# Keywords of classifiers that are not that of their metaclass, `DataType` -> dataType.
_KEYWORDS = {"Class": "", "AssociationClass": "", "PrimitiveType": "primitive", "Package": "", "Model": "model"}

# Compartments: the option, the feature that holds the lines, how each line reads.
_COMPARTMENTS = (("attributes", "ownedAttribute", notation.attribute),
                 ("operations", "ownedOperation", notation.operation),
                 ("receptions", "ownedReception", notation.reception),
                 ("literals", "ownedLiteral", notation.literal))


def build(chosen, options, depth, direction, limit, of=None):
    """A diagram of classes, or of another kind of boxes: `of` is a class of diagrams."""
    of = of or Diagram
    if chosen.opened or chosen.is_one and of.opens(chosen.elements[0]):
        return _packages(chosen, options, depth, direction, limit, of)
    return _neighbourhood(chosen, options, 1 if depth is None and chosen.is_one else depth or 0, direction, limit, of)


def build_inheritance(chosen, options, depth, direction, limit):
    """Classifiers with all above and below them; of a model or package, those that have some."""
    view = View("inheritance", f"Inheritance of {chosen.title}", direction)
    elements = chosen.elements
    if chosen.opened:
        elements = [part for element in elements for part in (element, *element.descendants())
                    if isinstance(part, umlmm.ImmutableGeneralization)]
        elements = dict.fromkeys(end for part in elements if part.general is not None and part.specific is not None
                                 for end in (part.general, part.specific))
    elif not all(isinstance(element, umlmm.ImmutableClassifier) for element in elements):
        raise ValueError(f"Inheritance is drawn of classifiers, not of {chosen.title}")
    found, level = dict.fromkeys(elements), 0
    up = down = list(found)
    while (up or down) and (depth is None or level < depth):
        level += 1
        up = [general for element in up for general in element.general if general not in found]
        down = [special for element in down for special in _specials(element) if special not in found]
        found.update(dict.fromkeys([*up, *down]))
    shown = list(found)
    if limit is not None and len(shown) > limit:
        view.notes.append(f"{len(shown)} classifiers are related by inheritance, and the first {limit} are shown; "
                          f"depth=1 shows a classifier's next ones, limit=None all")
        shown = shown[:limit]
    diagram = Diagram(view, options)
    for element in shown:
        view.boxes.append(diagram.box(element, is_full=False))
    diagram.relate(only="generalizations")
    return view


def _specials(element):
    return [other.specific for other in element.referencedBy()
            if isinstance(other, umlmm.ImmutableGeneralization) and other.specific is not None]


def _packages(chosen, options, depth, direction, limit, of):
    view = View(of.kind, chosen.title, direction)
    diagram = of(view, options)
    opened = 1_000 if depth is None else depth
    count = diagram.count(chosen.elements, opened)
    if limit is not None and count > limit:
        at = 0
        while diagram.count(chosen.elements, at + 1) <= limit:
            at += 1
        view.notes.append(f"All of it would be {count} boxes, more than {limit}: packages below level {at} are closed. "
                          f"A package or a class can be drawn by itself, pages() has views that "
                          f"show everything, and limit=None draws all")
        opened = at
    view.boxes = diagram.boxes_of(chosen.elements, opened)
    diagram.relate()
    view._pages = lambda: [page for package in _all_packages(chosen.elements)
                           for page in _pages(package, options, direction, limit, of)]
    return view


def _pages(package, options, direction, limit, of):
    """The members of a package, as many to a page as fit."""
    members = of(View(of.kind, "", direction), options).members(package)
    step = max(len(members), 1) if limit is None else max(limit - 1, 1)
    for first in range(0, len(members), step):
        title = f"Package {notation.name_of(package)}"
        if len(members) > step:
            title += f", {first + 1} to {min(first + step, len(members))} of {len(members)}"
        page = View(of.kind, title, direction)
        diagram = of(page, options)
        page.boxes = [diagram.box(package)]
        page.boxes[0].inside = diagram.boxes_of(members[first:first + step], 0)
        diagram.relate()
        yield page


def _all_packages(elements):
    for element in elements:
        if isinstance(element, umlmm.ImmutablePackage):
            yield element
            yield from _all_packages(element.nestedPackage)


def _neighbourhood(chosen, options, depth, direction, limit, of):
    view = View(of.kind, chosen.title, direction)
    diagram = of(view, options)
    elements = chosen.elements
    if limit is not None and len(elements) > limit:
        view.notes.append(f"These are {len(elements)} elements, and the first {limit} are shown; pages() has "
                          f"views that show everything, and limit=None draws all")
        parts = [choosing.Chosen(elements[first:first + limit]) for first in range(0, len(elements), limit)]
        view._pages = lambda: [_neighbourhood(part, options, 0, direction, limit, of) for part in parts]
        elements, depth = elements[:limit], 0
    shown, steps = choosing.around(elements, depth, limit, diagram.has_box)
    if steps < depth:
        view.notes.append(f"{steps + 1} steps away there are more than {limit} boxes; this shows what is within "
                          f"{steps}. limit=None draws all")
    full = set(elements)
    for element in shown:
        if diagram.has_box(element) or element in full:
            view.boxes.append(diagram.box(element, is_full=element in full))
    diagram.relate()
    return view


class Diagram:
    """Makes boxes and relations of a view, and knows which element has which box."""

    kind = "class"

    @staticmethod
    def opens(element):
        """Whether boxes of such elements have others in them."""
        return isinstance(element, umlmm.ImmutablePackage)

    def __init__(self, view, options):
        self.view = view
        self.options = options
        self.shown = {}  # keys of boxes by element
        self._drawn = {}  # relations by element
        self._keys = 0

    def key(self):
        self._keys += 1
        return f"b{self._keys}"

    # --- boxes

    def has_box(self, element):
        if self.options.hides(element):
            return False
        if isinstance(element, umlmm.ImmutableAssociation) and not isinstance(element, umlmm.ImmutableClass):
            return False
        if isinstance(element, umlmm.ImmutablePrimitiveType) and element.owner is None and not element.externalId:
            return "primitives" in self.options
        return isinstance(element, (umlmm.ImmutableClassifier, umlmm.ImmutablePackage))

    def members(self, element):
        """What is drawn inside a package, the classifiers that its classifiers own among them."""
        found = []
        for part in getattr(element, "packagedElement", ()):
            if self.has_box(part):
                found.append(part)
                found += self._nested(part)
        return found

    def _nested(self, element):
        if "nesting" in self.options and not isinstance(element, umlmm.ImmutablePackage):
            for part in getattr(element, "nestedClassifier", ()):
                if self.has_box(part):
                    yield part
                    yield from self._nested(part)

    def count(self, elements, levels):
        """How many boxes there are with packages opened so many levels down."""
        return sum(1 + (self.count(self.members(element), levels - 1) if levels and self.opens(element) else 0)
                   for element in elements if self.has_box(element))

    def boxes_of(self, elements, levels):
        boxes = []
        for element in elements:
            if self.has_box(element):
                box = self.box(element)
                boxes.append(box)
                if self.opens(element) and levels:
                    box.inside = self.boxes_of(self.members(element), levels - 1)
        return boxes

    def shape(self, element):
        return "package" if isinstance(element, umlmm.ImmutablePackage) else "box"

    def box(self, element, is_full=True):
        key = self.shown[element] = self.key()
        name = Text(notation.name_of(element), element, bold=True, italic=bool(getattr(element, "isAbstract", False)))
        metaclass = element.MetaClass().name
        box = Box(key, element, metaclass, self.shape(element), name,
                  notation.title(element.path), notation.title(f"{metaclass} {element.path}"))
        keyword = _KEYWORDS.get(metaclass, metaclass[0].lower() + metaclass[1:])
        box.keywords = [keyword] if keyword else []
        if "stereotypes" in self.options:
            box.keywords += notation.stereotypes(element)
        if is_full:
            box.compartments = [lines for lines in (self._compartment(element, *row) for row in _COMPARTMENTS) if lines]
        return box

    def _compartment(self, element, option, feature, text):
        if option not in self.options:
            return []
        lines = [text(each, self.options) for each in getattr(element, feature, ()) if not self.options.hides(each)]
        if "inherited" in self.options and isinstance(element, umlmm.ImmutableClassifier):
            for general in element.allParents():
                for each in getattr(general, feature, ()):
                    if each.visibility != "private" and not self.options.hides(each):
                        line = text(each, self.options)
                        line.faint = True
                        lines.append(line)
        return [line for line in lines if line.text.strip(" +-#~")]

    # --- relations

    def relate(self, only=None):
        """All relations among what has boxes, each once."""
        for element in list(self.shown):
            for relation in relating.relations_of(element):
                self._add(relation, only)
        for relation in [each for each in self._drawn if isinstance(each, umlmm.ImmutableAssociation)]:
            for other in relating.relations_of(relation):
                self._add(other, only)
        if only is None:
            self._add_nesting()
            if "comments" in self.options:
                self._add_comments()
        self.finish()

    def finish(self):
        """To be called when all lines are there."""
        self._take_ends_out()
        for at, relation in enumerate(self.view.relations, 1):
            relation.key = f"r{at}"

    def _add(self, relation, only):
        if relation in self._drawn or self.options.hides(relation):
            return
        is_association = isinstance(relation, umlmm.ImmutableAssociation)
        style = None if is_association else relating.style_of(relation)
        option = "associations" if is_association else style.option
        if option not in self.options or only not in (None, option):
            return
        others = relating.related(relation)
        if len(others) < 2 or not all(other in self.shown or other in self._drawn for other in others):
            return
        self._drawn[relation] = []
        if is_association:
            self._associate(relation, others)
        else:
            self._direct(relation, style)

    def _direct(self, relation, style):
        sources, targets = ([self._place(each) for each in ends] for ends in (relation.source, relation.target))
        name = notation.clean(getattr(relation, "name", "") or "") if "names" in self.options else ""
        keyword = ", ".join([*filter(None, [style.keyword]), *(notation.stereotypes(relation)
                                                               if "stereotypes" in self.options else ())])
        if len(sources) == len(targets) == 1:
            self.line(relation, End(sources[0]), End(targets[0], style.mark), dashed=style.dashed,
                       upward=style.upward, keyword=keyword, label=name)
            return
        # Several clients or suppliers: branches that meet in a point.
        middle = self.add(relation, "point", [*sources, *targets])
        for source in sources:
            self.line(relation, End(source), End(middle), dashed=style.dashed, upward=style.upward)
        for at, target in enumerate(targets):
            self.line(relation, End(middle), End(target, style.mark), dashed=style.dashed, upward=style.upward,
                       keyword="" if at else keyword, label="" if at else name)

    def _associate(self, association, types):
        name = notation.clean(association.name or "") if "names" in self.options else ""
        if name and association.isDerived:
            name = "/" + name
        keyword = ", ".join(notation.stereotypes(association)) if "stereotypes" in self.options else ""
        if association in self.shown:
            name = keyword = ""  # stands in the box of the association class
        ends = list(association.memberEnd)
        if isinstance(association, umlmm.ImmutableExtension) and len(ends) == 2:
            own, other = ends if ends[0] in association.ownedEnd else ends[::-1]
            self.line(association, End(self._place(own.type), element=own),
                       End(self._place(other.type), "filled triangle", element=other), upward=True)
        elif len(ends) == 2:
            first, second = (self._end(end, other) for end, other in (ends, ends[::-1]))
            line = self.line(association, first, second, keyword=keyword, label=name)
            if association in self.shown:
                self._hang(association, self._knot(line))
        else:
            middle = self.add(association, "diamond", [self._place(each) for each in types])
            for at, end in enumerate(ends):
                self.line(association, End(middle), self._end(end, None), keyword="" if at else keyword,
                           label="" if at else name)
            if association in self.shown:
                self._hang(association, middle)

    def _hang(self, association, key):
        """The box of an association class hangs on the association's line."""
        self.line(association, End(self.shown[association]), End(key), dashed=True).kind = "association class"

    def _end(self, end, other):
        """The end of a line at the type of a member end; `other` is the end at the far side of a binary association."""
        made = End(self._place(end.type), "", notation.role(end, self.options),
                   notation.multiplicity(end) if "multiplicities" in self.options else "", end)
        if other is not None:
            made.qualifiers = notation.qualifiers(other, self.options)
            if other.aggregation != "none":
                made.mark = "filled diamond" if other.aggregation == "composite" else "diamond"
            elif relating.is_navigable(end) and not relating.is_navigable(other):
                made.mark = "arrow"
        return made

    def line(self, element, source, target, **style):
        title = notation.title(f"{element.MetaClass().name} {element.path}")
        line = Relation("", element, element.MetaClass().name, source, target, title=title,
                        path=notation.title(element.path), **style)
        self.view.relations.append(line)
        self._drawn.setdefault(element, []).append(line)
        return line

    def add(self, element, shape, keys, name=""):
        """A box to which lines from other boxes come, in the innermost package that has all of these."""
        box = Box(self.key(), element, element.MetaClass().name, shape, Text(name, element),
                  notation.title(element.path), notation.title(f"{element.MetaClass().name} {element.path}"))
        self._home(keys).append(box)
        self._drawn[element] = [box]
        return box.key

    def _home(self, keys):
        outer = self.view.outer_boxes()
        ways = [outer.get(key, ()) for key in keys]
        shared = [box for box in ways[0] if all(box in way for way in ways)] if ways else ()
        return shared[0].inside if shared else self.view.boxes

    def _knot(self, line):
        """The point on a line to which other lines go."""
        if not line.knot:
            line.knot = self.key()
        return line.knot

    def _place(self, element):
        """The key of what stands for an element: its box, or where a line goes to a relation."""
        if element in self.shown:
            return self.shown[element]
        drawn = self._drawn[element][0]
        return drawn.key if isinstance(drawn, Box) else self._knot(drawn)

    def _add_nesting(self):
        for element, key in list(self.shown.items()):
            if "nesting" in self.options:
                for part in getattr(element, "nestedClassifier", ()):
                    if part in self.shown:
                        line = self.line(element, End(key, "nesting"), End(self.shown[part]))
                        line.kind, line.title, line.path = "nesting", f"{line.title} owns {notation.name_of(part)}", ""

    def _add_comments(self):
        comments = dict.fromkeys(comment for element in list(self.shown) for comment in (
            *element.ownedComment, *(other for other in element.referencedBy()
                                     if isinstance(other, umlmm.ImmutableComment))))
        for comment in comments:
            text = notation.title(comment.body or "")
            note = Box(self.key(), comment, "Comment", "note", Text("", comment), title=text,
                       path=notation.title(comment.path))
            note.compartments = [[Text(row, comment) for row in notation.wrapped(text, 40, 8)]]
            noted = [self.shown[element] for element in comment.annotatedElement if element in self.shown]
            self._home(noted).append(note)
            for key in noted:
                self.line(comment, End(note.key), End(key), dashed=True).kind = "annotation"

    def _take_ends_out(self):
        """A line of an association says all that an attribute's line would."""
        drawn = {end.element for relation in self.view.relations for end in (relation.source, relation.target)
                 if end.element is not None}
        for box in self.view.all_boxes():
            if box.shape == "box":
                box.compartments = [kept for lines in box.compartments
                                    if (kept := [line for line in lines if line.element not in drawn])]
