"""The commands of `python -m umlmm` that show model files: pictures and tables."""

import sys

from umlmm import _commands


def add_parsers(commands):
    draw = _commands._add(commands, _draw, "draw", "draw a model, or an element and what is around it")
    draw.add_argument("file", metavar="FILE")
    draw.add_argument("element", metavar="ELEMENT", nargs="?", help="its path, such as shop::Order, or its id")
    draw.add_argument("--kind", help="such as class, inheritance, references")
    draw.add_argument("--depth", type=int, help="levels of packages, or steps along relations")
    draw.add_argument("--show", action="append", default=[], metavar="WHAT", help="such as inherited, comments")
    draw.add_argument("--hide", action="append", default=[], metavar="WHAT", help="such as operations, visibility")
    draw.add_argument("--direction", default="down", help="down (default), up, left or right")
    draw.add_argument("--limit", type=int, default=200, help="boxes that a view has at most (default: 200; 0 for any)")
    draw.add_argument("-o", "--output", metavar="OUT",
                      help="ends with .svg, .png, .dot, .puml or .mmd (default: the name of what is drawn, and .svg)")

    table = _commands._add(commands, _table, "table", "print the elements of a class as a table")
    table.add_argument("file", metavar="FILE")
    table.add_argument("metaclass", metavar="CLASS", help="such as Class or Property")
    table.add_argument("--columns", default="name,qualifiedName", help="features, separated by commas "
                       "(default: name,qualifiedName)")
    table.add_argument("--format", choices=("csv", "markdown", "json"), default="csv",
                       help="default: csv, in which a text that a spreadsheet would run has an apostrophe before it")

    site = _commands._add(commands, _site, "site", "write pages of a model that open in a browser")
    site.add_argument("file", metavar="FILE")
    site.add_argument("-o", "--output", metavar="FOLDER", default="site", help="default: site")


def _site(options):
    return _commands._for_each([options.file], lambda name, model: _tell_failures(_written, model, options))


def _written(model, options):
    from umlmm.drawing import site
    print(site.write(model, options.output))


def _draw(options):
    return _commands._for_each([options.file], lambda name, model: _tell_failures(_drawn, model, options))


def _drawn(model, options):
    import umlmm
    what = model if options.element is None else _element(model, options.element)
    view = umlmm.draw(what, options.kind, depth=options.depth, show=options.show, hide=options.hide,
                      direction=options.direction, limit=options.limit or None)
    output = options.output or _file_name(options.element or options.file)
    view.save(output)
    for note in view.notes:
        print(f"umlmm: {note}", file=sys.stderr)
    print(output)


def _element(model, name):
    found = model.by_id(name) if name not in model else None
    return model[name] if found is None else found


def _file_name(name):
    import pathlib
    import re
    stem = pathlib.PurePath(name).stem if "::" not in name else name.replace("::", ".")
    return re.sub(r"[^\w.-]+", "_", stem).lstrip(".-") + ".svg"


def _table(options):
    return _commands._for_each([options.file], lambda name, model: _tell_failures(_tabled, model, options))


def _tabled(model, options):
    from umlmm import _tables
    columns = [name.strip() for name in options.columns.split(",")]
    _tables.write(sys.stdout, options.format, columns, _tables.rows(model, options.metaclass, columns))


def _tell_failures(work, model, options):
    """Does the work; what was asked for in vain, or what is missing, is told in a sentence."""
    try:
        work(model, options)
    except (KeyError, ValueError, RuntimeError, OSError) as error:
        if isinstance(error, BrokenPipeError):
            raise
        print(f"umlmm: {error.args[0] if isinstance(error, KeyError) else error}", file=sys.stderr)
        return _commands._ERROR
    return _commands._OK
