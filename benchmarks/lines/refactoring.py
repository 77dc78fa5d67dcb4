import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


def found(owner, name):
    (part,) = [each for each in owner.ownedMember if each.name == name]
    return part


def unowned():
    """Elements that should have an owner and have none."""
    return [f"{each.MetaClass().name} {each.name} has no owner, and needs one"
            for each in model.instancesOf(umlmm.Element.MetaClass()) if each.owner is None and each.mustBeOwned()]


shop, types = umlmm.Package(model), umlmm.Package(model)
shop.name, types.name = "shop", "types"
real = new(umlmm.PrimitiveType, types.packagedElement, "Real")
book, film = (new(umlmm.Class, shop.packagedElement, name) for name in ("Book", "Film"))
for each in (book, film):
    new(umlmm.Property, each.ownedAttribute, "price").type = real

# Pull up what both have.
media = new(umlmm.Class, shop.packagedElement, "Media")
media.isAbstract = True
media.ownedAttribute.append(found(book, "price"))
found(film, "price").destroy()
for each in (book, film):
    umlmm.Generalization(model, each, media)
print([each.qualifiedName for each in book.allFeatures()])

# Rename all at once, and move into a package of its own.
for each in list(model.instancesOf(umlmm.Class.MetaClass())):
    each = each.asMutable()
    each.name = f"Shop{each.name}"
items = new(umlmm.Package, shop.packagedElement, "items")
items.packagedElement.extend(list(shop.ownedType))
print([each.qualifiedName for each in model.instancesOf(umlmm.Class.MetaClass())])

items.packagedElement.remove(found(items, "ShopFilm"))
print(unowned())
