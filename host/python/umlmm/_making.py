"""Making: elements from keywords and in their owners, lists that make what goes into them, multiplicities, and the
standard's primitive types."""

from umlmm import _front

_recipes = None  # the module, from the first use on: an import in every call would take a third of its time


def _loaded():
    global _recipes
    from umlmm import _recipes
    return _recipes


@_front.adds_to(_front.ELEMENTS)
class _Element:
    def __construct__(cls, arguments, keywords):
        return (_recipes or _loaded()).make(cls, arguments, keywords)


@_front.adds_to("Kelm.SequenceOfClassObject")
class _ElementsOfAFeature:
    def create(self, kind: "type[typing.Any] | None" = None, /, **features: "typing.Any") -> "typing.Any":
        """Makes an element at the end of the list and answers it: of the list's own class, or of a more special one
        that is given first. Keywords set its features. When it raises, nothing has been made."""
        return (_recipes or _loaded()).make_in(self, kind, features)


@_front.adds_to("umlmm.ImmutableMultiplicityElement")
class _MultiplicityElement:
    @property
    def multiplicity(self) -> str:
        """The bounds in UML's notation: "1", "0..*". Takes that, "*" for any number, one number for both bounds, or a
        pair of bounds with None for no upper one."""
        lower, upper = self.lower, self.upper
        return upper if str(lower) == upper else f"{lower}..{upper}"

    @multiplicity.setter
    def multiplicity(self, value: "str | int | tuple[int, int | str | None]"):
        recipes = _recipes or _loaded()
        recipes.set_bounds(self, *recipes.bounds(value))


@_front.adds_to(_front.MODELS)
class _Model:
    @property
    def primitives(self) -> "umlmm.primitives.Primitives":
        """The primitive types of the standard by name, as in `model.primitives.String`."""
        from umlmm import primitives
        return primitives.Primitives(self)

    def __enter__(self) -> "typing_extensions.Self":
        """`with umlmm.new_model() as model:` closes the model at the end."""
        return self

    def __exit__(self, *error: object) -> None:
        if self.isvalid():
            self.close()
