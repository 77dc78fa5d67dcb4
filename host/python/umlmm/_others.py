"""The metaclasses and enumerations of UML 2.5.1 that are not in this package, by the clause that tells of them."""

from umlmm import errors

_CLAUSES = {
    "7, common structure":
        "ParameterableElement TemplateBinding TemplateParameter TemplateParameterSubstitution TemplateSignature "
        "TemplateableElement",
    "8, values":
        "LiteralReal StringExpression",
    "9, classification":
        "ClassifierTemplateParameter ConnectableElementTemplateParameter GeneralizationSet "
        "OperationTemplateParameter ParameterEffectKind ParameterSet RedefinableTemplateSignature",
    "11, structured classifiers":
        "Collaboration CollaborationUse",
    "12, packages":
        "PackageMerge",
    "14, state machines":
        "ConnectionPointReference FinalState ProtocolConformance ProtocolStateMachine ProtocolTransition "
        "Pseudostate PseudostateKind Region State StateMachine Transition TransitionKind Vertex",
    "15, activities":
        "ActivityPartition CentralBufferNode DataStoreNode DecisionNode ExceptionHandler ExecutableNode "
        "FinalNode FlowFinalNode ForkNode InterruptibleActivityRegion JoinNode MergeNode ObjectNodeOrderingKind "
        "Variable",
    "16, actions":
        "AcceptCallAction AcceptEventAction ActionInputPin AddVariableValueAction Clause ClearVariableAction "
        "ConditionalNode CreateLinkObjectAction ExpansionKind ExpansionNode ExpansionRegion LoopNode "
        "QualifierValue RaiseExceptionAction ReadExtentAction ReadIsClassifiedObjectAction "
        "ReadLinkObjectEndAction ReadLinkObjectEndQualifierAction ReadVariableAction ReclassifyObjectAction "
        "ReduceAction RemoveVariableValueAction ReplyAction SequenceNode StartClassifierBehaviorAction "
        "StartObjectBehaviorAction StructuredActivityNode UnmarshallAction VariableAction WriteVariableAction",
    "17, interactions":
        "DestructionOccurrenceSpecification",
    "19, deployments":
        "Artifact CommunicationPath DeployedArtifact Deployment DeploymentSpecification DeploymentTarget Device "
        "ExecutionEnvironment Manifestation Node",
    "20, information flows":
        "InformationFlow InformationItem",
}


def refusal(name):
    """The error for a name that UML has and this package does not; None for another name."""
    for clause, names in _CLAUSES.items():
        if name in names.split():
            return errors.NoSuchMember(
                f"'{name}' of UML 2.5.1 (clause {clause}) is not in this package: there is no umlmm.{name}. What files "
                "hold of it is kept as it stands: element.unknown shows it", name=name)
    return None
