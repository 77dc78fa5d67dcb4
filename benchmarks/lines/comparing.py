import umlmm


def content(model):
    """A line for each named element, by path."""
    found = {}
    for element in model.instancesOf(umlmm.NamedElement.MetaClass()):
        if element.qualifiedName.startswith("shop::"):
            type_ = element.type if isinstance(element, umlmm.ImmutableTypedElement) else None
            found[element.qualifiedName] = f"{element.MetaClass().name} {type_.name if type_ else ''}".strip()
    return found


def new(model, kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


model = umlmm.Factory.createNewModel()
shop, types = umlmm.Package(model), umlmm.Package(model)
shop.name, types.name = "shop", "types"
integer = new(model, umlmm.PrimitiveType, types.packagedElement, "Integer")
real = new(model, umlmm.PrimitiveType, types.packagedElement, "Real")
order = new(model, umlmm.Class, shop.packagedElement, "Order")
total = new(model, umlmm.Property, order.ownedAttribute, "total")
total.type = integer
old = content(model)

total.type = real
new(model, umlmm.Class, shop.packagedElement, "Item")
changed = content(model)
for path in sorted(old.keys() | changed.keys()):
    if old.get(path) != changed.get(path):
        print(f"{path}: {old.get(path, 'nothing')} -> {changed.get(path, 'nothing')}")
