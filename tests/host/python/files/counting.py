"""Counts the elements of a model file by metaclass as UML means them, with nothing but a parser of XML and what the
metamodel says of itself: a second opinion on what is read."""

import re
import xml.etree.ElementTree as ElementTree

import umlmm

UML = re.compile(r"https?://(schema\.|www\.)?omg\.org/spec/UML(/2[\d.]*)?(/(uml|superstructure)(\.\w+)?)?/?$"
                 r"|https?://(www\.)?eclipse\.org/uml2/[\d.]+/UML/?$", re.IGNORECASE)
XMI = re.compile(r"omg\.org/(spec/)?XMI|XMLSchema-instance")
OLDER = {"InteractionOccurrence": "InteractionUse", "Implementation": "InterfaceRealization",
         "EventOccurrence": "MessageOccurrenceSpecification", "ExecutionOccurrence": "BehaviorExecutionSpecification",
         "CollaborationOccurrence": "CollaborationUse", "Stop": "DestructionOccurrenceSpecification"}
# Where the metamodel doesn't say what a tag without a type is.
MEANT = {"localPrecondition": "Constraint", "localPostcondition": "Constraint", "result": "OutputPin",
         "argument": "InputPin", "ownedStereotype": "Stereotype", "when": "TimeExpression"}
# The same in what the metamodel lacks: state machines, structured nodes, the rarer actions.
UNCOVERED = dict.fromkeys(("trigger", "deferrableTrigger"), "Trigger") | {"endData": "LinkEndCreationData", "ownedEnd": "Property", "roleBinding": "Dependency"} \
    | dict.fromkeys(("guard", "preCondition", "postCondition", "stateInvariant"), "Constraint") \
    | dict.fromkeys(("value", "collection", "exception", "replyValue", "loopVariableInput", "structuredNodeInput"), "InputPin") \
    | dict.fromkeys(("loopVariable", "structuredNodeOutput"), "OutputPin")
SKIP, TOP, UNKNOWN, EXTENSION, TEMPLATE = "skip", "top", "unknown", "extension", "template"


class Metamodel:
    def __init__(self):
        self.features, self.by_name = {}, {}
        for name in dir(umlmm):
            published = getattr(umlmm, name)
            metaclass = published.MetaClass() if isinstance(published, type) and hasattr(published, "MetaClass") else None
            if metaclass is None or metaclass.name != name:
                continue
            features = {}
            for feature in metaclass.allProperties():
                # 0: a value, 1: a reference, 2: parts; with the type of an element that has none written.
                kind = 0 if not hasattr(feature.type, "isAbstract") else 2 if feature.isComposite else 1
                meant = None if kind == 0 or feature.type.isAbstract() else feature.type.name
                features[feature.name] = kind, MEANT.get(feature.name, meant)
                if kind == 2:
                    meant = features[feature.name][1]
                    self.by_name[feature.name] = meant if self.by_name.get(feature.name, meant) == meant else None
            self.features[name] = None if metaclass.isAbstract() else features

    def called(self, name):
        name = OLDER.get(name, name)
        for known in (name, name[:1].upper() + name[1:]):
            if known in self.features:
                return known if self.features[known] is not None else None
        return None

    def untyped(self, owner, tag, attributes):
        """What a tag without a type is, in an owner: a metaclass or what it is else."""
        if owner == TEMPLATE:
            return UNKNOWN
        if tag == "ownedTemplateSignature":
            return TEMPLATE
        if owner == UNKNOWN:
            return (UNCOVERED.get(tag) or MEANT.get(tag) or self.by_name.get(tag) if attributes else None) or UNKNOWN
        if tag not in self.features[owner]:
            return MEANT.get(tag) or UNKNOWN
        kind, meant = self.features[owner][tag]
        if kind == 0 or (kind == 1 and not attributes):
            return SKIP
        return meant or UNKNOWN


def counted(source, metamodel=Metamodel()):
    """Elements by metaclass; empty for what holds none."""
    counts, contexts, prefixes = {}, [TOP], []
    for event, what in ElementTree.iterparse(source, ("start", "end", "start-ns", "end-ns")):
        if event == "start-ns":
            prefixes.append(what)
        elif event == "end-ns":
            prefixes.pop()
        elif event == "end":
            contexts.pop()
        else:
            context = context_of(what, contexts, prefixes, metamodel)
            contexts.append(context)
            if context in metamodel.features:
                counts[context] = counts.get(context, 0) + 1
            elif isinstance(context, tuple):
                contexts[-1] = context[0]
    return counts


def context_of(node, contexts, prefixes, metamodel):
    parent = contexts[-1]
    space, _, tag = node.tag.rpartition("}")
    if parent == SKIP:
        return SKIP
    if parent == EXTENSION:
        owner = contexts[-2]
        return (owner,) if tag == "modelExtension" and owner in metamodel.features else SKIP
    if tag == "XMI":
        return TOP
    if XMI.search(space):
        return EXTENSION if tag == "Extension" else SKIP
    known = {key.rpartition("}")[2]: value for key, value in node.attrib.items() if key[:1] != "{" or XMI.search(key)}
    if tag == "eAnnotations" or known.get("nil") == "true" or "idref" in known or "href" in node.attrib:
        return SKIP
    written = next((value for key, value in node.attrib.items() if key[0] == "{" and key.endswith("}type") and XMI.search(key)), None)
    if written is not None:
        prefix, _, name = written.rpartition(":")
        address = next((address for known, address in reversed(prefixes) if known == prefix), "")
        is_uml = not prefix or UML.match(address) or (not address and prefix == "uml")
        return (metamodel.called(name) or UNKNOWN) if is_uml else SKIP
    if UML.match(space[1:]) and tag[:1].isupper():
        return metamodel.called(tag) or (UNKNOWN if parent == TOP else SKIP)
    if parent == TOP or (space and not UML.match(space[1:])):
        return SKIP
    return metamodel.untyped(parent, tag, node.attrib)
