"""Command line: `python -m umlmm info`, `tree`, `convert`, `check`, `draw`, `table` and `site` work on model files,
`describe`, `stubs` and `reference` tell of the published classes, which they read back from the filled ones.
"""

import argparse
import json
import os
import pathlib
import sys

from umlmm import _commands


def main(arguments=None):
    """Runs one command, by default that of the command line, and answers its exit code; a wrong one ends the process
    with its usage."""
    options = _parser().parse_args(arguments)
    try:
        return options.run(options)
    except KeyboardInterrupt:
        return 130
    except BrokenPipeError:  # the reader of a pipe has seen enough; nothing more is written as Python ends
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        return 0


def _parser():
    parser = argparse.ArgumentParser(prog="python -m umlmm")
    commands = parser.add_subparsers(required=True)
    _commands.add_parsers(commands)

    describe = commands.add_parser("describe", help="print all classes of a package as JSON")
    describe.add_argument("package", nargs="?", default="umlmm", choices=("umlmm", "Kelm"),
                          help="umlmm, or Kelm for the kernel's (default: umlmm)")
    describe.add_argument("--indent", type=int, default=None, help="blanks of indentation (default: one line)")
    describe.set_defaults(run=_describe)

    stubs = commands.add_parser("stubs", help="write the stub package for type checkers and editors")
    stubs.add_argument("folder", nargs="?", default="umlmm-stubs", type=pathlib.Path,
                       help="folder of the stub package (default: umlmm-stubs)")
    stubs.set_defaults(run=_stubs)

    reference = commands.add_parser("reference", help="write a page for each metaclass, in Markdown")
    reference.add_argument("folder", nargs="?", default="umlmm-reference", type=pathlib.Path,
                           help="folder of the pages (default: umlmm-reference)")
    reference.set_defaults(run=_reference)
    return parser


def _describe(options):
    from umlmm import _description
    json.dump(_description.describe(options.package), sys.stdout, indent=options.indent)
    print()


def _stubs(options):
    from umlmm import _stubs as stubs
    stubs.write_stubs(options.folder)


def _reference(options):
    from umlmm import _reference as reference
    reference.write_reference(options.folder)


if __name__ == "__main__":
    sys.exit(main())
