#include "kelm_mi/KelmmiProperty.h"

#include "frame/ScriptClass.h"
#include "kelm/Asserter.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/failureWords.h"

namespace Kelm::mi {

namespace {

constexpr char kSource[] = "kelm_mi/marshal/KelmmiProperty";

std::uint32_t flagsOf(Multiplicity aMultiplicity, Mutability aMutability) {
  return (aMultiplicity == MultiplicityMany ? KelmmiProperty::multiValued : 0u) |
         (aMutability == MutabilityReadOnly ? KelmmiProperty::readOnly : 0u) |
         (aMultiplicity == MultiplicitySingle ? KelmmiProperty::required : 0u);
}

/// "Property [0..*], composite, ordered; opposite Property.class"
std::string summaryOf(NSInterface::PropertyIntf const& aProperty) {
  int const upper = aProperty.getUpper();
  std::string text(aProperty.getType().getName());
  text += " [" + std::to_string(aProperty.getLower()) + "..";
  text += (upper == NSInterface::PropertyIntf::kUnlimited ? "*" : std::to_string(upper)) + "]";
  if (!aProperty.getDefault().empty()) text.append(" = ").append(aProperty.getDefault());
  if (aProperty.isComposite()) text += ", composite";
  if (aProperty.isMultivalued() && aProperty.isOrdered()) text += ", ordered";
  if (aProperty.isDerived()) text += ", derived";
  if (aProperty.isReadOnly()) text += ", read-only";
  if (auto const* const far = aProperty.getOpposite())
    text.append("; opposite ").append(far->getOwner().getName()).append(".").append(far->getName());
  return text;
}

/// The element behind an instance in its variant; raises the null-reference failure at `aSource` if the
/// instance stands for none. The instance, which holds a count, outlives the answer.
Borrowed<ClassObject> elementOf(vesk::VeskInterface* aInstance, char const* aSource) {
  void* const instanceId = aInstance->getNativeObject(ScriptClass<ClassObject>::name());
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(instanceId);
  auto* const element = queryInterface<NSInterface::ClassObjectIntf>(object);
  if (element == nullptr) [[unlikely]]
    raiseNullReference(aSource);
  return {element, deviant};
}

}  // namespace

KelmmiProperty::KelmmiProperty(char const*, char const* aName, IntrospectiveMethods const* aMethods,
                               unsigned aId, char const* aDataType, Multiplicity aMultiplicity,
                               Mutability aMutability, vesk::factory::PropertyAttributes aAttributes)
    : VeskPropInfo(aName, "", aAttributes),
      methods(aMethods),
      id(aId),
      dataType(aDataType),
      flags(flagsOf(aMultiplicity, aMutability)),
      fDataTypeName(vesk::internal::intern(aDataType)) {}

KelmmiProperty::~KelmmiProperty() = default;

vesk::Details KelmmiProperty::details() const {
  Multiplicity const multiplicity = has(multiValued) ? MultiplicityMany
                                    : has(required)  ? MultiplicitySingle
                                                     : MultiplicityOptional;
  Mutability const mutability = has(readOnly) ? MutabilityReadOnly : MutabilityChangeable;
  return {{"summary", summaryOf(*methods->metaPropertyTable[id].fProperty)},
          {"id", std::int64_t{id}},
          {"multiplicity", std::int64_t{multiplicity}},
          {"mutability", std::int64_t{mutability}}};
}

vesk::VeskValue KelmmiProperty::getValue(vesk::VeskInterface* aInstance) {
  Borrowed<ClassObject> object = elementOf(aInstance, kSource);
  return has(multiValued) ? getMultiValuedValue(*object, aInstance) : getSingleValuedValue(*object);
}

vesk::VeskValue KelmmiProperty::getSingleValuedValue(ClassObject&) {
  raiseFailure(words::kInternalError, kSource);
}

vesk::VeskValue KelmmiProperty::getMultiValuedValue(ClassObject&, vesk::VeskInterface*) {
  raiseFailure(words::kInternalError, kSource);
}

void KelmmiProperty::throwSetProhibitedException() { throw Exception(words::kImmutableObject); }

Borrowed<ClassObject> KelmmiProperty::openForSet(vesk::VeskInterface* aInstance,
                                                 vesk::VeskInterned aValueType, char const* aSource) const {
  if (has(multiValued)) [[unlikely]]
    raiseFailure(words::kMultiValuedSet, aSource);
  return openForReplace(aInstance, aValueType, aSource);
}

Borrowed<ClassObject> KelmmiProperty::openForReplace(vesk::VeskInterface* aInstance,
                                                     vesk::VeskInterned aValueType,
                                                     char const* aSource) const {
  if (has(readOnly)) [[unlikely]]
    raiseFailure(words::kReadOnlySet, aSource);
  if (DeviantRegistry::isImmutable(aInstance->getNativeObject(aValueType))) [[unlikely]]
    throwSetProhibitedException();
  return elementOf(aInstance, aSource);
}

}  // namespace Kelm::mi
