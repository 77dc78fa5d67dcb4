"""Command line: `python -m umlmm describe` prints what the filled classes tell of themselves."""

import argparse
import json
import sys

from umlmm import _description


def main(arguments=None):
    parser = argparse.ArgumentParser(prog="python -m umlmm")
    commands = parser.add_subparsers(dest="command", required=True)
    describe = commands.add_parser("describe", help="print all classes of a package as JSON")
    describe.add_argument("--package", default="umlmm", help="full name of the package (default: umlmm)")
    describe.add_argument("--indent", type=int, default=None, help="blanks of indentation (default: one line)")
    options = parser.parse_args(arguments)
    json.dump(_description.describe(options.package), sys.stdout, indent=options.indent)
    print()


if __name__ == "__main__":
    main()
