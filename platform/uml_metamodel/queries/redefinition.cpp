#include <algorithm>

#include "queries/queries.h"
#include "uml_metamodel/umlmm/AggregationKind.h"

namespace umlmm::queries {

namespace {

/// Whether the type of one element conforms to that of another; two absent types do.
bool typeConforms(Reading aSpecial, Reading aGeneral) {
  Reading const special = aSpecial.reference(ids::TypedElement::Type);
  Reading const general = aGeneral.reference(ids::TypedElement::Type);
  if (!special || !general) return special == general;
  return conformsTo(special, general);
}

bool isOperationConsistent(Reading aOperation, Reading aRedefinee) {
  Elements const own = aOperation.values(ids::BehavioralFeature::OwnedParameter);
  Elements const others = aRedefinee.values(ids::BehavioralFeature::OwnedParameter);
  return std::equal(others.begin(), others.end(), own.begin(), own.end(),
                    [&](Element* aOther, Element* aOwn) {
                      return typeConforms(aRedefinee.on(*aOther), aOperation.on(*aOwn));
                    });
}

bool isComposite(Reading aProperty) noexcept {
  return aProperty.literal(ids::Property::Aggregation) == AggregationKind::Composite;
}

bool isPropertyConsistent(Reading aProperty, Reading aRedefinee) {
  bool const keepsDerived =
      !aProperty.flag(ids::Property::IsDerived) || aRedefinee.flag(ids::Property::IsDerived);
  bool const keepsComposite = !isComposite(aProperty) || isComposite(aRedefinee);
  return keepsDerived && keepsComposite && includesMultiplicity(aProperty, aRedefinee) &&
         typeConforms(aRedefinee, aProperty);
}

}  // namespace

bool isRedefinitionContextValid(Reading aElement, Reading aRedefined) {
  if (!aRedefined) return false;
  auto const contexts = ids::RedefinableElement::RedefinitionContext;
  Elements const general = aRedefined.values(contexts);
  for (Element* const special : aElement.values(contexts))
    for (Element* const context : general)
      if (hasAncestor(aElement.on(*special), aRedefined.on(*context))) return true;
  return false;
}

bool isConsistentWith(Reading aElement, Reading aRedefinee) {
  for (int const metaclass : {ids::metaclass::Operation, ids::metaclass::Property}) {
    if (!aElement.isA(metaclass)) continue;
    if (!aRedefinee || !aRedefinee.isA(metaclass)) return false;
    if (!isRedefinitionContextValid(aRedefinee, aElement)) return false;
    return metaclass == ids::metaclass::Operation ? isOperationConsistent(aElement, aRedefinee)
                                                  : isPropertyConsistent(aElement, aRedefinee);
  }
  return false;
}

}  // namespace umlmm::queries
