#include "derivations/derivations.h"
#include "engine/FeatureSequence.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/links.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/AggregationKind.h"

namespace umlmm::derivations {

namespace {

constexpr char kSource[] = "uml_metamodel/derivations/properties";

using Kelm::Object;

bool isComposite(Reading aProperty) noexcept {
  return aProperty.literal(ids::Property::Aggregation) == AggregationKind::Composite;
}

void setComposite(Reading aProperty, Object const& aValue) {
  if (!aValue.isNull() && !Kelm::isPrimitive(aValue, Kelm::PrimitiveKind::Boolean))
    engine::failures::raiseNotAValue(kSource, engine::feature(ids::Property::IsComposite));
  bool const wanted = !aValue.isNull() && aValue.getDeviant().value() != 0;
  if (wanted == isComposite(aProperty)) return;
  engine::write(*aProperty, aProperty.deviant(), engine::feature(ids::Property::Aggregation),
                AggregationKind(wanted ? AggregationKind::Composite : AggregationKind::None));
}

engine::Feature const& memberEnds() noexcept { return engine::feature(ids::Association::MemberEnd); }

Reading associationOf(Reading aProperty) noexcept { return aProperty.reference(ids::Property::Association); }

/// In the nearest package around one of the two, or at the top of the model.
Reading makeAssociation(Reading aProperty, Reading aOther) {
  Reading package = queries::nearestOwner(aProperty, ids::metaclass::Package);
  if (!package) package = queries::nearestOwner(aOther, ids::metaclass::Package);
  engine::Element& association = engine::Change::create(ids::metaclass::Association, aProperty.model());
  if (package) engine::link(*package, engine::feature(ids::Package::PackagedElement), association);
  return aProperty.on(association);
}

void checkOpposite(Reading aProperty, Reading aOther) {
  if (aProperty == aOther) engine::failures::raise(kSource, "A property cannot be its own opposite");
  if (queries::isOwnedByAssociation(aProperty) || queries::isOwnedByAssociation(aOther))
    engine::failures::raise(
        kSource,
        "Property.opposite joins ends that classifiers own; an end that its association owns cannot be set "
        "or be "
        "the value");
}

void setOpposite(Reading aProperty, Object const& aValue) {
  Reading const other = aProperty.on(aValue.isNull() ? nullptr : engine::elementOf(aValue));
  Reading const old = queries::opposite(aProperty);
  if (!other) {
    if (old) engine::unlink(*associationOf(aProperty), memberEnds(), *old);
    return;
  }
  checkOpposite(aProperty, other);
  if (other == old) return;
  Reading association = associationOf(aProperty);
  if (!association) association = associationOf(other);
  if (!association) association = makeAssociation(aProperty, other);
  for (engine::Element* const end : association.values(ids::Association::MemberEnd))
    if (end != aProperty.element() && end != other.element())
      engine::unlink(*association, memberEnds(), *end);
  engine::link(*association, memberEnds(), *aProperty);
  engine::link(*association, memberEnds(), *other);
}

}  // namespace

engine::Derivation const Property::IsComposite{
    .fValue =
        [](Reading aElement) {
          return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, isComposite(aElement) ? 1 : 0);
        },
    .fSet = setComposite};

engine::Derivation const Property::Opposite{
    .fValue = [](Reading aElement) { return queries::opposite(aElement).object(); }, .fSet = setOpposite};

}  // namespace umlmm::derivations
