"""Small models of a shop, one with everything that each kind of picture has a notation for.

    make run SCRIPT=examples/shop_models.py ARGS=FOLDER     draws them all
"""

import os
import sys

import umlmm


def shop():
    """A small model with one of each."""
    model = umlmm.new_model()
    top = umlmm.Package(model, name="shop")
    users, billing = (umlmm.Package(owner=top, name=name) for name in ("users", "billing"))
    umlmm.Package(owner=top, name="empty")
    order, item = (umlmm.Class(owner=top, name=name) for name in ("Order", "Item"))
    person = umlmm.Class(owner=users, name="Person", isAbstract=True)
    customer = umlmm.Class(owner=users, name="Customer")
    invoice = umlmm.Class(owner=billing, name="Invoice")
    state = umlmm.Enumeration(owner=top, name="State")
    for name in ("open", "paid"):
        state.ownedLiteral.create(name=name)
    sellable = umlmm.Interface(owner=top, name="Sellable")
    sellable.ownedOperation.create(name="price")
    order.ownedAttribute.create(name="total", type=model.primitives.Integer, multiplicity="0..1", visibility="private",
                                default="0")
    order.ownedAttribute.create(name="count", isStatic=True, isReadOnly=True, isDerived=True)
    add = order.ownedOperation.create(name="add", isAbstract=True, visibility="protected")
    add.ownedParameter.create(name="item", type=item)
    add.ownedParameter.create(name="done", direction="return", type=model.primitives.Boolean)
    order.nestedClassifier.create(umlmm.Class, name="Line")
    umlmm.associate(order, item, name="lines", ends=("order", "items"), multiplicity=("1", "0..*"),
                    aggregation="composite")
    umlmm.associate(customer, order, ends=("", "orders"), multiplicity=("1", "*"))
    customer["orders"].qualifier.create(name="number", type=model.primitives.Integer)
    umlmm.associate(person, person, ends=("parent", "child"), multiplicity=("2", "*"), aggregation="shared")
    umlmm.associate(invoice, order, name="Payment", kind=umlmm.AssociationClass)
    several(model, top, "deal", [customer, item, invoice])
    umlmm.generalize(customer, person)
    umlmm.realize(item, sellable)
    umlmm.depend(order, sellable, kind=umlmm.Usage)
    umlmm.depend(billing, users)
    billing.packageImport.create(importedPackage=users, visibility="private")
    top.packagedElement.append(umlmm.Dependency(model, client=[order, item], supplier=[state, person]))
    top.ownedComment.create(body="What a customer wants", annotatedElement=[order])
    return top


def several(model, package, name, types):
    association = umlmm.Association(model, name=name)
    for at, kind in enumerate(types):
        end = umlmm.Property(model, name=f"{name}{at}", type=kind)
        association.ownedEnd.append(end)
        association.memberEnd.append(end)
    package.packagedElement.append(association)


def talk():
    """An interaction with messages of all sorts, fragments in fragments and an execution."""
    model = umlmm.new_model()
    talk = umlmm.Interaction(owner=umlmm.Package(model, name="shop"), name="Talk")
    lines = [umlmm.Lifeline(model, name=name, interaction=talk) for name in ("customer", "shop", "store", "log")]
    customer, shop, store, log = lines
    order = umlmm.send(customer, shop, "order")
    alternatives = add_fragment(talk.fragment, "alt", lines[1:3])
    for guard in ("in stock", "otherwise"):
        operand = alternatives.operand.create()
        operand.guard = umlmm.InteractionConstraint(model)
        operand.guard.specification = umlmm.LiteralString(model, value=guard)
        move(umlmm.send(shop, store, f"take {guard}", sort="asynchCall"), operand)
        move(umlmm.send(store, store, f"count {guard}"), operand)
    again = add_fragment(operand.fragment, "loop", lines[1:3]).operand.create()
    move(umlmm.send(store, shop, "again", sort="asynchSignal"), again)
    talk.fragment.append(umlmm.InteractionUse(model, name="pay", covered=lines[:2]))
    umlmm.send(shop, log, "make", sort="createMessage")
    umlmm.send(customer, shop, "lost").receiveEvent.destroy()
    umlmm.send(log, shop, "found").sendEvent.destroy()
    state = umlmm.StateInvariant(model, covered=[shop], invariant=umlmm.Constraint(model, name="ready"))
    talk.fragment.append(state)
    done = umlmm.send(shop, customer, "done", sort="reply")
    talk.fragment.append(umlmm.BehaviorExecutionSpecification(model, name="work", start=order.receiveEvent,
                                                              finish=done.sendEvent, covered=[shop]))
    umlmm.send(shop, log, "stop", sort="deleteMessage")
    return talk


def add_fragment(fragments, operator, covered):
    return fragments.create(umlmm.CombinedFragment, interactionOperator=operator, covered=covered)


def move(message, operand):
    for event in (message.sendEvent, message.receiveEvent):
        operand.fragment.append(event)


def use_cases():
    package = umlmm.Package(umlmm.new_model(), name="shop")
    web = umlmm.Component(owner=package, name="Webshop")
    customer, member = (umlmm.Actor(owner=package, name=name) for name in ("Customer", "Member"))
    order = umlmm.UseCase(owner=(web, "ownedUseCase"), name="Order")
    pay = umlmm.UseCase(owner=package, name="Pay", subject=[web])
    umlmm.generalize(member, customer)
    umlmm.associate(customer, order, name="asks")
    order.include.create(addition=pay)
    umlmm.UseCase(owner=package, name="Wrap").extend.create(extendedCase=order)
    return package


def objects():
    package = umlmm.Package(umlmm.new_model(), name="shop")
    model = package.modelKelm
    order, item = (umlmm.Class(owner=package, name=name) for name in ("Order", "Item"))
    total = order.ownedAttribute.create(name="total")
    first = order.ownedAttribute.create(name="first", type=item)
    has = umlmm.associate(order, item, name="has", ends=("order", "items"))
    one, other = (umlmm.InstanceSpecification(owner=package, name=name, classifier=[kind])
                  for name, kind in (("o1", order), ("i1", item)))
    link = umlmm.InstanceSpecification(owner=package, name="link", classifier=[has])
    one.slot.create(definingFeature=total, value=[umlmm.LiteralInteger(model, value=7)])
    for owner, feature, value in ((one, first, other), (link, has.memberEnd[0], one), (link, has.memberEnd[1], other)):
        owner.slot.create(definingFeature=feature, value=[umlmm.InstanceValue(model, instance=value)])
    return package


def activity():
    package = umlmm.Package(umlmm.new_model(), name="shop")
    model = package.modelKelm
    activity = umlmm.Activity(owner=package, name="Ship")
    take, pack = (umlmm.OpaqueAction(model, name=name, activity=activity) for name in ("Take", "Pack"))
    nodes = [umlmm.InitialNode(model, name="start", activity=activity), take, pack,
             umlmm.ActivityFinalNode(model, name="stop", activity=activity)]
    for source, target in zip(nodes, nodes[1:]):
        umlmm.ControlFlow(model, source=source, target=target, activity=activity)
    umlmm.ObjectFlow(model, source=take.outputValue.create(name="order"), activity=activity,
                     target=pack.inputValue.create(umlmm.InputPin, name="what"))
    return activity


def components():
    package = umlmm.Package(umlmm.new_model(), name="shop")
    web, store = (umlmm.Component(owner=package, name=name) for name in ("Web", "Store"))
    orders, engine = umlmm.Interface(owner=package, name="Orders"), umlmm.Class(owner=package, name="Engine")
    umlmm.realize(store, orders)
    umlmm.depend(web, orders, kind=umlmm.Usage)
    http = web.ownedAttribute.create(umlmm.Port, name="http")
    inlet = engine.ownedAttribute.create(umlmm.Port, name="inlet")
    view, cart = (web.ownedAttribute.create(name=name, type=engine, aggregation="composite")
                  for name in ("view", "cart"))
    umlmm.connect(view, cart, owner=web)
    umlmm.connect(http, (view, inlet), owner=web)
    return package


def views():
    """What is drawn of them, by name."""
    top = shop()
    yield "classes", umlmm.draw(top, show="comments")
    yield "packages", umlmm.draw(top, "package")
    yield "inheritance", umlmm.draw(top["users::Person"], "inheritance")
    yield "references", umlmm.draw(top["Item"], "references")
    for make, kind in ((talk, "sequence"), (use_cases, "use case"), (objects, "object"), (activity, "activity"),
                       (components, "component")):
        yield make.__name__, umlmm.draw(make(), kind)


if __name__ == "__main__":
    for name, view in views():
        path = os.path.join(*sys.argv[1:2], f"{name}.svg")
        view.save(path)
        print(path)
