import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


shop, types = umlmm.Package(model), umlmm.Package(model)
shop.name, types.name = "shop", "types"
product = new(umlmm.Class, shop.packagedElement, "Product")
title = new(umlmm.Property, product.ownedAttribute, "title")
title.type = new(umlmm.PrimitiveType, types.packagedElement, "String")
pages = new(umlmm.Property, product.ownedAttribute, "pages")
pages.type = new(umlmm.PrimitiveType, types.packagedElement, "Integer")
literals = {str: umlmm.LiteralString, int: umlmm.LiteralInteger}


def instance(name, **values):
    made = new(umlmm.InstanceSpecification, shop.packagedElement, name)
    made.classifier.append(product)
    for feature, value in values.items():
        slot = umlmm.Slot(model)
        (slot.definingFeature,) = [each for each in product.ownedAttribute if each.name == feature]
        held = literals[type(value)](model)
        held.value = value
        slot.value.append(held)
        made.slot.append(slot)
    return made


instance("novel", title="Emma", pages=474)
instance("atlas", title="World", pages=120)
for each in model.instancesOf(umlmm.InstanceSpecification.MetaClass()):
    if each.MetaClass().name == "InstanceSpecification":  # literals of enumerations are instances, too
        print(each.name, {slot.definingFeature.name: slot.value[0].value for slot in each.slot})
