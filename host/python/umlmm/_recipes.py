"""How elements are made from keywords: what a class takes, where it has its place in an owner, and how all of it is
taken back when something is refused."""

from __future__ import annotations

import umlmm
from umlmm import Kelm, _host, errors  # type: ignore[attr-defined]
from umlmm._classes import python_name

_recipes: dict[type, _Recipe] = {}
# What goes into lists of a class.
_item_classes: dict[type, type] = {}
# Combinations of keywords that a recipe remembers. A script has few for each class.
_MOST_PLAIN = 64


def make(cls, arguments, keywords):
    """`cls(*arguments, **keywords)`: an element with features, in its owner if `owner` is given."""
    recipe = _recipes.get(cls) or _Recipe.of(cls)
    names = tuple(keywords)
    is_plain = names in recipe.plain or recipe.check(names)
    owner = keywords.pop("owner", None)
    if owner is None:
        made = cls(*arguments) if arguments else cls(_model_among(cls, keywords))
        return recipe.fill(made, keywords)
    place = recipe.places.get(type(owner))
    if place is None:
        if type(owner) is tuple:
            owner, place = owner
            place = recipe.checked_place(owner, place)
        elif isinstance(owner, Kelm.ImmutableModel):
            return recipe.fill(cls(*(arguments or (owner,))), keywords)
        else:
            place = recipe.find_place(owner)
    made = cls(*arguments) if arguments else cls(owner.modelKelm)
    place, is_list = place
    if is_plain and is_list and not arguments and recipe.places.get(type(owner)) == (place, True):
        # The host does the same from the second time on, without coming here.
        _host.make_so(cls, names, type(owner), "modelKelm", place)
    return recipe.fill(made, keywords, owner, place, is_list)


def make_in(values, kind, keywords):
    """An element in a list of a feature."""
    owner = _host.shown_object(values)
    if owner is None:
        raise errors.WrongType(f"{_named(type(values))} shows no feature of an element; make an element with "
                        f"{_named(kind or _item_class(values))}(model, ...) and append it")
    if kind is None:
        kind = _item_class(values)
    if (_recipes.get(kind) or _Recipe.of(kind)).is_abstract:
        raise errors.WrongType(f"{_named(kind)} is abstract: say of which class the element is to be, "
                        f"as in create(umlmm.Class, ...)")
    made = make(kind, (owner.modelKelm,), keywords)
    try:
        values.append(made)
    except BaseException:
        made.destroy()
        raise
    return made


class _Recipe:
    """What is known of a class: the names that it takes, those of parts among them, and its places in owners. It holds
    no objects of the library, as it stays for good."""

    @classmethod
    def of(cls, made):
        if not isinstance(made, type):
            raise errors.WrongType(f"A class makes elements, not {made!r}")
        recipe = _recipes[made] = cls(made)
        return recipe

    def __init__(self, cls):
        features = list(cls.MetaClass().allProperties())
        self.cls = cls
        self.known = {python_name(feature.name) for feature in features}
        self.settable = {python_name(feature.name) for feature in features if not feature.isReadOnly}
        self.settable |= {name for name in dir(cls) if getattr(_static(cls, name), "fset", None)}
        self.of_parts = {python_name(feature.name) for feature in features if feature.isComposite}
        self.is_abstract = cls.MetaClass().isAbstract()
        self.places = {}
        self.plain = set()

    def check(self, names):
        """Raises for a name that it does not take. Answers whether all of them can be set with no look at what was
        before, which is remembered."""
        for name in names:
            if name not in self.settable and name != "owner":
                self.refuse(name)
        is_plain = self.of_parts.isdisjoint(names)
        if is_plain and len(self.plain) < _MOST_PLAIN:
            self.plain.add(names)
        return is_plain

    def refuse(self, name):
        if name in self.known:
            raise errors.WrongType(f"'{name}' of {_named(self.cls)} is read-only and cannot be given")
        import difflib
        near = difflib.get_close_matches(name, [*self.settable, "owner"], 1)
        raise errors.WrongType(f"{_named(self.cls)} has no feature '{name}'"
                        + (f"; did you mean '{near[0]}'?" if near else ""))

    def fill(self, made, keywords, owner=None, place=None, is_list=False):
        """Sets the features and puts the element into its owner. When one is refused, all is as it was."""
        before = () if self.of_parts.isdisjoint(keywords) else [
            _Place(part) for name in self.of_parts.intersection(keywords) for part in _parts(keywords[name])]
        try:
            for name in keywords:
                setattr(made, name, keywords[name])
            if is_list:
                getattr(owner, place).append(made)
            elif place:
                if getattr(owner, place) is not None:
                    raise errors.WrongValue(f"{place} of {owner!r} is taken; assign None to it first")
                setattr(owner, place, made)
        except BaseException:
            for part in before:
                part.leave(made)
            made.destroy()
            for part in before:
                part.restore()
            raise
        return made

    def find_place(self, owner):
        """The one feature of an owner that takes the element, and whether it is a list."""
        if not isinstance(owner, Kelm.ImmutableClassObject):
            raise errors.WrongType(f"owner is an element, or a pair of one and the name of a feature, not {owner!r}")
        fits = self._fitting(owner)
        subsets = {general.name for feature in fits for general in feature.subsetted}
        fits = [feature for feature in fits if not {general.name for general in feature.subsetted}
                & {other.name for other in fits}] if subsets else fits
        if len(fits) != 1:
            names = ", ".join(sorted(python_name(feature.name) for feature in fits))
            raise errors.WrongType(
                f"{_named(self.cls)} has several places in {owner!r}: {names}. "
                f"Say which: owner=(element, {python_name(fits[0].name)!r})" if fits else
                f"{_named(self.cls)} has no place in {owner!r}: none of its features owns such elements")
        self.places[type(owner)] = python_name(fits[0].name), fits[0].isMultivalued
        return self.places[type(owner)]

    def checked_place(self, owner, name):
        for feature in self._fitting(owner):
            if python_name(feature.name) == name:
                return name, feature.isMultivalued
        names = ", ".join(sorted(python_name(feature.name) for feature in self._fitting(owner)))
        raise errors.WrongType(f"'{name}' of {owner!r} owns no {_named(self.cls)}; what does: {names or 'nothing'}")

    def _fitting(self, owner):
        metaclass = self.cls.MetaClass()
        return [feature for feature in owner.MetaClass().allProperties()
                if feature.isComposite and not feature.isReadOnly and metaclass.conformsTo(feature.type)]


class _Place:
    """Where an element stands: in a feature of its owner, or at the top level."""

    def __init__(self, part):
        self._part = part
        self._owner = part.containerKelm
        self._feature = self._index = None
        for feature in self._owner.MetaClass().allProperties() if self._owner is not None else ():
            if not feature.isComposite or feature.isReadOnly:
                continue
            value = self._owner.getProperty(feature.name)
            if feature.isMultivalued and part in value:
                self._feature, self._index = feature.name, value.index(part)
            elif value == part:
                self._feature = feature.name

    def leave(self, owner):
        """Goes to the top level, if it has come to that owner."""
        if self._part.containerKelm == owner:
            for name in _recipes[type(owner)].of_parts:
                value = getattr(owner, name)
                if value == self._part:
                    owner.unset(name)
                elif isinstance(value, Kelm.SequenceOfClassObject) and self._part in value:
                    value.remove(self._part)

    def restore(self):
        if self._feature is None or self._part.containerKelm == self._owner:
            return
        if self._index is None:
            self._owner.setProperty(self._feature, self._part)
        else:
            self._owner.getProperty(self._feature).insert(self._index + 1, self._part)


def _parts(value):
    """The elements of what is given for a feature of parts."""
    values = value if isinstance(value, (list, tuple)) or hasattr(value, "__iter__") else (value,)
    return [part for part in values if isinstance(part, Kelm.ClassObject)]


def _model_among(cls, keywords):
    """The model of the elements that an element is to refer to."""
    for value in keywords.values():
        for element in _parts(value):
            return element.modelKelm
    raise errors.WrongType(f"{_named(cls)} needs a model or an owner: {_named(cls)}(model, ...), {_named(cls)}(owner=...)")


def _item_class(values):
    kind = type(values)
    if kind not in _item_classes:
        _item_classes[kind] = getattr(umlmm, _host.describe_class(_named(kind))["subject"])
    return _item_classes[kind]


def _named(cls):
    return f"{cls.__module__}.{cls.__qualname__}"


def _static(cls, name):
    import inspect
    return inspect.getattr_static(cls, name, None)


# --- multiplicities

def bounds(value):
    """Lower and upper bound, the latter as `upper` takes it, from what `multiplicity` may be set to."""
    given = value
    if isinstance(value, str):
        lower, dots, upper = (part.strip() for part in value.partition(".."))
        value = (lower, upper) if dots else (0, "*") if lower == "*" else (lower, lower)
    elif not isinstance(value, (tuple, list)):
        value = (value, value)
    try:
        lower, upper = value
        lower = int(lower)
        upper = "*" if upper is None or upper == "*" else int(upper)
    except (TypeError, ValueError):
        lower = -1
    if lower < 0 or (upper != "*" and upper < lower):
        raise errors.WrongValue(f"{given!r} is no multiplicity; what is: '1', '0..*', '*', 2, (0, None)")
    return lower, upper


def set_bounds(element, lower, upper):
    before = element.lower
    element.lower = lower
    try:
        element.upper = upper
    except BaseException:
        element.lower = before
        raise

