import umlmm

model = umlmm.Factory.createNewModel()
shop = umlmm.Package(model)
shop.name = "shop"


def new_class(name):
    made = umlmm.Class(model)
    made.name = name
    shop.packagedElement.append(made)
    return made


def associate(source, target, ends, bounds, name="", aggregation=None):
    association = umlmm.Association(model)
    association.name = name
    shop.packagedElement.append(association)
    properties = []
    for end, owner, type_, (lower, upper) in zip(ends, (target, source), (source, target), bounds):
        made = umlmm.Property(model)
        made.name = end
        made.type = type_
        made.lower = lower
        made.upper = upper
        properties.append(made)
        if end:
            owner.ownedAttribute.append(made)
        else:
            association.ownedEnd.append(made)
    association.memberEnd = properties
    if aggregation:
        properties[1].aggregation = aggregation
    return association


def other_end(end):
    first, second = end.association.memberEnd
    return second if end == first else first


def multiplicity(feature):
    lower, upper = str(feature.lowerBound()), feature.upperBound()
    if lower == upper:
        return upper
    return f"{lower}..{upper}"


def shown(element):
    if element.qualifiedName:
        return element.qualifiedName
    above = [(each.name or f"<{each.MetaClass().name}>") for each in element.allNamespaces()]
    return "::".join([*reversed(above), element.name or f"<{element.MetaClass().name}>"])


def remove(element):
    """The element with the associations that end at it and their ends."""
    gone = [element]
    for association in model.instancesOf(umlmm.Association.MetaClass()):
        if element in [end.type for end in association.memberEnd]:
            gone.append(association)
            gone.extend(end for end in association.memberEnd if end.owner not in gone)
    told = [f"{each.MetaClass().name} {shown(each)}" for each in gone]
    for each in gone:
        if each.isvalid():
            each.asMutable().destroy()
    return told


order, item, customer = (new_class(name) for name in ("Order", "Item", "Customer"))
associate(order, item, ("order", "items"), ((1, 1), (0, "*")), "lines", umlmm.AggregationKind.Composite)
associate(customer, order, ("", "orders"), ((1, 1), (0, "*")))

for each in model.instancesOf(umlmm.Property.MetaClass()):
    print(f"{shown(each)}: {shown(each.type)} [{multiplicity(each)}], back by {shown(other_end(each))}, "
          f"parts: {each.isComposite}")
print(remove(item))
