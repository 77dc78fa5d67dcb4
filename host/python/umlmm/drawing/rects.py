"""Frames of what stands in a picture."""

from __future__ import annotations

import dataclasses


@dataclasses.dataclass(slots=True)
class Rect:
    x: float
    y: float
    w: float
    h: float

    @property
    def right(self):
        return self.x + self.w

    @property
    def bottom(self):
        return self.y + self.h

    @property
    def middle(self):
        return self.x + self.w / 2, self.y + self.h / 2


def meet(one, other):
    return one.x < other.right and other.x < one.right and one.y < other.bottom and other.y < one.bottom


def contains(outer, inner):
    return (outer.x <= inner.x and outer.y <= inner.y and outer.right >= inner.right and outer.bottom >= inner.bottom
            and outer is not inner)


def border(frame, towards):
    """Where the line from a frame's middle to a point leaves the frame."""
    x, y = frame.middle
    dx, dy = towards[0] - x, towards[1] - y
    share = min([1.0, *(half / abs(way) for half, way in ((frame.w / 2, dx), (frame.h / 2, dy)) if way)])
    return round(x + dx * share, 1), round(y + dy * share, 1)
