"""Pages of a model that open in a browser from where they lie: `index.html` with the packages and the report of
loading, a page for each package and classifier, and a search. They work without scripts, too, but for the search."""

from __future__ import annotations

import concurrent.futures
import contextlib
import json
import os
import pathlib
import shutil
import sys
import tempfile
from html import escape

import umlmm
from umlmm import _progress
from umlmm.drawing import layout, notation, programs, relating, site_texts, svg
from umlmm.drawing.class_diagram import Diagram
from umlmm.drawing.options import Options
from umlmm.drawing.view import View

_BOXES = 30  # in a picture
_ROWS = 200  # of a table
_TEXT = 4_000  # characters of a documentation
_TREE = 1_500  # packages in the tree
_BATCH = 64
_UNFINISHED = ".unfinished-"
_OPTIONS = Options()


def write(model, folder):
    """Writes the pages, and answers the path of the first one. The folder is made, or is one of an earlier run, whose
    pages are replaced once all new ones are there."""
    folder = pathlib.Path(folder)
    was_there = folder.exists()
    if was_there and not (folder / "search.js").exists() \
            and any(not path.name.startswith(_UNFINISHED) for path in folder.iterdir()):
        raise ValueError(f"{os.fspath(folder)!r} has other files in it; name a folder that is empty or not there yet")
    folder.mkdir(parents=True, exist_ok=True)
    new = pathlib.Path(tempfile.mkdtemp(prefix=_UNFINISHED, dir=folder))
    try:
        _Site(model, new).write()
        names = sorted(path.name for path in new.iterdir())
        for path in [*folder.glob("e*.html")]:
            if path.name not in names:
                path.unlink()
        for name in names:
            os.replace(new / name, folder / name)
    except BaseException:
        shutil.rmtree(new)
        if not was_there:
            folder.rmdir()
        raise
    new.rmdir()
    return os.fspath(folder / "index.html")


class _Site:
    def __init__(self, model, folder):
        self._model = model
        self._folder = folder
        self._diagram = Diagram(View("class", "", "down"), _OPTIONS)
        self._pages = {}
        roots = [element for element in model.rootElements()]
        for element in roots:
            for each in (element, *element.descendants()):
                if self._has_page(each):
                    self._pages[each] = f"e{len(self._pages) + 1}.html"
        self._roots = [element for element in roots if element in self._pages]
        self._are_drawn = shutil.which("dot") is not None

    def _has_page(self, element):
        return isinstance(element, (umlmm.ImmutablePackage, umlmm.ImmutableClassifier))

    def write(self):
        bar = _progress.Bar(sys.stderr, "Writing pages", 1) if _progress.is_terminal(sys.stderr) else None
        elements = list(self._pages)
        with contextlib.ExitStack() as stack, bar or _Silence() as tell:
            pool = concurrent.futures.ThreadPoolExecutor(os.cpu_count())
            # When this is ended halfway, no layout is begun any more, and those that have begun end, too.
            stack.callback(programs.end_all, pool)
            stack.callback(pool.shutdown, wait=False, cancel_futures=True)
            for first in range(0, len(elements), _BATCH):
                batch = elements[first:first + _BATCH]
                views = [self._view(element) for element in batch]
                layouts = pool.map(lambda view: view and layout.lay_out(view), views)  # which touches no element
                for element, view, found in zip(batch, views, layouts):
                    picture = svg.write(view, "light", self._pages.get, found) if view else ""
                    self._put(self._pages[element], self._page(element, picture))
                tell((first + len(batch)) / len(elements))
        self._put("search.js", self._search())
        self._put("style.css", site_texts.STYLE)
        self._put("index.html", self._index())

    def _put(self, name, text):
        (self._folder / name).write_text(text, "utf-8")

    # --- pages

    def _view(self, element):
        """What is drawn on an element's page; nothing where it would be too much or too little."""
        if not self._are_drawn or not self._diagram.has_box(element):
            return None
        view = umlmm.draw(element, "class", depth=1, limit=_BOXES)
        return view if len(view.boxes) > 1 or view.boxes and view.boxes[0].inside else None

    def _index(self):
        report = self._model.report
        parts = ["<h1>Model</h1>", "<ul class=tree>", *self._tree(self._roots), "</ul>"]
        if not self._are_drawn:
            parts.append("<p>There are no pictures, as Graphviz is not installed here.</p>")
        if report is not None:
            parts.append(f"<h2>Report of loading</h2><pre>{escape(str(report)[:50_000])}</pre>")
        return site_texts.page("Model", "\n".join(parts))

    def _tree(self, elements, count=0):
        """Packages in packages, and how many there were so far."""
        for element in elements:
            if isinstance(element, umlmm.ImmutablePackage):
                self._shown = getattr(self, "_shown", 0) + 1
                if self._shown > _TREE:
                    if self._shown == _TREE + 1:
                        yield "<li>There are more packages; search finds them.</li>"
                    return
                inner = list(element.nestedPackage)
                yield f"<li>{self._link(element)} <small>{len(element.packagedElement)}</small>"
                if inner:
                    yield "<ul>"
                    yield from self._tree(inner)
                    yield "</ul>"
                yield "</li>"
            elif element in self._pages:
                yield f"<li>{self._link(element)}</li>"

    def _page(self, element, picture):
        name = notation.name_of(element)
        kind = element.MetaClass().name
        way = " :: ".join(self._link(each) for each in reversed(element.ancestors()))
        marks = ", ".join(word for word in ("abstract",) if getattr(element, "isAbstract", False))
        parts = [f"<nav>{way}</nav>", f"<h1><small>{kind}</small> {escape(name)}</h1>"]
        if marks:
            parts.append(f"<p>{marks}</p>")
        parts += self._stereotypes(element)
        parts += [f"<p class=text>{escape(notation.lines_of(comment.body or '', _TEXT))}</p>"
                  for comment in element.ownedComment][:20]
        if picture:
            parts.append(f"<figure tabindex=0>{picture}</figure>")
        parts += self._features(element)
        parts += self._relations(element)
        parts += self._members(element)
        parts += self._references(element)
        return site_texts.page(f"{kind} {name}", "\n".join(filter(None, parts)))

    def _stereotypes(self, element):
        rows = [(escape(notation.clean(application.name)), escape(notation.clean(tag)), escape(_text(value)))
                for application in element.stereotypes for tag, value in application.values.items() or [("", "")]]
        return _table("Stereotypes", ("stereotype", "tag", "value"), rows)

    def _features(self, element):
        for title, feature, text in (("Attributes", "ownedAttribute", notation.attribute),
                                     ("Operations", "ownedOperation", notation.operation),
                                     ("Literals", "ownedLiteral", notation.literal)):
            rows = []
            for each in list(getattr(element, feature, ()))[:_ROWS + 1]:
                comments = " ".join(comment.body or "" for comment in each.ownedComment)
                kind = getattr(each, "type", None)
                rows.append((f"<code>{escape(text(each, _OPTIONS).text)}</code>",
                             self._link(kind) if kind is not None else "", escape(notation.lines_of(comments, 500))))
            yield from _table(title, ("", "type", ""), rows)

    def _relations(self, element):
        rows = []
        for relation in relating.relations_of(element):
            others = [other for other in relating.related(relation) if other is not None and other != element]
            rows.append((relation.MetaClass().name, escape(notation.clean(getattr(relation, "name", "") or "")),
                         ", ".join(map(self._link, others[:10]))))
            if len(rows) > _ROWS:
                break
        return _table("Relations", ("", "name", "with"), rows)

    def _members(self, element):
        members = [part for part in element.containeeKelm if part in self._pages]
        return _table("Members", ("", "name"), [(part.MetaClass().name, self._link(part)) for part in members])

    def _references(self, element):
        rows = [(other.MetaClass().name, self._link(other)) for other in element.referencedBy()[:_ROWS + 1]]
        return _table("Who refers to it", ("", "where"), rows)

    def _link(self, element):
        """The element's path, as a link to its page or to that of what it is part of."""
        at = element
        while at is not None and at not in self._pages:
            at = at.containerKelm
        name = notation.name_of(element)
        if at is not None and at != element:
            name = f"{notation.name_of(at)}::{name}"
        title = escape(notation.title(element.path))
        return f'<a href="{self._pages[at]}" title="{title}">{escape(name)}</a>' if at is not None else escape(name)

    def _search(self):
        rows = [[notation.name_of(element), element.MetaClass().name, notation.title(element.path)[:200],
                 self._pages[element]] for element in self._pages]
        return site_texts.SEARCH % json.dumps(rows, ensure_ascii=True, separators=(",", ":"))


class _Silence:
    def __enter__(self):
        return lambda share: None

    def __exit__(self, *failure):
        pass


def _text(value):
    return notation.clean(", ".join(value) if isinstance(value, list) else value, 500)


def _table(title, head, rows):
    """A table whose cells are HTML already; nothing if it is empty."""
    if not rows:
        return
    yield f"<h2>{title}</h2><table><thead><tr>{''.join(f'<th>{each}</th>' for each in head)}</tr></thead><tbody>"
    for row in rows[:_ROWS]:
        yield f"<tr>{''.join(f'<td>{cell}</td>' for cell in row)}</tr>"
    if len(rows) > _ROWS:
        yield f'<tr><td colspan="{len(head)}">There are more; search finds them.</td></tr>'
    yield "</tbody></table>"
