"""UML's notation for the texts of a view."""

from __future__ import annotations

import re

from umlmm.drawing.view import Text

_NAME, _LINE, _TITLE = 60, 100, 1000  # characters that are shown
_VISIBILITY = {"public": "+", "private": "-", "protected": "#", "package": "~"}
# What no reader sees, and a form may take for something else: controls, marks of direction, half characters.
_ODD = re.compile("[\x00-\x1f\x7f-\x9f\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u206f"
                  "\ud800-\udfff\ufeff\ufff0-\uffff]")


def clean(text, limit=_NAME):
    """A text of the model as a line that can be shown."""
    cut = text if len(text) <= limit else text[:limit - 1] + "\N{HORIZONTAL ELLIPSIS}"
    return _ODD.sub(lambda found: " " if found[0].isspace() else "\N{WHITE SQUARE}", cut)


def title(text):
    """A text for who asks for more, by hovering."""
    return clean(text, _TITLE)


def line(element, text, **style):
    shown = clean(text, _LINE)
    return Text(shown, element, title(text) if len(text) > len(shown) else "", **style)


def lines_of(text, limit):
    """A text of several lines, as a reader may see it."""
    return "\n".join(clean(row, limit) for row in text[:limit].splitlines()) + ("..." * (len(text) > limit))


def wrapped(text, width, most=20):
    """A text as rows of so many characters; what is more than so many rows is cut."""
    import textwrap
    rows = textwrap.wrap(text, width) or [""]
    return rows if len(rows) <= most else [*rows[:most - 1], "\N{HORIZONTAL ELLIPSIS}"]


def name_of(element):
    """An element's name, as it is shown; without one, its metaclass in angle brackets."""
    return clean(getattr(element, "name", "") or "") or f"<{element.MetaClass().name}>"


def visibility(element, options):
    return _VISIBILITY.get(element.visibility, "") if "visibility" in options else ""


def multiplicity(element):
    lower, upper = element.lower, element.upper
    lower, upper = 1 if lower is None else lower, 1 if upper is None else upper
    return str(upper) if str(lower) == str(upper) else "*" if (lower, upper) == (0, "*") else f"{lower}..{upper}"


def _modifiers(element):
    """What stands in braces behind a property or an operation."""
    if getattr(element, "isReadOnly", False):
        yield "readOnly"
    if getattr(element, "isDerivedUnion", False):
        yield "union"
    for word, feature in (("subsets", "subsettedProperty"), ("redefines", "redefinedProperty"),
                          ("redefines", "redefinedOperation")):
        for other in getattr(element, feature, ()):
            yield f"{word} {name_of(other)}"
    if getattr(element, "isQuery", False):
        yield "query"
    if element.isOrdered:
        yield "ordered"
    if not element.isUnique:
        yield "nonunique"


def _typed(element, options):
    """What stands behind the name of a property or parameter: type, multiplicity, default."""
    text = ""
    if "types" in options and element.type is not None:
        text += f" : {name_of(element.type)}"
    if "multiplicities" in options and (shown := multiplicity(element)) != "1":
        text += f" [{shown}]"
    if "defaults" in options and (default := element.default):
        text += f" = {default}"
    return text


def _in_braces(element, options):
    words = list(_modifiers(element)) if "modifiers" in options else ()
    return f" {{{', '.join(words)}}}" if words else ""


def _stereotypes(element, options):
    words = stereotypes(element) if "stereotypes" in options else ()
    return f"\xab{', '.join(words)}" \
           f"\xbb " if words else ""


def stereotypes(element):
    return [clean(application.name) for application in element.stereotypes if application.name]


def _feature_name(feature, options):
    mark = visibility(feature, options)
    derived = "/" if getattr(feature, "isDerived", False) else ""
    return f"{mark + ' ' if mark else ''}{_stereotypes(feature, options)}{derived}{clean(feature.name)}"


def attribute(feature, options):
    return line(feature, _feature_name(feature, options) + _typed(feature, options) + _in_braces(feature, options),
                underlined=feature.isStatic, kind="attribute")


def operation(feature, options):
    results = [parameter for parameter in feature.ownedParameter if parameter.direction == "return"]
    text = _feature_name(feature, options) + f"({_parameters(feature, options)})"
    if results and "types" in options:
        text += _typed(results[0], options)
    return line(feature, text + _in_braces(feature, options), underlined=feature.isStatic, italic=feature.isAbstract,
                kind="operation")


def _parameters(feature, options):
    if "parameters" not in options:
        return ""
    return ", ".join(
        ("" if parameter.direction == "in" else f"{parameter.direction.value} ")
        + clean(parameter.name) + _typed(parameter, options)
        for parameter in feature.ownedParameter if parameter.direction != "return")


def reception(feature, options):
    signal = "\xabsignal\xbb "
    return line(feature, signal + f"{clean(feature.name)}({_parameters(feature, options)})", kind="reception")


def value(specification):
    """A value as text, without what quotes it."""
    for feature in ("value", "body", "instance", "symbol", "expr"):
        found = getattr(specification, feature, None)
        if found is None:
            continue
        if feature == "instance":
            return name_of(found)
        if feature == "expr":
            return value(found)
        return str(found[0] if feature == "body" and found else "" if feature == "body" else found)
    return getattr(specification, "name", "") or ""


def literal(feature, _options):
    return line(feature, clean(feature.name), kind="literal")


def role(end, options):
    """The name at an association's end, with what else is said of the end."""
    name = clean(end.name or "")
    if "roles" not in options or not name:
        return ""
    return visibility(end, options) + ("/" if end.isDerived else "") + name + _in_braces(end, options)


def qualifiers(end, options):
    return [attribute(each, options).text for each in end.qualifier] if "roles" in options else []
