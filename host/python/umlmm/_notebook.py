"""How elements, lists and models show themselves in notebooks; `umlmm.drawing.bundles`, which does the work, is brought
in when a notebook asks."""

from umlmm import _front


def _repr_mimebundle_(self, include: object = None, exclude: object = None) -> "dict[str, str]":
    """What a notebook shows: a picture or a table, and the text."""
    from umlmm.drawing import bundles
    return bundles.of(self)


for _kind in (_front.ELEMENTS, _front.MODELS, _front.LISTS_OF_ELEMENTS):
    _front.adds_to(_kind)(type("_Shown", (), {"_repr_mimebundle_": _repr_mimebundle_}))
