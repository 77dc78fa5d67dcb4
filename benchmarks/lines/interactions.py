import umlmm

model = umlmm.Factory.createNewModel()
shop = umlmm.Package(model)
shop.name = "shop"
till = umlmm.Class(model)
till.name = "Till"
shop.packagedElement.append(till)
scan = umlmm.Operation(model)
scan.name = "scan"
till.ownedOperation.append(scan)

sale = umlmm.Interaction(model)
sale.name = "sale"
shop.packagedElement.append(sale)


def lifeline(name):
    made = umlmm.Lifeline(model)
    made.name = name
    sale.lifeline.append(made)
    return made


def occurrence(message, line, event):
    made = umlmm.MessageOccurrenceSpecification(model)
    made.message = message
    made.covered = [line]
    made.event = event
    sale.fragment.append(made)
    return made


def send(source, target, name, sort, operation=None):
    message = umlmm.Message(model)
    message.name = name
    message.messageSort = sort
    sale.message.append(message)
    events = [None, None]
    if operation:
        events = [umlmm.SendOperationEvent(model), umlmm.ReceiveOperationEvent(model)]
        for event in events:
            event.operation = operation
            shop.packagedElement.append(event)
    message.sendEvent = occurrence(message, source, events[0])
    message.receiveEvent = occurrence(message, target, events[1])


clerk, desk = lifeline("clerk"), lifeline("desk")
send(clerk, desk, "scan", umlmm.MessageSort.SynchCall, scan)
send(desk, clerk, "total", umlmm.MessageSort.Reply)
send(clerk, desk, "done", umlmm.MessageSort.AsynchSignal)

for message in sale.message:
    ends = [end.covered[0].name for end in (message.sendEvent, message.receiveEvent)
            if isinstance(end, umlmm.MessageOccurrenceSpecification)]
    sort = message.messageSort.toString()
    called = f" calls {message.signature.qualifiedName}" if message.signature else ""
    print(f"{' -> '.join(ends)}: {message.name} ({sort[0].lower() + sort[1:]}){called}")
