"""Changes models at random, by what the metamodel says of itself: any feature of any element, any metaclass."""

import umlmm
from comparing import METACLASSES, is_list

TEXTS = ("", "x", "a<b&\"c'>", "ü €", "two\nlines", "tab\there", " blanks  around ", "1")


class Editor:
    """One model under change. What the metamodel refuses stays as it was."""

    def __init__(self, model, chance):
        self._model = model
        self._chance = chance
        self._concrete = [metaclass for metaclass in (
            getattr(umlmm, name) for name in dir(umlmm) if isinstance(getattr(umlmm, name), type))
            if hasattr(metaclass, "MetaClass") and metaclass.MetaClass().name == metaclass.__name__
            and not metaclass.MetaClass().isAbstract() and metaclass is not umlmm.Model]
        self._makeable = {}
        self.done = 0

    def edit(self, count):
        """Makes some changes; those that were refused count, too."""
        self._elements = [element.asMutable() for element in self._model.allElements()]
        self._made = []
        for _ in range(count):
            element = self._chance.choice(self._elements)
            if not element.isvalid():
                continue
            step = self._chance.choices((self._set, self._destroy, self._clear), (20, 1, 1))[0]
            try:
                step(element)
                self.done += 1
            except (umlmm.Kelm.Error, AttributeError, TypeError, ValueError, IndexError):
                pass
        for element in self._made:  # and found no owner
            if element.isvalid() and element.owner is None:
                element.destroy()

    def _feature(self, element):
        metaclass = element.MetaClass()
        names = [row[0] for row in METACLASSES.features(element)]
        return metaclass.property(self._chance.choice(names))

    def _destroy(self, element):
        if element.owner is not None and len(element.allOwnedElements()) < 20:
            element.destroy()

    def _clear(self, element):
        feature = self._feature(element)
        if not feature.isComposite:
            element.unset(feature.name)

    def _set(self, element):
        feature = self._feature(element)
        if not is_list(feature):
            element.setProperty(feature.name, self._value(feature))
            return
        values = element.getProperty(feature.name)
        step = self._chance.randrange(4)
        if step == 0 and len(values) > 1:
            order = list(values)
            self._chance.shuffle(order)
            values[:] = order
        elif step == 1 and len(values) > 0 and not feature.isComposite:
            del values[self._chance.randrange(len(values))]
        else:
            value = self._value(feature)
            if value is not None and (not feature.isUnique or value not in list(values)):
                values.insert(self._chance.randrange(len(values) + 1) + 1, value)

    def _value(self, feature):
        kind = feature.type
        if hasattr(kind, "superClasses"):
            return self._element(feature, kind)
        if kind.name == "Boolean":
            return self._chance.random() < 0.5
        if kind.name in ("Integer", "UnlimitedNatural"):
            return self._chance.choice((0, 1, 7, 2**31 - 1, "*" if kind.name == "UnlimitedNatural" else -3))
        if kind.name == "String":
            return self._chance.choice(TEXTS)
        return self._chance.choice(list(kind.literals()))

    def _element(self, feature, kind):
        if feature.isComposite and self._chance.random() < 0.8:
            makeable = self._makeable.get(kind.name)
            if makeable is None:
                makeable = self._makeable[kind.name] = [
                    metaclass for metaclass in self._concrete if metaclass.MetaClass().conformsTo(kind)]
            made = self._chance.choice(makeable)(self._model)
            self._elements.append(made)
            self._made.append(made)
            return made
        for _ in range(50):
            element = self._chance.choice(self._elements)
            if element.isvalid() and element.MetaClass().conformsTo(kind):
                return element
        return None
