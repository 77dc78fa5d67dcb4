#!/usr/bin/python3
"""Makes the files of a set from the tables, or lists them.

    generate.py --list SET
    generate.py --set SET --output FOLDER
"""

from __future__ import annotations

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

from generator.check import check_model, check_tables  # noqa: E402
from generator.derive import derive_model  # noqa: E402
from generator.read import TableError, read_tables  # noqa: E402
from generator.render import files_of, read_outputs, render  # noqa: E402


def main() -> int:
    parser = argparse.ArgumentParser(description="Makes the files of a set from the catalogue's tables.")
    parser.add_argument("--tables", type=pathlib.Path, default=HERE / "tables", help="folder of the tables")
    parser.add_argument("--list", metavar="SET", help="print the paths of a set, one a line")
    parser.add_argument("--set", help="make the files of a set")
    parser.add_argument("--output", type=pathlib.Path, help="folder that the files go to")
    arguments = parser.parse_args()
    if not arguments.list and not (arguments.set and arguments.output):
        parser.error("give --list SET, or --set SET and --output FOLDER")
    try:
        tables = read_tables(arguments.tables)
        check_tables(tables)
        model = derive_model(tables)
        check_model(model, tables)
        outputs = read_outputs(arguments.tables / "outputs.txt")
        files = list(files_of(arguments.list or arguments.set, outputs, model))
        if not files:
            parser.error(f"no output belongs to the set '{arguments.list or arguments.set}'")
    except (TableError, ValueError) as error:
        print(f"generate.py: {error}", file=sys.stderr)
        return 1
    if arguments.list:
        print("\n".join(file.path for file in files))
    else:
        render(iter(files), model, HERE / "templates", arguments.output)
    return 0


if __name__ == "__main__":
    sys.exit(main())
