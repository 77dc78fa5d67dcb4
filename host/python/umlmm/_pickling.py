"""How models, elements and literals cross into other processes: a model as the texts of its files, which a model made in
memory has in the standard's own form; an element as its place in its model."""

from umlmm import _front


def _model(texts):
    """The model of named texts."""
    import io

    import umlmm
    from umlmm import files
    if not texts:
        return umlmm.new_model()
    streams = []
    for name, text in texts:
        stream = io.BytesIO(text)
        stream.name = name
        streams.append(stream)
    return files.load_all(streams, progress=False)


def _roots(model):
    """Elements at the top level, those of files first: what a reading adds comes behind them."""
    return [root.asMutable() for root in model.rootElements()]


def _element(model, places):
    element = _roots(model)[places[0]]
    for place in places[1:]:
        element = element.ownedElement[place]
    return element.asMutable()


def _literal(enumeration, name):
    import umlmm
    return getattr(getattr(umlmm, enumeration), name)


@_front.adds_to(_front.MODELS)
class _Model:
    def __reduce_ex__(self, protocol):
        from umlmm import files
        if files.is_loaded(self):
            return _model, ([(file.path, files.text(self, file.path)) for file in files.report(self).files],)
        return _model, ([("model", files.text(self))] if self.rootElements() else [],)


@_front.adds_to(_front.ELEMENTS)
class _Element:
    def __reduce_ex__(self, protocol):
        places, element = [], self
        while element.owner is not None:
            places.append(list(element.owner.ownedElement).index(element))
            element = element.owner
        model = self.modelKelm
        places.append(_roots(model).index(element))
        return _element, (model, places[::-1])


@_front.adds_to(_front.ENUMERATIONS)
class _Enumeration:
    def __reduce_ex__(self, protocol):
        return _literal, (type(self).__name__, str(self))
