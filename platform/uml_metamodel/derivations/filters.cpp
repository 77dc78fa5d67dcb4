#include "derivations/derivations.h"
#include "engine/links.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/AggregationKind.h"

/// Views of a containment that show what is of one metaclass. They are written through to it.
namespace umlmm::derivations {

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

  static constexpr engine::Derivation kDerivation{
      .fValues = read, .fInsert = insert, .fErase = erase, .fArrange = arrange};
};

}  // namespace

engine::Derivation const Package::OwnedType =
    Filter<ids::Package::PackagedElement, ids::Package::OwnedType>::kDerivation;
engine::Derivation const Package::NestedPackage =
    Filter<ids::Package::PackagedElement, ids::Package::NestedPackage>::kDerivation;
engine::Derivation const Profile::OwnedStereotype =
    Filter<ids::Package::PackagedElement, ids::Profile::OwnedStereotype>::kDerivation;
engine::Derivation const EncapsulatedClassifier::OwnedPort =
    Filter<ids::StructuredClassifier::OwnedAttribute, ids::EncapsulatedClassifier::OwnedPort>::kDerivation;

engine::Derivation const StructuredClassifier::Part{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      for (Reading const attribute : aElement.list(ids::StructuredClassifier::OwnedAttribute))
        if (attribute.literal(ids::Property::Aggregation) == AggregationKind::Composite)
          aOut.push_back(attribute.element());
    }};

}  // namespace umlmm::derivations
