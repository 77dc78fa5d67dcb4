"""Elements as rows, for other programs and for pages."""

import umlmm


def rows(model, metaclass, columns):
    """A list of texts, numbers, truths and None for each element of a class, those of more special classes among
    them."""
    cls = getattr(umlmm, metaclass, None) if metaclass.isidentifier() else None
    if not isinstance(cls, type) or not issubclass(cls, umlmm.Element):
        raise ValueError(f"{metaclass!r} is no metaclass" + _nearest(metaclass, dir(umlmm)))
    known = {name for name in dir(cls) if not callable(getattr(cls, name)) and not name.startswith("_")}
    for name in columns:
        if name not in known:
            raise ValueError(f"{metaclass} has no feature {name!r}" + _nearest(name, known))
    return [[_cell(getattr(element, name)) for name in columns] for element in model.all(cls)]


def _nearest(name, known):
    import difflib
    near = difflib.get_close_matches(name, sorted(known), 1)
    return f"; did you mean {near[0]!r}?" if near else ""


def _cell(value):
    if value is None or isinstance(value, (str, bool, int, float)):
        return value
    if isinstance(value, umlmm.Kelm.ImmutableClassObject):
        return value.path
    if hasattr(value, "__iter__") and not isinstance(value, str):
        return ", ".join(str(_cell(each)) for each in value)
    return str(getattr(value, "value", value))


def write(file, form, columns, rows):
    globals()[f"_write_{form}"](file, columns, rows)


def _text(value):
    return "" if value is None else str(value).lower() if isinstance(value, bool) else str(value)


def _write_csv(file, columns, rows):
    import csv
    writer = csv.writer(file, lineterminator="\n")
    writer.writerow(columns)
    writer.writerows([guarded(_text(value)) for value in row] for row in rows)


def guarded(text):
    """A cell that no spreadsheet takes for a formula and runs: a text that begins as one gets an apostrophe before it.
    Numbers stay as they are."""
    import re
    return "'" + text if re.match(r"[=@\t\r]|[+-](?!\d+(\.\d+)?$)", text) else text


def _write_json(file, columns, rows):
    import json
    json.dump([dict(zip(columns, row)) for row in rows], file, indent=1, ensure_ascii=False)
    file.write("\n")


def _write_markdown(file, columns, rows):
    for at, row in enumerate([columns, *rows]):
        file.write("| " + " | ".join(_escaped(_text(value)) for value in row) + " |\n")
        if at == 0:
            file.write("|" + " --- |" * len(columns) + "\n")


def _escaped(text):
    """A text that stays one in Markdown, HTML in it included."""
    import html
    import re
    text = html.escape(" ".join(text.split()), quote=False)
    return re.sub(r"([\\`*_\[\]|~])", r"\\\1", text) 
