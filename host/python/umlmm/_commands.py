"""The commands of `python -m umlmm` that work on model files. Each answers its exit code: 0, 1 for findings, 2 for a
file that cannot be read or written."""

import json
import sys

_OK, _FINDINGS, _ERROR = 0, 1, 2


def add_parsers(commands):
    info = _add(commands, _info, "info", "tell what files hold, and what was not understood")
    info.add_argument("files", nargs="+", metavar="FILE")
    info.add_argument("--json", action="store_true", help="print an object of JSON a line for each file")

    tree = _add(commands, _tree, "tree", "print the elements of a file, each below its owner")
    tree.add_argument("file", metavar="FILE")
    tree.add_argument("--depth", type=int, default=None, help="levels to print (default: all)")

    convert = _add(commands, _convert, "convert", "write a model in another dialect")
    convert.add_argument("source", metavar="IN")
    convert.add_argument("target", metavar="OUT")
    convert.add_argument("--dialect", choices=("omg-2.5.1", "eclipse"),
                         help="default: eclipse for a target that ends with .uml, omg-2.5.1 for another")

    check = _add(commands, _check, "check", "verify ownership, types and multiplicities")
    check.add_argument("files", nargs="+", metavar="FILE")

    from umlmm import _picture_commands
    _picture_commands.add_parsers(commands)


def _add(commands, run, name, text):
    parser = commands.add_parser(name, help=text, description=text[0].upper() + text[1:] + ".")
    parser.set_defaults(run=run)
    return parser


# --- commands

def _info(options):
    from umlmm import files
    return _for_each(options.files, lambda name, model: _print_report(files.report(model), options.json))


def _print_report(report, as_json):
    print(json.dumps(json.loads(report.json())) if as_json else str(report).rstrip("\n"))
    return _OK


def _tree(options):
    return _for_each([options.file], lambda name, model: _print_tree(model, options.depth))


def _print_tree(model, depth):
    from umlmm import _check
    open_elements = [(element, 0) for element in reversed(model.rootElements()) if not _check.is_standard(element)]
    while open_elements:
        element, level = open_elements.pop()
        if depth is not None and level >= depth:
            continue
        print("  " * level + _line(element))
        open_elements += [(part, level + 1) for part in reversed(element.containeeKelm)]
    return _OK


def _line(element):
    """An element with its name and, if it has one, its type."""
    metaclass = element.MetaClass()
    text = metaclass.name
    if metaclass.property("name") and element.name:
        text += f" {element.name}"
    if metaclass.property("type") and element.type is not None:
        text += f" : {element.type.name or element.type.MetaClass().name}"
    return text


def _convert(options):
    from umlmm import files
    dialect = options.dialect or ("eclipse" if options.target.endswith(".uml") else "omg-2.5.1")
    return _for_each([options.source],
                     lambda name, model: files.save(model, options.target, dialect=dialect, force=True) or _OK)


def _check(options):
    from umlmm import _check
    return _for_each(options.files, lambda name, model: _print_findings(name, _check.findings(model)))


def _print_findings(name, findings):
    count = 0
    for count, line in enumerate(findings, 1):
        print(line)
    print(f"{name}: {count or 'no'} finding{'s' * (count != 1)}")
    return _FINDINGS if count else _OK


# --- what they share

def _for_each(names, work):
    """Runs `work` on the models of files, one after the other; the highest exit code of all."""
    from umlmm import files
    codes = []
    for name in names:
        try:
            model = files.load(name)
            try:
                codes.append(work(name, model))
            finally:
                model.close()
        except files.Error as error:
            sys.stdout.flush()
            print(f"umlmm: {error}", file=sys.stderr)
            codes.append(_ERROR)
    return max(codes)
