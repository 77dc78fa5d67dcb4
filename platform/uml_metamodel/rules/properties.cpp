#include "engine/FeatureSequence.h"
#include "engine/access.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/links.h"
#include "operations/queries.h"
#include "rules/rules.h"
#include "uml_metamodel/umlmm/AggregationKind.h"

namespace umlmm::rules {

namespace {

constexpr char kSource[] = "uml_metamodel/rules/properties";

using engine::Element;
using Kelm::Deviant;
using Kelm::Object;

bool isComposite(Element const& aProperty) noexcept {
  return values::literal(aProperty, ids::Property::Aggregation) == AggregationKind::Composite;
}

void setComposite(Element& aProperty, Deviant const& aDeviant, Object const& aValue) {
  if (!aValue.isNull() && !Kelm::isPrimitive(aValue, Kelm::PrimitiveKind::Boolean))
    engine::failures::raiseNotAValue(kSource, engine::feature(ids::Property::IsComposite));
  bool const wanted = !aValue.isNull() && aValue.getDeviant().value() != 0;
  if (wanted == isComposite(aProperty)) return;
  engine::write(aProperty, aDeviant, engine::feature(ids::Property::Aggregation),
                AggregationKind(wanted ? AggregationKind::Composite : AggregationKind::None));
}

engine::Feature const& memberEnds() noexcept { return engine::feature(ids::Association::MemberEnd); }

Element* associationOf(Element const& aProperty) noexcept {
  return values::reference(aProperty, ids::Property::Association);
}

/// In the nearest package around one of the two, or at the top of the model.
Element& makeAssociation(Element& aProperty, Element& aOther) {
  Element* package = queries::nearestOwner(aProperty, ids::metaclass::Package);
  if (package == nullptr) package = queries::nearestOwner(aOther, ids::metaclass::Package);
  Element& association = engine::Change::create(ids::metaclass::Association, *aProperty.model());
  if (package != nullptr) engine::link(*package, engine::feature(ids::Package::PackagedElement), association);
  return association;
}

void checkOpposite(Element const& aProperty, Element const& aOther) {
  if (&aProperty == &aOther) engine::failures::raise(kSource, "A property cannot be its own opposite");
  if (queries::isOwnedByAssociation(aProperty) || queries::isOwnedByAssociation(aOther))
    engine::failures::raise(
        kSource,
        "Property.opposite joins ends that classifiers own; an end that its association owns cannot be set "
        "or be "
        "the value");
}

void setOpposite(Element& aProperty, Deviant const&, Object const& aValue) {
  Element* const other = aValue.isNull() ? nullptr : engine::elementOf(aValue);
  Element* const old = queries::opposite(aProperty);
  if (other == nullptr) {
    if (old != nullptr) engine::unlink(*associationOf(aProperty), memberEnds(), *old);
    return;
  }
  checkOpposite(aProperty, *other);
  if (other == old) return;
  Element* association = associationOf(aProperty);
  if (association == nullptr) association = associationOf(*other);
  if (association == nullptr) association = &makeAssociation(aProperty, *other);
  for (Element* const end : engine::valuesOf(*association, memberEnds()))
    if (end != &aProperty && end != other) engine::unlink(*association, memberEnds(), *end);
  engine::link(*association, memberEnds(), aProperty);
  engine::link(*association, memberEnds(), *other);
}

}  // namespace

engine::Rule const Property::IsComposite{.fValue =
                                             [](engine::Element const& aElement, Deviant const&) {
                                               return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean,
                                                                          isComposite(aElement) ? 1 : 0);
                                             },
                                         .fSet = setComposite};

engine::Rule const Property::Opposite{
    .fValue = [](engine::Element const& aElement,
                 Deviant const& aDeviant) { return Object(queries::opposite(aElement), aDeviant); },
    .fSet = setOpposite};

}  // namespace umlmm::rules
