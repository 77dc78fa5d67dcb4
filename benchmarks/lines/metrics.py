import csv
import sys

import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


shop, types = umlmm.Package(model), umlmm.Package(model)
shop.name, types.name = "shop", "types"
text = new(umlmm.PrimitiveType, types.packagedElement, "String")
for number, name in enumerate(("Order", "Item", "Customer")):
    each = new(umlmm.Class, shop.packagedElement, name)
    each.isAbstract = not number
    for place in range(number):
        new(umlmm.Property, each.ownedAttribute, f"a{place}").type = text
        umlmm.Generalization(model, each, order)
    order = each if not number else order

classes = list(model.instancesOf(umlmm.Class.MetaClass()))
rows = [["name", "isAbstract", "ownedAttribute.name", "general.name"]]
for each in classes:
    rows.append([each.name, str(each.isAbstract), ", ".join(part.name for part in each.ownedAttribute),
                 ", ".join(general.name for general in each.general)])
widths = [max(len(row[column]) for row in rows) for column in range(4)]
rows.insert(1, ["-" * width for width in widths])
for at, row in enumerate(rows):
    gap = "-" if at == 1 else " "
    print("|" + "|".join(gap + cell.ljust(width) + gap for cell, width in zip(row, widths)) + "|")
print("attributes for each class:", sum(len(each.ownedAttribute) for each in classes) / len(classes))
print("without attributes:", [each.name for each in classes if not len(each.ownedAttribute)])
print("of type String:", [each.name for each in classes
                          if any(part.type and part.type.name.startswith("Str") for part in each.ownedAttribute)])
writer = csv.writer(sys.stdout, lineterminator="\n")
writer.writerow(["name"])
writer.writerows([each.name] for each in classes if "e" in each.name)
