"""Measures everything and prints one table: each figure, its limit measured in the same run, and its bound.

    PYTHONPATH=<build>/python python3 benchmarks/run.py --build <build> [--only PART | --models FOLDER] [--check | --smoke]

What the figures mean and how the last ones came about stands in README.md beside this file.
"""

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).parent
sys.path[:0] = [str(HERE), str(HERE / "host" / "python")]

import figures  # noqa: E402


def measured(build, only):
    # Imported when needed: the programs can be measured without the host, and the other way round.
    if only in (None, "scripts"):
        import footprint
        import scripts
        import workloads

        yield from scripts.measure()
        yield from workloads.measure()
        yield from footprint.measure(build)
    if only in (None, "programs"):
        import programs

        yield from programs.measure(build)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", required=True, type=pathlib.Path, help="folder of a release build")
    parser.add_argument("--only", choices=("programs", "scripts", "sequences"), help="measure a part")
    parser.add_argument("--models", type=pathlib.Path, help="measure the model files of a folder, and nothing else")
    modes = parser.add_mutually_exclusive_group()
    modes.add_argument("--check", action="store_true", help="exit with 1 if a bound is missed, goals aside")
    modes.add_argument("--smoke", action="store_true", help="run everything once, whatever the times are")
    options = parser.parse_args()
    figures.smoke = options.smoke

    if options.models is not None:
        import given

        print(*given.table(options.build, options.models), sep="\n")
        return
    found = []
    for figure in measured(options.build, options.only):
        found.append(figure)
        if sys.stderr.isatty():
            print(f"\r{len(found)} figures", end="\r", file=sys.stderr)
    lines = list(figures.table(found)) if found else []
    holds = True
    if options.only in (None, "sequences"):
        import programs

        table, holds = programs.sequences(options.build)
        lines += ["", "The sequence kernel, with its own bound:", *table]
    if options.smoke:
        print(f"All benchmarks ran, and gave {len(lines)} lines of figures.")
        return
    print(*lines, sep="\n")

    bounded = [figure for figure in found if figure.met is not None]
    missed = [figure for figure in bounded if not figure.met]
    if bounded:
        print(f"\n{len(bounded) - len(missed)} of {len(bounded)} bounds and goals are met.")
    if options.check and (not holds or any(not figure.goal for figure in missed)):
        sys.exit(1)


if __name__ == "__main__":
    main()
