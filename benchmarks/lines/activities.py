import umlmm

model = umlmm.Factory.createNewModel()
shop = umlmm.Package(model)
shop.name = "shop"
buy = umlmm.Activity(model)
buy.name = "buy"
shop.packagedElement.append(buy)


def node(kind, name):
    made = kind(model)
    made.name = name
    buy.node.append(made)
    return made


start = node(umlmm.InitialNode, "start")
choose = node(umlmm.OpaqueAction, "choose")
pay = node(umlmm.OpaqueAction, "pay")
end = node(umlmm.ActivityFinalNode, "end")

steps = [start, choose, pay, end]
for source, target in zip(steps, steps[1:]):
    flow = umlmm.ControlFlow(model)
    flow.source = source
    flow.target = target
    buy.edge.append(flow)

at = start
while at.outgoing:
    flow = at.outgoing[0]
    print(f"{at.name} -> {flow.target.name}")
    at = flow.target
print([action.name for action in model.instancesOf(umlmm.OpaqueAction.MetaClass())])
