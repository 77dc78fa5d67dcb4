#include "derivations/derivations.h"
#include "engine/Referrers.h"
#include "queries/queries.h"

namespace umlmm::derivations {

namespace {

Reading typeOf(Reading aTyped) noexcept { return aTyped.reference(ids::TypedElement::Type); }

Reading metaclassOf(Reading aExtension) {
  Reading const end = queries::metaclassEnd(aExtension);
  Reading const type = end ? typeOf(end) : end;
  return type && type.isA(ids::metaclass::Class) ? type : aExtension.none();
}

bool isRequired(Reading aExtension) noexcept {
  for (Reading const end : aExtension.list(ids::Association::OwnedEnd)) return queries::lowerBound(end) == 1;
  return false;
}

}  // namespace

engine::Derivation const Association::EndType{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      queries::Visited seen;
      for (Reading const end : aElement.list(ids::Association::MemberEnd))
        if (Reading const type = typeOf(end); type && seen.insert(*type)) aOut.push_back(type.element());
    }};

engine::Derivation const Extension::Metaclass{
    .fValue = [](Reading aElement) { return metaclassOf(aElement).object(); }};

engine::Derivation const Extension::IsRequired{.fValue = [](Reading aElement) {
  return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, isRequired(aElement) ? 1 : 0);
}};

engine::Derivation const Class::Extension{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      // Extensions have ends that the class types.
      queries::Visited seen;
      for (engine::Reference const& reference : aElement.referrers()) {
        Reading const end = aElement.on(*reference.fOwner);
        if (reference.fFeature != ids::TypedElement::Type || !end.isA(ids::metaclass::Property)) continue;
        Reading const association = end.reference(ids::Property::Association);
        if (association && association.isA(ids::metaclass::Extension) &&
            metaclassOf(association) == aElement && seen.insert(*association))
          aOut.push_back(association.element());
      }
    }};

}  // namespace umlmm::derivations
