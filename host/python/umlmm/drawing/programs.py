"""The programs that forms need: Graphviz's `dot` for layout, a converter for pictures of points."""

from __future__ import annotations

import os
import shutil
import signal
import subprocess
import tempfile

from umlmm import _progress
from umlmm.drawing.view import Missing


_running: set[subprocess.Popen[bytes]] = set()
_is_ending = False  # programs that begin now end at once


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


def end_all(threads):
    """Ends the programs for which threads of a pool wait or are about to wait, and then the pool."""
    global _is_ending
    _is_ending = True
    for program in list(_running):
        program.kill()
    threads.shutdown()
    _is_ending = False


def _run(command, given, name):
    """What a program answers; it ends with the caller, also by Ctrl-C. What is loaded into this process is not meant
    for it."""
    environment = {name: text for name, text in os.environ.items() if name != "LD_PRELOAD"} | {"LC_ALL": "C.UTF-8"}
    with tempfile.TemporaryFile() as source:
        source.write(given)  # where it waits for a program that reads it late
        source.seek(0)
        program = subprocess.Popen(command, stdin=source, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   env=environment)
    with _progress.Waiting(f"Waiting for {name}") as tell, program:
        _running.add(program)
        if _is_ending:
            program.kill()
        try:
            answer, complaints = _wait(program, tell)
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


def _wait(program, tell):
    while True:
        try:
            return program.communicate(timeout=.5)
        except subprocess.TimeoutExpired:
            tell()
