import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


shop = umlmm.Package(model)
shop.name = "shop"
customer = new(umlmm.Actor, shop.packagedElement, "Customer")
system = new(umlmm.Component, shop.packagedElement, "System")
order, pay, coupon = (new(umlmm.UseCase, system.ownedUseCase, name) for name in ("order", "pay", "coupon"))

association = new(umlmm.Association, shop.packagedElement, "")
for type_ in (customer, order):
    end = new(umlmm.Property, association.ownedEnd, "")
    end.type = type_
include = umlmm.Include(model, order, pay)
point = new(umlmm.ExtensionPoint, order.extensionPoint, "before paying")
extend = umlmm.Extend(model)
extend.extendedCase = order
extend.extensionLocation.append(point)
coupon.extend.append(extend)

print([case.name for case in system.ownedUseCase])
print([included.addition.name for included in order.include])
print([f"{each.extension.name} extends {each.extendedCase.name}"
       for each in model.instancesOf(umlmm.Extend.MetaClass())])
