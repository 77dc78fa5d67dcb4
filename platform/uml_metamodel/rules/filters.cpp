#include "engine/links.h"
#include "operations/queries.h"
#include "rules/rules.h"
#include "uml_metamodel/umlmm/AggregationKind.h"

/// Views of a containment that show what is of one metaclass. They are written through to it.
namespace umlmm::rules {

namespace {

template <engine::FeatureIndex Base, engine::FeatureIndex View>
struct Filter {
  static void read(Reading aElement, std::vector<engine::Element*>& aOut) {
    for (Reading const part : aElement.list(Base))
      if (part.isA(engine::feature(View).fType)) aOut.push_back(part.element());
  }
  static void insert(Reading aElement, engine::Element& aValue, engine::Element* aBefore) {
    std::uint32_t position = engine::kAtEnd;
    if (aBefore != nullptr) position = aElement.positionOf(Base, *aBefore);
    engine::link(*aElement, engine::feature(Base), aValue, position);
  }
  static void erase(Reading aElement, engine::Element& aValue) {
    engine::unlink(*aElement, engine::feature(Base), aValue);
  }

  static void arrange(Reading aElement, std::vector<engine::Element*> const& aOrder) {
    engine::arrangeValues(*aElement, engine::feature(Base), aOrder);
  }

  static constexpr engine::Rule kRule{
      .fValues = read, .fInsert = insert, .fErase = erase, .fArrange = arrange};
};

}  // namespace

engine::Rule const Package::OwnedType = Filter<ids::Package::PackagedElement, ids::Package::OwnedType>::kRule;
engine::Rule const Package::NestedPackage =
    Filter<ids::Package::PackagedElement, ids::Package::NestedPackage>::kRule;
engine::Rule const Profile::OwnedStereotype =
    Filter<ids::Package::PackagedElement, ids::Profile::OwnedStereotype>::kRule;
engine::Rule const EncapsulatedClassifier::OwnedPort =
    Filter<ids::StructuredClassifier::OwnedAttribute, ids::EncapsulatedClassifier::OwnedPort>::kRule;

engine::Rule const StructuredClassifier::Part{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      for (Reading const attribute : aElement.list(ids::StructuredClassifier::OwnedAttribute))
        if (attribute.literal(ids::Property::Aggregation) == AggregationKind::Composite)
          aOut.push_back(attribute.element());
    }};

}  // namespace umlmm::rules
