import umlmm

model = umlmm.Factory.createNewModel()


def new(kind, owner, name=""):
    made = kind(model)
    made.name = name
    owner.append(made)
    return made


def end_of(connector, role, part):
    end = umlmm.ConnectorEnd(model)
    end.role = role
    end.partWithPort = part
    connector.end.append(end)


car = umlmm.Package(model)
car.name = "car"
torque = new(umlmm.Interface, car.packagedElement, "Torque")

engine, wheel, axle = (new(umlmm.Component, car.packagedElement, name) for name in ("Engine", "Wheel", "Axle"))
realization = umlmm.InterfaceRealization(model, torque, engine)
usage = umlmm.Usage(model)
usage.client.append(wheel)
usage.supplier.append(torque)
car.packagedElement.append(usage)
shaft = new(umlmm.Port, engine.ownedAttribute, "shaft")
shaft.type = torque
hub = new(umlmm.Port, wheel.ownedAttribute, "hub")
hub.type = torque

left = new(umlmm.Property, axle.ownedAttribute, "left")
left.type = wheel
left.aggregation = umlmm.AggregationKind.Composite
motor = new(umlmm.Property, axle.ownedAttribute, "motor")
motor.type = engine
motor.aggregation = umlmm.AggregationKind.Composite
drive = new(umlmm.Connector, axle.ownedConnector, "drive")
end_of(drive, shaft, motor)
end_of(drive, hub, left)

ends = list(model.instancesOf(umlmm.ConnectorEnd.MetaClass()))
print(drive.name, [end.partWithPort.name for end in ends], [end.role.name for end in ends])
print(engine.provided[0].name, wheel.required[0].name)
print([part.name for part in axle.part])
