import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name=""):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


def bounds(feature, lower, upper):
    feature.lower = lower
    feature.upper = upper


def multiplicity(feature):
    lower, upper = feature.lowerBound(), feature.upperBound()
    return upper if str(lower) == upper else f"{lower}..{upper}"


def literal(value):
    text = value.toString() if value else ""
    return text[:1].lower() + text[1:]


shop = umlmm.Package(model)
shop.name = "shop"
types = umlmm.Package(model)
types.name = "types"
real = new(umlmm.PrimitiveType, types.packagedElement, "Real")
text = new(umlmm.PrimitiveType, types.packagedElement, "String")

product = new(umlmm.Class, shop.packagedElement, "Product")
product.isAbstract = True
title = new(umlmm.Property, product.ownedAttribute, "title")
title.type = text
price = new(umlmm.Property, product.ownedAttribute, "price")
price.type = real
price.visibility = umlmm.VisibilityKind.Private
book = new(umlmm.Class, shop.packagedElement, "Book")
umlmm.Generalization(model, book, product)

size = new(umlmm.Enumeration, shop.packagedElement, "Size")
for name in ("small", "large"):
    new(umlmm.EnumerationLiteral, size.ownedLiteral, name)
kind = new(umlmm.Property, product.ownedAttribute, "size")
kind.type = size
bounds(kind, 0, 1)

discount = new(umlmm.Operation, product.ownedOperation, "discount")
discount.isQuery = True
percent = new(umlmm.Parameter, discount.ownedParameter, "percent")
percent.type = real
result = new(umlmm.Parameter, discount.ownedParameter)
result.type = real
result.direction = umlmm.ParameterDirectionKind.Return

rows = [["path", "type.name", "multiplicity", "visibility"]]
for each in model.instancesOf(umlmm.Property.MetaClass()):
    rows.append([each.qualifiedName, each.type.name, multiplicity(each), literal(each.visibility)])
widths = [max(len(row[column]) for row in rows) for column in range(4)]
rows.insert(1, ["-" * width for width in widths])
for at, row in enumerate(rows):
    gap = "-" if at == 1 else " "
    print("|" + "|".join(gap + cell.ljust(width) + gap for cell, width in zip(row, widths)) + "|")
print([each.name for each in book.inheritedMember])
