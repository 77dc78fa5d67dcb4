"""How far a reading has come, shown to people or told to a script."""

import sys
import time


def is_terminal(stream):
    try:
        return stream.isatty()
    except (AttributeError, ValueError):  # there is none, or it is closed
        return False


class Callback:
    """Tells a function, at most 20 times a second."""

    def __init__(self, function):
        self._function = function
        self._next = 0

    def __enter__(self):
        return self.tell

    def __exit__(self, *failure):
        pass

    def tell(self, share):
        now = time.monotonic()
        if share >= 1 or now >= self._next:
            self._function(share)
            self._next = now + 0.05


class Bar:
    """A line that is drawn over and over, once `after` seconds have passed, and gone in the end."""

    _WIDTH = 30

    def __init__(self, stream, title, after):
        self._stream = stream
        self._title = title
        self._start = time.monotonic() + after
        self._shown = ""

    def __enter__(self):
        return self.tell

    def __exit__(self, *failure):
        if self._shown:
            self._write("\r" + " " * len(self._shown) + "\r")

    def tell(self, share):
        if time.monotonic() < self._start:
            return
        done = round(share * self._WIDTH)
        line = f"{self._title} [{'#' * done}{'.' * (self._WIDTH - done)}] {share:4.0%}"
        if line != self._shown:
            self._shown = line
            self._write("\r" + line)

    def _write(self, text):
        try:
            self._stream.write(text)
            self._stream.flush()
        except (OSError, ValueError):  # nobody looks any more
            pass


class Waiting:
    """A line of how long something takes of which nobody knows how far it is, for people at a terminal who wait for this
    alone."""

    def __init__(self, title):
        self._title = title
        self._start = time.monotonic()
        self._shown = ""

    def __enter__(self):
        import threading
        is_seen = threading.current_thread() is threading.main_thread() and is_terminal(sys.stderr)
        return self._tell if is_seen else lambda: None

    def __exit__(self, *failure):
        if self._shown:
            self._write("\r" + " " * len(self._shown) + "\r")

    def _tell(self):
        seconds = time.monotonic() - self._start
        if seconds >= 1:
            self._shown = f"{self._title}: {seconds:.0f} s (Ctrl-C ends it)"
            self._write("\r" + self._shown)

    def _write(self, text):
        try:
            sys.stderr.write(text)
            sys.stderr.flush()
        except (OSError, ValueError):  # nobody looks any more
            pass
