#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/Association.h"
#include "uml_metamodel/umlmm/AssociationClass.h"
#include "uml_metamodel/umlmm/Extension.h"
#include "uml_metamodel/umlmm/LinkAction.h"
#include "uml_metamodel/umlmm/Operation.h"
#include "uml_metamodel/umlmm/Parameter.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"
#include "uml_metamodel/umlmm/Property.h"
#include "uml_metamodel/umlmm/Type.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/associations";

}  // namespace

namespace queries {

namespace {

bool isReturn(Element const& aParameter) noexcept {
  return values::literal(aParameter, ids::Parameter::Direction) == ParameterDirectionKind::Return;
}

Element* associationOf(Element const& aProperty) noexcept {
  return values::reference(aProperty, ids::Property::Association);
}

}  // namespace

bool isOwnedByAssociation(Element const& aProperty) noexcept {
  return aProperty.container() != nullptr && aProperty.containerFeature() == ids::Association::OwnedEnd;
}

bool isAttribute(Element const& aProperty) noexcept {
  if (aProperty.container() == nullptr) return false;
  auto const& containment = engine::feature(aProperty.containerFeature());
  return containment.fGivesFeaturingClassifier && !isOwnedByAssociation(aProperty);
}

bool isNavigable(Element const& aProperty) {
  if (isAttribute(aProperty)) return true;
  Element const* const association = associationOf(aProperty);
  return association != nullptr &&
         engine::holds(*association, engine::feature(ids::Association::NavigableOwnedEnd), aProperty);
}

Element* opposite(Element const& aProperty) {
  Element const* const association = associationOf(aProperty);
  if (association == nullptr || isOwnedByAssociation(aProperty)) return nullptr;
  Element* other = nullptr;
  for (Element* const end : values::elements(*association, ids::Association::MemberEnd)) {
    if (end == &aProperty) continue;
    if (other != nullptr) return nullptr;
    other = end;
  }
  return other == nullptr || isOwnedByAssociation(*other) ? nullptr : other;
}

Elements subsettingContext(Element const& aProperty) {
  if (Element const* const association = associationOf(aProperty)) {
    Elements types;
    Visited seen;
    for (Element* const end : values::elements(*association, ids::Association::MemberEnd)) {
      Element* const type = values::reference(*end, ids::TypedElement::Type);
      if (end != &aProperty && type != nullptr && seen.insert(*type)) types.push_back(type);
    }
    return types;
  }
  return isAttribute(aProperty) ? Elements{aProperty.container()} : Elements();
}

Element* returnParameter(Element const& aOwner, engine::FeatureIndex aParameters) {
  for (Element* const parameter : values::elements(aOwner, aParameters))
    if (isReturn(*parameter)) return parameter;
  return nullptr;
}

Elements returnResult(Element const& aOperation) {
  Elements results;
  for (Element* const parameter : values::elements(aOperation, ids::BehavioralFeature::OwnedParameter))
    if (isReturn(*parameter)) results.push_back(parameter);
  return results;
}

Elements allConnections(Element const& aAssociationClass) {
  Elements connections;
  Visited taken;
  Visited seen;
  // Only association classes ask their parents in turn; nearest first, as in a walk of its own for each.
  Elements open{const_cast<Element*>(&aAssociationClass)};
  while (!open.empty()) {
    Element const& next = *open.back();
    open.pop_back();
    if (!isA(next, ids::metaclass::Association) || !seen.insert(next)) continue;
    for (Element* const end : values::elements(next, ids::Association::MemberEnd))
      if (taken.insert(*end)) connections.push_back(end);
    if (!isA(next, ids::metaclass::AssociationClass)) continue;
    Elements const above = parents(next);
    open.insert(open.end(), above.rbegin(), above.rend());
  }
  return connections;
}

Element* metaclassEnd(Element const& aExtension) {
  for (Element* const end : values::elements(aExtension, ids::Association::MemberEnd))
    if (end->container() != &aExtension || !isOwnedByAssociation(*end)) return end;
  return nullptr;
}

Element* linkedAssociation(Element const& aLinkAction) {
  for (Element* const data : values::elements(aLinkAction, ids::LinkAction::EndData)) {
    Element const* const end = values::reference(*data, ids::LinkEndData::End);
    return end == nullptr ? nullptr : associationOf(*end);
  }
  return nullptr;
}

}  // namespace queries

namespace NSInterface {

using queries::makeResult;

Kelm::ImmutableSequence<ImmutableProperty> AssociationClassIntf::allConnections(
    Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableProperty>(aDeviant, queries::allConnections(*this));
}

ImmutableProperty ExtensionIntf::metaclassEnd(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeReference<ImmutableProperty>(aDeviant, queries::metaclassEnd(*this));
}

ImmutableAssociation LinkActionIntf::association(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeReference<ImmutableAssociation>(aDeviant, queries::linkedAssociation(*this));
}

Kelm::ImmutableSequence<ImmutableParameter> OperationIntf::returnResult(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableParameter>(aDeviant, queries::returnResult(*this));
}

Kelm::ImmutableSequence<ImmutableType> PropertyIntf::subsettingContext(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableType>(aDeviant, queries::subsettingContext(*this));
}

Boolean PropertyIntf::isNavigable(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::isNavigable(*this);
}

}  // namespace NSInterface

}  // namespace umlmm
