"""Relations in a line: each function makes one with all that belongs to it, or raises and leaves nothing behind.

    umlmm.associate(order, item, ends=("order", "items"), multiplicity=("1", "0..*"), aggregation="composite")
    umlmm.generalize(special, general)
    umlmm.realize(shop, sellable)
    umlmm.depend(order, clock)
    umlmm.connect(engine, wheel)
    umlmm.send(customer, shop, "order")
"""

from __future__ import annotations

import umlmm
from umlmm import Kelm, errors

TYPE_CHECKING = False
if TYPE_CHECKING:
    from typing import Literal, Union

    _Bounds = Union[str, int, tuple[int, Union[int, str, None]]]
    _End = Union[umlmm.ConnectableElement, tuple[umlmm.Property, umlmm.ConnectableElement]]
    _Sort = Literal["synchCall", "asynchCall", "asynchSignal", "createMessage", "deleteMessage", "reply"]

__all__ = ["associate", "connect", "depend", "generalize", "realize", "send"]


def associate(first: umlmm.Type, second: umlmm.Type, *, name: str = "", ends: tuple[str, str] = ("", ""),
              multiplicity: tuple[_Bounds, _Bounds] = ("1", "1"),
              aggregation: umlmm.AggregationKind | Literal["none", "shared", "composite"] = "none",
              navigable: bool | tuple[bool, bool] | None = None, kind: type | None = None,
              owner: umlmm.Package | None = None) -> umlmm.Association:
    """An association (UML 2.5.1, clause 11.5) of two types, in the package of the first one unless `owner` is given.

    `ends` and `multiplicity` are told of the end at the first type and of the one at the second. With an `aggregation`
    the first type is the whole: of a composite, `first.ownedAttribute` has the parts. `navigable` says which end can be
    reached, a pair or one for both; unless said, those are the ends that have a name, and the second one if none has.
    A navigable end is owned by the type at the other end if that has attributes, any other by the association.
    `kind` is another class to make, such as `umlmm.AssociationClass`.
    """
    if navigable is None:
        navigable = (bool(ends[0]), bool(ends[1]) or not ends[0])
    elif isinstance(navigable, bool):
        navigable = (navigable, navigable)
    with _Making() as making:
        made = making.new(kind or umlmm.Association, first.modelKelm, name=name)
        properties = []
        for at, (here, there) in enumerate(((first, second), (second, first))):
            end = making.new(umlmm.Property, first.modelKelm, name=ends[at], type=here, multiplicity=multiplicity[at])
            if at == 1:
                end.aggregation = aggregation
            if not navigable[at] or not hasattr(type(there), "ownedAttribute"):
                made.ownedEnd.append(end)
                if navigable[at]:
                    made.navigableOwnedEnd.append(end)
            properties.append((end, there))
        made.memberEnd = [end for end, _ in properties]
        for end, there in properties:
            if end.owner is None:
                there.ownedAttribute.append(end)  # type: ignore[attr-defined]
        _put(made, owner or _package_of(first))
        return made


def generalize(specific: umlmm.Classifier, general: umlmm.Classifier) -> umlmm.Generalization:
    """A generalization (UML 2.5.1, clause 9.2), owned by the specific classifier. The one that is there is answered
    if there is one."""
    for known in specific.generalization:
        if known.general == general:
            return known
    with _Making() as making:
        return making.new(umlmm.Generalization, specific.modelKelm, general=general, specific=specific)


def realize(implementer: umlmm.NamedElement, contract: umlmm.NamedElement, *, name: str = "") -> umlmm.Realization:
    """An interface realization (UML 2.5.1, clause 10.4) of a classifier with behavior and an interface, owned by the former; a
    realization (clause 7.7) of any others, in the package of the implementer."""
    if isinstance(contract, umlmm.ImmutableInterface) and isinstance(implementer, umlmm.ImmutableBehavioredClassifier):
        with _Making() as making:
            return making.new(umlmm.InterfaceRealization, implementer.modelKelm, name=name, contract=contract,
                              implementingClassifier=implementer)
    return depend(implementer, contract, name=name, kind=umlmm.Realization)  # type: ignore[return-value]


def depend(client: umlmm.NamedElement, supplier: umlmm.NamedElement, *, name: str = "",
           kind: type | None = None, owner: umlmm.Package | None = None) -> umlmm.Dependency:
    """A dependency (UML 2.5.1, clause 7.7), in the package of the client unless `owner` is given; `kind` is a more special
    class, such as `umlmm.Usage`."""
    with _Making() as making:
        made = making.new(kind or umlmm.Dependency, client.modelKelm, name=name, client=[client], supplier=[supplier])
        _put(made, owner or _package_of(client))
        return made


def connect(first: _End, second: _End, *, name: str = "", type: umlmm.Association | None = None,
            owner: umlmm.StructuredClassifier | None = None) -> umlmm.Connector:
    """A connector (UML 2.5.1, clause 11.2) of two parts or ports, in the classifier that owns them unless `owner` is given. A
    port of a part is given as a pair: `connect((engine, shaft), wheel)`."""
    ends = [end if isinstance(end, tuple) else (None, end) for end in (first, second)]
    owner = owner or _common_structure(ends)
    with _Making() as making:
        made = making.new(umlmm.Connector, owner.modelKelm, name=name)
        for part, role in ends:
            end = making.new(umlmm.ConnectorEnd, owner.modelKelm, role=role)
            if part is not None:
                end.partWithPort = part
            made.end.append(end)
        if type is not None:
            made.type = type
        owner.ownedConnector.append(made)
        return made


def send(sender: umlmm.Lifeline, receiver: umlmm.Lifeline, name: str = "", *,
         sort: umlmm.MessageSort | _Sort | None = None,
         signature: umlmm.Operation | umlmm.Signal | None = None) -> umlmm.Message:
    """A message (UML 2.5.1, clause 17.4) between two lifelines of an interaction, with an occurrence on each, behind all that
    happens in the interaction so far. `signature` is what is called or sent: the occurrences get events of it, in the
    package of the interaction. Unless `sort` is given, a message is a call that waits, and that of a signal is one."""
    interaction = sender.interaction
    if interaction is None or receiver.interaction != interaction:
        raise errors.WrongValue(f"{sender!r} and {receiver!r} are not lifelines of one interaction")
    is_signal = isinstance(signature, umlmm.ImmutableSignal)
    if not (signature is None or is_signal or isinstance(signature, umlmm.ImmutableOperation)):
        raise errors.WrongType(f"The signature of a message is an operation or a signal, not {signature!r}")
    with _Making() as making:
        model = sender.modelKelm
        sort = sort or ("asynchSignal" if is_signal else "synchCall")
        made = making.new(umlmm.Message, model, name=name, messageSort=sort, interaction=interaction)
        for feature, lifeline in (("sendEvent", sender), ("receiveEvent", receiver)):
            occurrence = making.new(umlmm.MessageOccurrenceSpecification, model, covered=[lifeline], message=made)
            interaction.fragment.append(occurrence)
            setattr(made, feature, occurrence)
            if signature is not None:
                kind = f"{feature.removesuffix('Event').title()}{'Signal' if is_signal else 'Operation'}Event"
                occurrence.event = making.new(getattr(umlmm, kind), model, **{
                    "signal" if is_signal else "operation": signature})
                _put(occurrence.event, _package_of(interaction))
        return made


class _Making:
    """Destroys what it has made when the block is left by an exception."""

    def __init__(self):
        self._made = []

    def new(self, cls, model, **features):
        made = cls(model, **features)
        self._made.append(made)
        return made

    def __enter__(self):
        return self

    def __exit__(self, error, value, trace):
        if error is not None:
            for made in reversed(self._made):
                if made.isvalid():
                    made.destroy()


def _put(made, owner):
    """Into a package, or at the top level."""
    if owner is not None:
        owner.packagedElement.append(made)


def _package_of(element):
    """The nearest owner, or the element itself, that has packaged elements."""
    while element is not None and not isinstance(element, (umlmm.ImmutablePackage, umlmm.ImmutableComponent)):
        element = element.containerKelm
    return element


def _common_structure(ends):
    """The classifier in which the parts, or the ports of none, are."""
    inner = [part or role for part, role in ends]
    owners = [role.owner for role in inner]
    if owners[0] is None or owners[0] != owners[1] or not isinstance(owners[0], Kelm.ClassObject):
        raise errors.WrongValue(f"{inner[0]!r} and {inner[1]!r} are not parts or ports of one classifier; say in which the "
                         f"connector is to be: owner=classifier")
    return owners[0]
