"""Times statements of a script in turn, so that a ratio depends little on what else the machine does."""

import gc
import time

import figures

UNROLLED = 20


class Statement:
    """A statement and the names it uses. It stands many times in the loop that runs it, so that the loop does
    not dilute the ratio of two statements."""

    def __init__(self, text, names, repetitions=250):
        self.count = repetitions * UNROLLED
        self.best = float("inf")
        body = "\n        ".join([text] * UNROLLED)
        source = (
            f"def run(timer, {', '.join(names)}):\n"
            "    start = timer()\n"
            f"    for _ in range({repetitions}):\n"
            f"        {body}\n"
            "    return timer() - start\n"
        )
        scope = {}
        exec(source, scope)
        self._run = lambda: scope["run"](time.thread_time, **names)

    def run(self):
        self.best = min(self.best, 1e9 * self._run() / self.count)


class Pass:
    """A function that does `count` things at once; `prepare` makes its arguments, untimed, for each round."""

    def __init__(self, function, prepare, count):
        self.function, self.prepare, self.count = function, prepare, count
        self.best = float("inf")

    def run(self):
        arguments = self.prepare()
        start = time.thread_time()
        self.function(*arguments)
        self.best = min(self.best, 1e9 * (time.thread_time() - start) / self.count)


def compare(subject, limit, rounds=40):
    """The best times of both, in nanoseconds for one statement or thing."""
    if figures.smoke:
        rounds = 1
    gc.disable()
    try:
        for _ in range(rounds):
            subject.run()
            limit.run()
    finally:
        gc.enable()
    return subject.best, limit.best
