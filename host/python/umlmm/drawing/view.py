"""What a view is made of. No form of it looks at the model again, but all of it can be traced there: boxes, lines and
relations name the elements that they show."""

from __future__ import annotations

import dataclasses
import os
from typing import Any, Callable, Iterator


class Missing(RuntimeError):
    """A program that a form needs is not installed; the text names the package."""


@dataclasses.dataclass(slots=True)
class Text:
    """A line of text, already fit for a reader: no control characters, of bounded length."""

    text: str
    element: Any = None
    title: str = ""  # the whole of it, where `text` had to be cut
    kind: str = ""  # attribute, operation, reception, literal
    italic: bool = False
    underlined: bool = False
    bold: bool = False
    faint: bool = False


@dataclasses.dataclass(slots=True)
class Box:
    """An element, or where relations meet. Shapes are box, package, frame (around others), note, diamond and point;
    of use cases ellipse and actor; of activities action, initial and final; of components component, port and ball (an
    interface). `inside` is None for a box that is closed."""

    key: str
    element: Any
    kind: str  # the metaclass
    shape: str
    name: Text
    path: str = ""
    title: str = ""
    keywords: list[str] = dataclasses.field(default_factory=list)
    compartments: list[list[Text]] = dataclasses.field(default_factory=list)
    inside: list[Box] | None = None


@dataclasses.dataclass(slots=True)
class End:
    """One end of a relation: the box it comes to, what is drawn there (a mark) and what stands beside it."""

    box: str
    mark: str = ""  # arrow, triangle, diamond, the latter two also filled; nesting, pin, arrow pin, socket
    role: str = ""
    multiplicity: str = ""
    element: Any = None
    qualifiers: list[str] = dataclasses.field(default_factory=list)

    @property
    def text(self) -> str:
        return " ".join(filter(None, ("".join(f"[{each}]" for each in self.qualifiers), self.role, self.multiplicity)))


@dataclasses.dataclass(slots=True)
class Relation:
    """A line between two boxes. `knot` is the point on it to which other relations go, if any do. Of several relations
    with one element each is a branch of it."""

    key: str
    element: Any
    kind: str
    source: End
    target: End
    dashed: bool = False
    upward: bool = False  # the target stands above the source
    keyword: str = ""
    label: str = ""
    title: str = ""
    path: str = ""
    knot: str = ""

    @property
    def caption(self) -> str:
        return " ".join(filter(None, (f"\xab{self.keyword}"
                                      f"\xbb" if self.keyword else "",
                                      self.label)))


@dataclasses.dataclass(slots=True)
class View:
    """Boxes, each with those in it, and relations among them. `notes` are sentences on what is not to be seen."""

    kind: str
    title: str
    direction: str
    boxes: list[Box] = dataclasses.field(default_factory=list)
    relations: list[Relation] = dataclasses.field(default_factory=list)
    notes: list[str] = dataclasses.field(default_factory=list)
    _pages: Callable[[], list[View]] | None = dataclasses.field(default=None, repr=False, compare=False)

    def all_boxes(self) -> Iterator[Box]:
        """Each box before those in it."""
        walk = list(reversed(self.boxes))
        while walk:
            box = walk.pop()
            yield box
            walk += reversed(box.inside or ())

    def outer_boxes(self) -> dict[str, tuple[Box, ...]]:
        """Of each box that stands in others, by its key, those others, the innermost first."""
        found: dict[str, tuple[Box, ...]] = {}
        for box in self.all_boxes():
            for inner in box.inside or ():
                found[inner.key] = (box, *found.get(box.key, ()))
        return found

    def pages(self) -> list[View]:
        """A view for each package with something in it, its inner packages closed, or several where there would be more
        boxes than the limit; this view itself if it is not of packages."""
        return (self._pages() if self._pages else []) or [self]

    def _repr_mimebundle_(self, include: Any = None, exclude: Any = None) -> dict[str, str]:
        """What a notebook shows."""
        from umlmm.drawing import bundles
        return bundles.of_view(self)

    # --- forms

    def svg(self, *, theme: str = "light", links: Callable[[Any], str | None] | None = None) -> str:
        """A picture. `theme` is "light" or "dark"; `links` tells the address that an element leads to, or None."""
        from umlmm.drawing import svg
        return svg.write(self, theme, links)

    def png(self, *, theme: str = "light", scale: float = 2) -> bytes:
        """A picture of points, converted from `svg()`."""
        from umlmm.drawing import programs
        return programs.png_of(self.svg(theme=theme), scale)

    def dot(self) -> str:
        """A graph in Graphviz's language."""
        from umlmm.drawing import dot
        return dot.write(self)

    def plantuml(self) -> str:
        from umlmm.drawing import plantuml
        return plantuml.write(self)

    def mermaid(self) -> str:
        from umlmm.drawing import mermaid
        return mermaid.write(self)

    _FORMS = {".svg": "svg", ".png": "png", ".dot": "dot", ".gv": "dot", ".puml": "plantuml",
              ".plantuml": "plantuml", ".mmd": "mermaid", ".mermaid": "mermaid"}

    def save(self, path: str | os.PathLike[str], **options: Any) -> None:
        """Writes the form that the name's suffix tells; `options` are those of the form. A file that is there is
        replaced once the new one is whole."""
        suffix = os.path.splitext(path)[1].lower()
        form = self._FORMS.get(suffix)
        if form is None:
            raise ValueError(f"{os.fspath(path)!r} tells no form of picture; names end with {', '.join(self._FORMS)}")
        content = getattr(self, form)(**options)
        _replace(os.fspath(path), content.encode() if isinstance(content, str) else content)


@dataclasses.dataclass(slots=True)
class Step:
    """What happens in a sequence, one below the other. `kind` is message, fragment, operand, end (of a fragment), use
    (of another interaction), state or event; `lifelines` are the keys of those that it covers, of a message its source
    and its target, of which one is "" if it is lost or found."""

    kind: str
    element: Any
    text: str = ""
    lifelines: tuple[str, ...] = ()
    sort: str = ""  # of a message


@dataclasses.dataclass(slots=True)
class Execution:
    """What a lifeline does from one step to another, by their numbers."""

    lifeline: str
    first: int
    last: int
    element: Any
    level: int = 0  # how many others it lies in


@dataclasses.dataclass(slots=True)
class Sequence(View):
    """What lifelines, `boxes`, say to each other."""

    steps: list[Step] = dataclasses.field(default_factory=list)
    executions: list[Execution] = dataclasses.field(default_factory=list)


def _replace(path, content):
    """Writes a file whole, or leaves what is there."""
    import tempfile
    folder, name = os.path.split(path)
    handle, temporary = tempfile.mkstemp(prefix=f".{name}.", dir=folder or ".")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(content)
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(temporary, 0o666 & ~mask)
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise
