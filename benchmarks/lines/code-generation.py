import jinja2
import umlmm

TEMPLATE = """\
{% for cls in classes %}
class {{ cls.name }}{% if cls.general %}({{ cls.general | map(attribute="name") | join(", ") }}){% endif %}:
{% for attribute in cls.ownedAttribute %}
    {{ attribute.name }}: {{ types[attribute.type.name] }}{{ " | None = None" if attribute.lower == 0 }}
{% else %}
    pass
{% endfor %}
{% endfor %}
"""

model = umlmm.Factory.createNewModel()


def new(kind, owner, name):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


shop, types = umlmm.Package(model), umlmm.Package(model)
shop.name, types.name = "shop", "types"
product, book = (new(umlmm.Class, shop.packagedElement, name) for name in ("Product", "Book"))
title = new(umlmm.Property, product.ownedAttribute, "title")
title.type = new(umlmm.PrimitiveType, types.packagedElement, "String")
weight = new(umlmm.Property, product.ownedAttribute, "weight")
weight.type = new(umlmm.PrimitiveType, types.packagedElement, "Real")
weight.lower = 0
umlmm.Generalization(model, book, product)

environment = jinja2.Environment(trim_blocks=True, lstrip_blocks=True)
print(environment.from_string(TEMPLATE).render(
    classes=list(model.instancesOf(umlmm.Class.MetaClass())),
    types={"String": "str", "Real": "float", "Integer": "int"}))
