"""Fills the templates of one set and writes what changed."""

from __future__ import annotations

import dataclasses
import pathlib
import re
from collections.abc import Iterator

import jinja2

from generator.engine import Engine
from generator.model import Model
from generator.read import TableError, Where, read_rows

# Columns of a line, brackets behind a list left out.
LINE = 105

_RECORDS = {
    "metaclass": ("metaclass", lambda model: model.metaclasses),
    "concrete": ("metaclass", lambda model: model.concrete),
    "enumeration": ("enumeration", lambda model: model.enumerations),
    "primitive": ("primitive", lambda model: model.primitives),
    "unit": ("unit", lambda model: model.units),
}


@dataclasses.dataclass(frozen=True)
class Output:
    set: str
    template: str
    for_each: str
    path: str
    where: Where


@dataclasses.dataclass(frozen=True)
class File:
    """A file to be made: its path under the output folder, its template and what that sees beside the model."""

    path: str
    output: Output
    context: dict[str, object]


def read_outputs(path: pathlib.Path) -> list[Output]:
    outputs = read_rows(path, "set | template | for each | output", lambda c, w: Output(c[0], c[1], c[2], c[3], w))
    for output in outputs:
        if output.for_each not in ("once", *_RECORDS):
            raise TableError(output.where, f"'{output.for_each}' is none of once, {', '.join(_RECORDS)}")
    return list(outputs)


def files_of(set_name: str, outputs: list[Output], model: Model) -> Iterator[File]:
    for output in outputs:
        if output.set != set_name:
            continue
        if output.for_each == "once":
            yield File(output.path, output, {})
            continue
        word, records = _RECORDS[output.for_each]
        for record in records(model):
            yield File(output.path.format(name=record.name, snake=snake(record.name)), output, {word: record})


def render(files: Iterator[File], model: Model, templates: pathlib.Path, target: pathlib.Path) -> None:
    environment = jinja2.Environment(loader=jinja2.FileSystemLoader(templates), undefined=jinja2.StrictUndefined,
                                     trim_blocks=True, lstrip_blocks=True, keep_trailing_newline=True)
    environment.filters["snake"] = snake
    environment.filters["wrapped"] = wrapped
    engine = Engine(model)
    for file in files:
        banner = (f"// Made from uml_metamodel_mi/catalogue/templates/{file.output.template} "
                  "and the tables beside it. Changes go there.")
        template = environment.get_template(file.output.template)
        text = template.render(model=model, engine=engine, banner=banner, **file.context)
        _write(target / file.path, text)


def snake(name: str) -> str:
    return re.sub(r"(?<!^)(?=[A-Z])", "_", name).lower()


def wrapped(members: list[str], indent: int) -> str:
    """The members of a row in lines behind an indent; one that fills more than a line is broken at its commas."""
    lines = _filled(members, LINE - indent)
    broken = [(",\n" + " " * (indent + line.find("{") + 1)).join(_filled(line.split(", "), LINE - indent))
              if len(line) > LINE - indent else line for line in lines]
    return (",\n" + " " * indent).join(broken)


def _filled(items: list[str], width: int) -> list[str]:
    lines: list[str] = []
    for item in items:
        if lines and len(lines[-1]) + 2 + len(item) <= width:
            lines[-1] += ", " + item
        else:
            lines.append(item)
    return lines


def _write(path: pathlib.Path, text: str) -> None:
    """Leaves a file alone that has the text already, so that nothing is compiled anew."""
    if path.exists() and path.read_text(encoding="utf-8") == text:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")
