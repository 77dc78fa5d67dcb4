#include "queries/queries.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"

namespace umlmm::queries {

namespace {

bool isReturn(Reading aParameter) noexcept {
  return aParameter.literal(ids::Parameter::Direction) == ParameterDirectionKind::Return;
}

Reading associationOf(Reading aProperty) noexcept { return aProperty.reference(ids::Property::Association); }

}  // namespace

bool isOwnedByAssociation(Reading aProperty) noexcept {
  return aProperty.owner() && aProperty.containment() == ids::Association::OwnedEnd;
}

bool isAttribute(Reading aProperty) noexcept {
  if (!aProperty.owner()) return false;
  auto const& containment = engine::feature(aProperty.containment());
  return containment.fGivesFeaturingClassifier && !isOwnedByAssociation(aProperty);
}

bool isNavigable(Reading aProperty) {
  if (isAttribute(aProperty)) return true;
  Reading const association = associationOf(aProperty);
  return association && association.holds(ids::Association::NavigableOwnedEnd, *aProperty);
}

Reading opposite(Reading aProperty) {
  Reading const association = associationOf(aProperty);
  if (!association || isOwnedByAssociation(aProperty)) return aProperty.none();
  Reading other = aProperty.none();
  for (Reading const end : association.list(ids::Association::MemberEnd)) {
    if (end == aProperty) continue;
    if (other) return aProperty.none();
    other = end;
  }
  return other && isOwnedByAssociation(other) ? aProperty.none() : other;
}

Elements subsettingContext(Reading aProperty) {
  if (Reading const association = associationOf(aProperty)) {
    Elements types;
    Visited seen;
    for (Reading const end : association.list(ids::Association::MemberEnd)) {
      Reading const type = end.reference(ids::TypedElement::Type);
      if (end != aProperty && type && seen.insert(*type)) types.push_back(type.element());
    }
    return types;
  }
  return isAttribute(aProperty) ? Elements{aProperty.owner().element()} : Elements();
}

Reading returnParameter(Reading aOwner, engine::FeatureIndex aParameters) {
  for (Reading const parameter : aOwner.list(aParameters))
    if (isReturn(parameter)) return parameter;
  return aOwner.none();
}

Elements returnResult(Reading aOperation) {
  Elements results;
  for (Reading const parameter : aOperation.list(ids::BehavioralFeature::OwnedParameter))
    if (isReturn(parameter)) results.push_back(parameter.element());
  return results;
}

Elements allConnections(Reading aAssociationClass) {
  Elements connections;
  Visited taken;
  Visited seen;
  // Only association classes ask their parents in turn; nearest first, as in a walk of its own for each.
  Elements open{aAssociationClass.element()};
  while (!open.empty()) {
    Reading const next = aAssociationClass.on(*open.back());
    open.pop_back();
    if (!next.isA(ids::metaclass::Association) || !seen.insert(*next)) continue;
    for (Reading const end : next.list(ids::Association::MemberEnd))
      if (taken.insert(*end)) connections.push_back(end.element());
    if (!next.isA(ids::metaclass::AssociationClass)) continue;
    Elements const above = parents(next);
    open.insert(open.end(), above.rbegin(), above.rend());
  }
  return connections;
}

Reading metaclassEnd(Reading aExtension) {
  for (Reading const end : aExtension.list(ids::Association::MemberEnd))
    if (end.owner() != aExtension || !isOwnedByAssociation(end)) return end;
  return aExtension.none();
}

Reading linkedAssociation(Reading aLinkAction) {
  for (Reading const data : aLinkAction.list(ids::LinkAction::EndData)) {
    Reading const end = data.reference(ids::LinkEndData::End);
    return end ? associationOf(end) : end;
  }
  return aLinkAction.none();
}

}  // namespace umlmm::queries
