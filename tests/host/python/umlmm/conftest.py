import pytest

import umlmm


@pytest.fixture
def model():
    model = umlmm.Factory.createNewModel()
    yield model
    model.close()


@pytest.fixture
def shop(model):
    """A package with a class that has two attributes."""
    package = umlmm.Package(model)
    package.name = "shop"
    customer = umlmm.Class(model)
    customer.name = "Customer"
    package.packagedElement.append(customer)
    for name in ("email", "age"):
        attribute = umlmm.Property(model)
        attribute.name = name
        customer.ownedAttribute.append(attribute)
    return package
