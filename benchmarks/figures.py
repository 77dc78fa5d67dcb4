"""Figures and the table that shows them."""

import dataclasses

# A smoke run measures each figure once and briefly, to see that it can still be measured; its values mean nothing.
smoke = False

# No clock tells less from nothing.
SHORTEST = 1e-3


@dataclasses.dataclass
class Figure:
    """One measured value. With a limit, the ratio to it counts, and the bound is that of the ratio."""

    name: str
    value: float
    unit: str = "ns"
    limit: float | None = None
    bound: float | None = None
    # A goal is an absolute figure that depends on the machine: it is shown, and breaks nothing.
    goal: bool = False

    @property
    def ratio(self):
        return None if self.limit is None else self.value / max(self.limit, SHORTEST)

    @property
    def met(self):
        """True, False, or None without a bound."""
        if self.bound is None:
            return None
        return (self.value if self.limit is None else self.ratio) <= self.bound


def table(figures):
    """The lines of the table."""
    rows = [("figure", "value", "limit", "ratio", "bound", "met?")]
    rows += [_cells(figure) for figure in figures]
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        cells = [row[0].ljust(widths[0])] + [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        yield "  ".join(cells)


def _cells(figure):
    met = {None: "", True: "yes", False: "goal missed" if figure.goal else "NO"}[figure.met]
    bound = ""
    if figure.bound is not None:
        bound = _number(figure.bound)
        if figure.limit is None:
            bound += f" {figure.unit}"
    return (
        figure.name,
        f"{_number(figure.value)} {figure.unit}",
        "" if figure.limit is None else f"{_number(figure.limit)} {figure.unit}",
        "" if figure.ratio is None else f"{figure.ratio:.2f}",
        bound,
        met,
    )


def _number(value):
    if value == int(value):
        return f"{int(value):,}"
    return f"{value:,.0f}" if abs(value) >= 1000 else f"{value:.3g}" if abs(value) < 10 else f"{value:.1f}"
