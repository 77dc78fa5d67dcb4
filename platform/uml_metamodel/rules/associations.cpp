#include "engine/Referrers.h"
#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

using engine::Element;

Element* typeOf(Element const& aTyped) noexcept { return values::reference(aTyped, ids::TypedElement::Type); }

Element* metaclassOf(Element const& aExtension) {
  Element const* const end = queries::metaclassEnd(aExtension);
  Element* const type = end == nullptr ? nullptr : typeOf(*end);
  return type != nullptr && queries::isA(*type, ids::metaclass::Class) ? type : nullptr;
}

bool isRequired(Element const& aExtension) noexcept {
  for (Element* const end : values::elements(aExtension, ids::Association::OwnedEnd))
    return queries::lowerBound(*end) == 1;
  return false;
}

}  // namespace

engine::Rule const Association::EndType{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      queries::Visited seen;
      for (engine::Element* const end : values::elements(aElement, ids::Association::MemberEnd))
        if (engine::Element* const type = typeOf(*end); type != nullptr && seen.insert(*type))
          aOut.push_back(type);
    }};

engine::Rule const Extension::Metaclass{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(metaclassOf(aElement), aDeviant);
    }};

engine::Rule const Extension::IsRequired{.fValue = [](engine::Element const& aElement, Kelm::Deviant const&) {
  return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, isRequired(aElement) ? 1 : 0);
}};

engine::Rule const Class::Extension{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      // Extensions have ends that the class types.
      queries::Visited seen;
      for (engine::Reference const& reference : engine::Referrers::of(aElement)) {
        if (reference.fFeature != ids::TypedElement::Type ||
            !queries::isA(*reference.fOwner, ids::metaclass::Property))
          continue;
        engine::Element* const association = values::reference(*reference.fOwner, ids::Property::Association);
        if (association != nullptr && queries::isA(*association, ids::metaclass::Extension) &&
            metaclassOf(*association) == &aElement && seen.insert(*association))
          aOut.push_back(association);
      }
    }};

}  // namespace umlmm::rules
