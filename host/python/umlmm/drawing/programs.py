"""The programs that forms need: Graphviz's `dot` for layout, a converter for pictures of points."""

from __future__ import annotations

import os
import shutil
import signal
import subprocess

from umlmm import _progress
from umlmm.drawing.view import Missing


_running: set[subprocess.Popen[bytes]] = set()


class Failed(RuntimeError):
    """A program has ended with an error, whose text this is."""


def laid_out(graph):
    """A graph in Graphviz's language as the JSON of its layout."""
    program = shutil.which("dot")
    if program is None:
        raise Missing("Pictures are laid out by Graphviz, which is not installed: apt-get install graphviz. "
                      "plantuml() and mermaid() need no other program")
    import json
    return json.loads(_run([program, "-Tjson0"], graph.encode(), "dot"))


def png_of(svg, scale):
    program = shutil.which("rsvg-convert")
    if program is None:
        raise Missing("A picture of points is made by rsvg-convert, which is not installed: "
                      "apt-get install librsvg2-bin. svg() needs no converter")
    return _run([program, "--zoom", str(scale)], svg.encode(), "rsvg-convert")


def end_all():
    """Ends the programs for which other threads wait."""
    for program in list(_running):
        program.kill()


def _run(command, given, name):
    """What a program answers; it ends with the caller, also by Ctrl-C. What is loaded into this process is not meant
    for it."""
    environment = {name: text for name, text in os.environ.items() if name != "LD_PRELOAD"} | {"LC_ALL": "C.UTF-8"}
    pipe = subprocess.PIPE
    with _progress.Waiting(f"Waiting for {name}") as tell, \
            subprocess.Popen(command, stdin=pipe, stdout=pipe, stderr=pipe, env=environment) as program:
        _running.add(program)
        try:
            answer, complaints = _wait(program, given, tell)
        except BaseException:
            program.kill()
            program.wait()
            raise
        finally:
            _running.discard(program)
    if program.returncode == -signal.SIGINT:
        raise KeyboardInterrupt
    if program.returncode:
        raise Failed(f"{name} failed: {complaints.decode(errors='replace').strip()[-500:]}")
    return answer


def _wait(program, given, tell):
    while True:
        try:
            return program.communicate(given, timeout=.5)
        except subprocess.TimeoutExpired:
            given = None  # is on its way
            tell()
