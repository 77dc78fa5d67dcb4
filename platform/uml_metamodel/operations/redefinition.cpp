#include <algorithm>

#include "engine/computed.h"
#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/AggregationKind.h"
#include "uml_metamodel/umlmm/Operation.h"
#include "uml_metamodel/umlmm/Parameter.h"
#include "uml_metamodel/umlmm/Property.h"
#include "uml_metamodel/umlmm/RedefinableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/redefinition";

}  // namespace

namespace queries {

namespace {

/// Whether the type of one element conforms to that of another; two absent types do.
bool typeConforms(Element const& aSpecial, Element const& aGeneral) {
  Element const* const special = values::reference(aSpecial, ids::TypedElement::Type);
  Element const* const general = values::reference(aGeneral, ids::TypedElement::Type);
  if (special == nullptr || general == nullptr) return special == general;
  return conformsTo(*special, general);
}

bool isOperationConsistent(Element const& aOperation, Element const& aRedefinee) {
  auto const& parameters = engine::feature(ids::BehavioralFeature::OwnedParameter);
  Elements const own = engine::valuesOf(aOperation, parameters);
  Elements const others = engine::valuesOf(aRedefinee, parameters);
  return std::equal(others.begin(), others.end(), own.begin(), own.end(),
                    [](Element* aOther, Element* aOwn) { return typeConforms(*aOther, *aOwn); });
}

bool isComposite(Element const& aProperty) noexcept {
  return values::literal(aProperty, ids::Property::Aggregation) == AggregationKind::Composite;
}

bool isPropertyConsistent(Element const& aProperty, Element const& aRedefinee) {
  bool const keepsDerived = !values::flag(aProperty, ids::Property::IsDerived) ||
                            values::flag(aRedefinee, ids::Property::IsDerived);
  bool const keepsComposite = !isComposite(aProperty) || isComposite(aRedefinee);
  return keepsDerived && keepsComposite && includesMultiplicity(aProperty, &aRedefinee) &&
         typeConforms(aRedefinee, aProperty);
}

}  // namespace

bool isRedefinitionContextValid(Element const& aElement, Element const* aRedefined) {
  if (aRedefined == nullptr) return false;
  auto const& contexts = engine::feature(ids::RedefinableElement::RedefinitionContext);
  Elements const general = engine::valuesOf(*aRedefined, contexts);
  for (Element* const special : engine::valuesOf(aElement, contexts))
    for (Element* const context : general)
      if (hasAncestor(*special, *context)) return true;
  return false;
}

bool isConsistentWith(Element const& aElement, Element const* aRedefinee) {
  for (int const metaclass : {ids::metaclass::Operation, ids::metaclass::Property}) {
    if (!isA(aElement, metaclass)) continue;
    if (aRedefinee == nullptr || !isA(*aRedefinee, metaclass)) return false;
    if (!isRedefinitionContextValid(*aRedefinee, &aElement)) return false;
    return metaclass == ids::metaclass::Operation ? isOperationConsistent(aElement, *aRedefinee)
                                                  : isPropertyConsistent(aElement, *aRedefinee);
  }
  return false;
}

}  // namespace queries

namespace NSInterface {

using queries::given;

Boolean RedefinableElementIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                                 ImmutableRedefinableElement const& aRedefinee) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::isConsistentWith(*this, given(aRedefinee));
}

Boolean OperationIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                        ImmutableRedefinableElement const& aRedefinee) const {
  return RedefinableElementIntf::isConsistentWith(aDeviant, aRedefinee);
}

Boolean PropertyIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                       ImmutableRedefinableElement const& aRedefinee) const {
  return RedefinableElementIntf::isConsistentWith(aDeviant, aRedefinee);
}

Boolean RedefinableElementIntf::isRedefinitionContextValid(
    Kelm::Deviant const& aDeviant, ImmutableRedefinableElement const& aRedefined) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::isRedefinitionContextValid(*this, given(aRedefined));
}

}  // namespace NSInterface

}  // namespace umlmm
