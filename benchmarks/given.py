"""Model files that are given: what loading them and the text of the unchanged model cost, a line a file."""

import json
import pathlib
import subprocess
import time
import xml.etree.ElementTree as ElementTree

import figures
import umlmm

HEAD = ("file", "MB", "elements", "load", "limit", "ratio", "unchanged", "parse", "ratio", "to ElementTree", "met?")
# Of what loading and an unchanged text may cost: as for the files that the benchmarks make.
LOAD, UNCHANGED, TREE = 1.5, 3, 0.5


def table(build, folder):
    """Lines: nanoseconds a byte and ratios; for a file that is refused the sentence."""
    rows = [HEAD]
    refused = []
    for path in sorted(path for path in pathlib.Path(folder).rglob("*") if path.is_file()):
        name = str(path.relative_to(folder))
        command = [pathlib.Path(build, "bin", "given_files_benchmark"), path, "0" if figures.smoke else "1"]
        run = subprocess.run(command, capture_output=True, text=True)
        if run.returncode == 0:
            rows.append(_row(name, json.loads(run.stdout), _to_tree(path)))
        else:
            refused.append(f"{name}: {run.stderr.strip() or f'ended with {run.returncode}'}")
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEAD))]
    for row in rows:
        yield "  ".join([row[0].ljust(widths[0])] + [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])])
    yield from refused


def _row(name, found, tree):
    limit = found["parse"] + found["create"]
    load, unchanged = found["load"] / limit, found["save"] / found["parse"]
    met = load <= LOAD and unchanged <= UNCHANGED and tree <= TREE
    return (name, f"{found['bytes'] / 1e6:.2f}", f"{found['elements']:,}",
            f"{found['load']:.1f}", f"{limit:.1f}", f"{load:.2f}",
            f"{found['save']:.2f}", f"{found['parse']:.2f}", f"{unchanged:.2f}", f"{tree:.2f}", "yes" if met else "NO")


def _to_tree(path):
    """How long loading from Python takes, times what `ElementTree.parse` does."""
    best = [float("inf")] * 2
    for _ in range(1 if figures.smoke else 5):
        for number, read in enumerate((umlmm.load, ElementTree.parse)):
            start = time.thread_time()
            read(path)
            best[number] = min(best[number], time.thread_time() - start)
    return best[0] / best[1]
