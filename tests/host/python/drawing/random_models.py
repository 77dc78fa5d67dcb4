"""Models for views: those of the examples, and random ones."""

import pathlib
import sys

import umlmm

sys.path.append(str(pathlib.Path(__file__).resolve().parents[4] / "examples"))
from shop_models import (activity, add_fragment, components, objects, several, shop, talk,  # noqa: E402, F401
                         use_cases)


MULTIPLICITIES = ["1", "0..1", "0..*", "1..*", "2", "3..7"]


def random_model(rng):
    """Packages in packages, classes and interfaces in them, and relations among any."""
    model = umlmm.new_model()
    packages = [umlmm.Package(model, name="p0")]
    for at in range(1, rng.randint(1, 5)):
        packages.append(umlmm.Package(owner=rng.choice(packages), name=f"p{at}"))
    types = [rng.choice([umlmm.Class, umlmm.Interface, umlmm.Class])(owner=rng.choice(packages), name=f"c{at}")
             for at in range(rng.randint(2, 12))]
    for at in range(rng.randint(1, 18)):
        one, other = rng.choice(types), rng.choice(types)
        action = rng.random()
        if action < .4:
            umlmm.associate(one, other, name=f"a{at}", ends=(f"x{at}", rng.choice(["", f"y{at}"])),
                            multiplicity=(rng.choice(MULTIPLICITIES), rng.choice(MULTIPLICITIES)),
                            aggregation=rng.choice(["none", "shared", "composite"]),
                            kind=rng.choice([umlmm.Association, umlmm.Association, umlmm.AssociationClass]),
                            navigable=rng.choice([None, True, (True, False)]))
        elif action < .6 and one != other and one not in other.allParents():
            umlmm.generalize(one, other)
        elif action < .7 and isinstance(one, umlmm.Class) and isinstance(other, umlmm.Interface):
            umlmm.realize(one, other)
        elif action < .8:
            several(model, rng.choice(packages), f"n{at}", [one, other, rng.choice(types)])
        elif action < .9:
            first, second = rng.choice(packages + types), rng.choice(packages + types)
            umlmm.depend(first, second, name=f"d{at}", kind=rng.choice([umlmm.Usage, umlmm.Dependency]))
        else:
            rng.choice(packages).packageImport.create(importedPackage=rng.choice(packages))
    return model


def random_view(rng):
    """A view of any kind of a random model."""
    kind = rng.choice([*_MADE, "class", "package", "inheritance", "references"])
    direction = rng.choice(["down", "up", "left", "right"])
    if kind in _MADE:
        return umlmm.draw(_MADE[kind](rng), kind, direction=direction)
    model = random_model(rng)
    what = model if kind != "references" else rng.choice(list(model.all(umlmm.Classifier)))
    return umlmm.draw(what, kind, direction=direction, show=["inherited", "comments"])


def _random_use_cases(rng):
    package = umlmm.Package(umlmm.new_model(), name="shop")
    subjects = [umlmm.Component(owner=package, name=f"system {at}") for at in range(rng.randint(0, 2))]
    cases = [umlmm.UseCase(owner=package, name=f"case {at}",
                           subject=rng.sample(subjects, min(len(subjects), rng.randint(0, 1))))
             for at in range(rng.randint(2, 7))]
    actors = [umlmm.Actor(owner=package, name=f"actor {at}") for at in range(rng.randint(1, 4))]
    for _ in range(rng.randint(1, 8)):
        one, other = rng.sample(cases, 2)
        rng.choice([lambda: one.include.create(addition=other), lambda: one.extend.create(extendedCase=other),
                    lambda: umlmm.associate(rng.choice(actors), one, multiplicity=("1", rng.choice(MULTIPLICITIES))),
                    lambda: umlmm.depend(rng.choice(actors), one, name="asks for")])()
    return package


def _random_objects(rng):
    package = umlmm.Package(umlmm.new_model(), name="shop")
    model = package.modelKelm
    kind = umlmm.Class(owner=package, name="Part")
    features = [kind.ownedAttribute.create(name=f"feature{at}") for at in range(3)]
    link = umlmm.associate(kind, kind, name="next to", ends=("left", "right"))
    made = [umlmm.InstanceSpecification(owner=package, name=f"o{at}", classifier=[kind])
            for at in range(rng.randint(2, 8))]
    for one in made:
        for feature in features:
            value = umlmm.InstanceValue(model, instance=rng.choice(made)) if rng.random() < .3 else \
                umlmm.LiteralString(model, value="some text" * rng.randint(0, 9))
            one.slot.create(definingFeature=feature, value=[value])
    for at in range(rng.randint(0, 4)):
        between = umlmm.InstanceSpecification(owner=package, name=f"l{at}", classifier=[link])
        for end in link.memberEnd:
            between.slot.create(definingFeature=end, value=[umlmm.InstanceValue(model, instance=rng.choice(made))])
    return package


def _random_activity(rng):
    activity = umlmm.Activity(owner=umlmm.Package(umlmm.new_model(), name="shop"), name="Ship")
    model = activity.modelKelm
    kinds = [umlmm.OpaqueAction, umlmm.CallBehaviorAction, umlmm.SendSignalAction, umlmm.InitialNode,
             umlmm.ActivityFinalNode, umlmm.ActivityParameterNode]
    nodes = [rng.choice(kinds)(model, name=f"node {at}", activity=activity) for at in range(rng.randint(2, 10))]
    actions = [umlmm.OpaqueAction(model, name=f"act {at}", activity=activity) for at in range(2)]
    for at in range(rng.randint(1, 12)):
        source, target = rng.choice(nodes + actions), rng.choice(nodes + actions)
        umlmm.ControlFlow(model, source=source, target=target, activity=activity, name=rng.choice(["", f"flow {at}"]))
    umlmm.ObjectFlow(model, source=actions[0].outputValue.create(name="order"), activity=activity,
                     target=actions[1].inputValue.create(umlmm.InputPin, name="what"))
    return activity


def _random_components(rng):
    package = components()
    made = [umlmm.Component(owner=package, name=f"component {at}") for at in range(rng.randint(1, 6))]
    interfaces = [umlmm.Interface(owner=package, name=f"I{at}") for at in range(rng.randint(1, 4))]
    for _ in range(rng.randint(1, 9)):
        rng.choice([umlmm.realize, lambda one, other: umlmm.depend(one, other, kind=umlmm.Usage)])(
            rng.choice(made), rng.choice(interfaces))
    for at in range(rng.randint(0, 4)):
        rng.choice(made).ownedAttribute.create(umlmm.Port, name=f"port{at}")
    return package


def _random_interaction(rng):
    talk = umlmm.Interaction(owner=umlmm.Package(umlmm.new_model(), name="shop"), name="Talk")
    model = talk.modelKelm
    lines = [umlmm.Lifeline(model, name=f"line {at}", interaction=talk) for at in range(rng.randint(1, 6))]
    places = [talk.fragment]
    for at in range(rng.randint(1, 15)):
        source, target = rng.choice(lines), rng.choice(lines)
        if rng.random() < .25:
            operator = rng.choice(["alt", "opt", "loop", "par", "break", "critical", "neg", "strict", "seq", "assert"])
            fragment = add_fragment(rng.choice(places), operator, rng.sample(lines, rng.randint(1, len(lines))))
            places += [fragment.operand.create().fragment for _ in range(rng.randint(0, 3))]
            continue
        message = umlmm.send(source, target, f"message {at}" * rng.randint(1, 3),
                             sort=rng.choice(["synchCall", "asynchCall", "asynchSignal", "reply"]))
        place = rng.choice(places)
        if place is not talk.fragment:
            for event in (message.sendEvent, message.receiveEvent):
                place.append(event)
    return talk


_MADE = {"use case": _random_use_cases, "object": _random_objects, "activity": _random_activity,
         "component": _random_components, "sequence": _random_interaction}
