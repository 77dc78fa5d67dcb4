"""Widths of texts, in units of a font's size. A picture must come out the same wherever it is made, so no font is
asked: these are the widths of the sans serif faces that everybody has, and pictures tell them with each text."""

from __future__ import annotations

import functools

SIZE = 12  # of the letters
LINE = 16  # from one line to the next
PAD = 8  # between a frame and what is in it

_WIDTHS = {
    .191: "'", .222: "ijl", .260: "|", .278: " !,./:;I[\\]ft", .333: "()-`r", .334: "{}", .355: '"', .389: "*",
    .469: "^", .500: "Jcksvxyz", .556: "#$0123456789?L_abdeghnopqu\xab"
    "\xbb", .584: "+<=>~", .611: "FTZ", .667: "&ABEKPSVXY",
    .722: "CDHNRUw", .778: "GOQ", .833: "Mm", .889: "%", .944: "W", 1.0: "\N{HORIZONTAL ELLIPSIS}", 1.015: "@",
}
_WIDTH_OF = {character: width for width, characters in _WIDTHS.items() for character in characters}
_BOLD = 1.08


@functools.cache
def _width_of(character):
    import unicodedata
    if unicodedata.combining(character):
        return 0
    if unicodedata.east_asian_width(character) in "WF":
        return 1.0
    return _WIDTH_OF.get(unicodedata.normalize("NFD", character)[0], .65)


def width(text, bold=False):
    """In points; a tenth of them is as fine as pictures are."""
    share = sum(_WIDTH_OF.get(character) or _width_of(character) for character in text)
    return round(share * SIZE * (_BOLD if bold else 1), 1)
