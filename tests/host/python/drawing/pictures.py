"""What a picture says of itself, read back from its text."""

import collections
import os
import subprocess
import xml.etree.ElementTree as xml

SVG = "{http://www.w3.org/2000/svg}"
Line = collections.namedtuple("Line", "kind path source target source_mark target_mark texts")


def graphviz(text, form, *options):
    """What `dot` makes of a text."""
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    return subprocess.run(["dot", f"-T{form}", *options], input=text.encode(), capture_output=True, env=environment)


class Picture:
    def __init__(self, view, **options):
        self.text = view.svg(**options)
        self.root = xml.fromstring(self.text)
        self.groups = {group.get("id"): group for group in self.root.iter(SVG + "g") if group.get("id")}
        self.boxes = {key: group for key, group in self.groups.items() if group.get("data-box")}
        self.knots = {group.get("data-knot"): group.get("data-path")
                      for group in self.groups.values() if group.get("data-knot")}

    def place(self, key):
        """What a line goes to: the path of the element with that box, or of the relation."""
        return self.knots[key] if key in self.knots else self.boxes[key].get("data-path")

    def lines(self):
        for group in self.groups.values():
            if group.get("data-relation"):
                texts = {(each.get("data-end", ""), each.get("data-label")): each.text
                         for each in group.iter(SVG + "text")}
                yield Line(group.get("data-relation"), group.get("data-path", ""), self.place(group.get("data-source")),
                           self.place(group.get("data-target")), group.get("data-source-mark", ""),
                           group.get("data-target-mark", ""), texts)

    def texts(self):
        """Each text with the frame in which it is seen: left, top, right, bottom."""
        for each in self.root.iter(SVG + "text"):
            x, y, wide = (float(each.get(name)) for name in ("x", "y", "textLength"))
            yield each.text, (x, y - 9, x + wide, y + 2)

    def frames(self):
        """The frames of boxes, by key."""
        for key, group in self.boxes.items():
            for shape in group.iter(SVG + "rect"):
                x, y, w, h = (float(shape.get(name)) for name in ("x", "y", "width", "height"))
                yield key, (x, y, x + w, y + h)
