"""Lines that checkers accept, and, marked, those that they refuse."""

from typing import TypeVar

import umlmm
from umlmm import Kelm

model: Kelm.Model = umlmm.Factory.createNewModel()
shop, order, item = umlmm.Package(model), umlmm.Class(model), umlmm.Class(model)
shop.packagedElement = (element for element in (order, item))
shop.packagedElement += [umlmm.Package(model)]
order.name, order.visibility = "Order", "Private"
items = umlmm.Property(model)
items.type, items.upper, items.aggregation = item.asImmutable(), 3, umlmm.AggregationKind.None_()
order.ownedAttribute.append(items)
order.ownedAttribute.insert(1, umlmm.Port(model))
order.package = None
first: umlmm.Property = order.ownedAttribute[0]
rest: list[umlmm.Property] = order.ownedAttribute[1:]
both: list[umlmm.Property] = sorted(order.ownedAttribute, key=lambda attribute: attribute.name)
views: list[umlmm.ImmutableProperty] = list(order.asImmutable().ownedAttribute)
owner: umlmm.Class | None = items.class_
all_parents: umlmm.ImmutableSequenceOfImmutableClassifier = order.allParents()
is_more: bool = umlmm.VisibilityKind.Private > umlmm.VisibilityKind.Public
link = umlmm.Factory.createNewFactory(model).createGeneralization(order, item)
general: umlmm.Classifier = link.general
def nameOf(element: umlmm.ImmutableNamedElement) -> str:
    return element.ownedAttribute[0].name if isinstance(element, umlmm.ImmutableClass) else element.qualifiedName
nameOf(order)
umlmm.Kelm.extend("umlmm.Class", "nameOf", nameOf)
umlmm.SequenceOfString.make(model).extend(["a", "b"])
cart = umlmm.Class(owner=shop, name="Cart", isAbstract=True)
lines: umlmm.Association = umlmm.associate(cart, item, ends=("", "lines"), multiplicity=("1", "0..*"))
special: umlmm.Generalization = umlmm.Generalization(specific=cart, general=order)
found: list[umlmm.Classifier] = model.all(umlmm.Classifier)
text: umlmm.Property = cart.ownedAttribute.create(name="text", type=model.primitives.String, multiplicity="0..1")
other: umlmm.Property | None = text.other_end
made_in_list = cart.ownedAttribute.create(name="weight", multiplicity="0..1", aggregation="composite")
made_in_list.type = model.primitives.Real
made_port = cart.ownedAttribute.create(umlmm.Port, name="door", isService=True)
made_port.isConjugated = True
shop.packagedElement.create(umlmm.Enumeration, name="Size").ownedLiteral.create(name="small")
kind: str = umlmm.VisibilityKind("private").value
kinds: list[umlmm.VisibilityKind] = [*umlmm.VisibilityKind, umlmm.VisibilityKind["public"]]


Named = TypeVar("Named", bound=umlmm.NamedElement)


def make(kind: type[Named], name: str, owner: umlmm.Element) -> Named:
    return kind(owner=owner, name=name)


made: umlmm.UseCase = make(umlmm.UseCase, "buy", shop)
cart.ownedAttribute = [text]
cart.ownedAttribute.push_back(text)
cart.visibility = "private"
if cart.visibility == "private" and cart.ownedAttribute == [text] and cart.isvalid() and cart:
    print(f"{cart!r}", umlmm.VisibilityKind("public").name)
both_owners = umlmm.Constraint(owner=(cart, "ownedRule")), umlmm.Package(owner=model)
port = umlmm.Port(model, name="p", type=item, multiplicity=(0, None), visibility="Public", isBehavior=True, class_=cart)
message = umlmm.Message(owner=umlmm.Interaction(model), messageSort="asynchCall")
realized: umlmm.Realization = umlmm.realize(cart, umlmm.Interface(owner=shop, name="Sellable"), name="sold as")
umlmm.connect((text, port), text, owner=cart)
attributes: list[umlmm.Property] = model.all(umlmm.Property).having(name="t*", type__name="String")[1:].unique()
rows: list[list[object]] = model.all().table("name", "type.name").rows
names: list[str] = [each.name for each in shop.descendants(umlmm.Class)]
parents: list[umlmm.Package] = cart.ancestors(umlmm.Package)
parts: list[umlmm.Element | None] = [each.owner for each in [*cart.descendants(), *cart.ancestors(), *model.all(exact=True)]]
classes = model.instancesOf(umlmm.Class)
problems: list[str] = model.check()
removed: list[str] = [one.kind for one in umlmm.remove(text)]
try:
    model["shop::Cart"].whatever()
except umlmm.Error as error:
    print(error, umlmm.errors.NotFound)
with umlmm.new_model("block") as block:
    first_found: umlmm.Class = block.all(umlmm.Class)[0]
loaded: umlmm.Kelm.Model = umlmm.load("file.uml", strict=True, paths={"pathmap://P/": "profiles"})
order.nmae  # wrong
order.name = 5  # wrong
order.asImmutable().name = "Order"  # wrong
order.ownedAttribute.append(umlmm.Comment(model))  # wrong
order.asImmutable().ownedAttribute.append(items)  # wrong
order.ownedMember.clear()  # wrong
order.package.name  # wrong
order.conformsTo("Item")  # wrong
umlmm.ImmutableClass(model)  # wrong
umlmm.Class()  # wrong
cart.descendants("Class")  # wrong
umlmm.remove(model)  # wrong
umlmm.AggregationKind.Compsite  # wrong
umlmm.SequenceOfInteger.make(model).append("a")  # wrong
umlmm.Class(model, nmae="x")  # wrong
umlmm.Class(model, name=3)  # wrong
umlmm.Class(owner=shop, isAbstract="yes")  # wrong
umlmm.Class(owner="shop")  # wrong
umlmm.Class(model, qualifiedName="x")  # wrong
umlmm.Property(model, type="String")  # wrong
umlmm.Property(model, aggregation="Compsite")  # wrong
umlmm.Property(model, multiplicity=2.5)  # wrong
umlmm.Generalization(specific=cart, general=shop)  # wrong
umlmm.Association(model, memberEnd=text)  # wrong
order.visibility = "secret"  # wrong
order.visibility = umlmm.AggregationKind.None_  # wrong
order.isAbstract = "x"  # wrong
order.ownedAttribute = [order]  # wrong
order.ownedAttribute = text  # wrong
order.ownedAttribute[0] = order  # wrong
text.type = text  # wrong
text.lower = "1"  # wrong
text.multiplicity = None  # wrong
text.other_end.name  # wrong
text.path = "x"  # wrong
if order.isvalid:  # wrong
    pass
model.all("Class")  # wrong
model.where(umlmm.Class, lambda each: each.nmae)  # wrong
model.all(umlmm.Class).having(lambda each: each.lower)  # wrong
model.all(umlmm.Class)[0].lower  # wrong
model.instancesOf("Class")  # wrong
model[3]  # wrong
umlmm.associate(cart)  # wrong
umlmm.associate(cart, shop)  # wrong
umlmm.associate(cart, item, ends="x")  # wrong
umlmm.associate(cart, item, aggregation="compsite")  # wrong
umlmm.generalize(cart, shop)  # wrong
umlmm.send(cart, item)  # wrong
umlmm.new_model(3)  # wrong
umlmm.load(3)  # wrong
umlmm.StateMachine(model)  # wrong
make(umlmm.Comment, "x", shop)  # wrong
make(umlmm.Class, "x", model).lower  # wrong
number: int = order.name  # wrong
made_wrong: umlmm.Package = make(umlmm.Class, "x", shop)  # wrong
made_in_list.upper = 1.5  # wrong
made_in_list.class_ = shop  # wrong
made_in_list.association.memberEnd  # wrong
cart.ownedAttribute.create(nmae="x")  # wrong
cart.ownedAttribute.create(type="String")  # wrong
cart.ownedAttribute.create(umlmm.Comment)  # wrong
cart.ownedAttribute.create(umlmm.Port, 3)  # wrong
shop.packagedElement.create(name="x")  # wrong
cart.allFeatures().create(name="x")  # wrong
cart.superClass.append(made_in_list)  # wrong
model.primitives.Strng  # wrong
