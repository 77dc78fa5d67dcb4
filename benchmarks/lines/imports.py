import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


library, shop = umlmm.Package(model), umlmm.Package(model)
library.name, shop.name = "library", "shop"
date = new(umlmm.DataType, library.packagedElement, "Date")
zone = new(umlmm.DataType, library.packagedElement, "Zone")
zone.visibility = umlmm.VisibilityKind.Private
order = new(umlmm.Class, shop.packagedElement, "Order")

use = umlmm.PackageImport(model)
use.importedPackage = library
shop.packageImport.append(use)
alias = umlmm.ElementImport(model)
alias.importedElement = zone
alias.alias = "TimeZone"
order.elementImport.append(alias)

print([each.name for each in shop.member], [each.name for each in shop.ownedMember])
print(list(order.getNamesOfMember(zone)))
for package in model.instancesOf(umlmm.Package.MetaClass()):
    for imported in package.packageImport:
        print(f"{package.qualifiedName} uses {imported.importedPackage.qualifiedName}")
