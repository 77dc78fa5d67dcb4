#include "dynamicValues.h"

#include <algorithm>
#include <source_location>

#include "kelm/values.h"
#include "vesk/host/Attributes.h"

namespace Kelm::mi {

namespace {

using NSInterface::PropertyIntf;

constexpr char kSource[] = "kelm/Kelm/ClassObject_h";

char lowered(char aLetter) {
  return aLetter >= 'A' && aLetter <= 'Z' ? static_cast<char>(aLetter - 'A' + 'a') : aLetter;
}

bool isSpelling(std::string_view aText, std::string_view aName) {
  return aText.size() == aName.size() && !aText.empty() && lowered(aText[0]) == lowered(aName[0]) &&
         aText.substr(1) == aName.substr(1);
}

NSInterface::ClassObjectIntf const* required(ImmutableClassObject const& aElement) {
  if (aElement.isNull()) raiseNullReference(kSource);
  return aElement.get();
}

[[noreturn]] void raiseNoProperty(ImmutableClassObject const& aElement, std::string_view aName) {
  std::string_view const className = aElement.get()->getMetaClass().get()->getName();
  Asserter::MakeAlways<Exception>("The class '%.*s' has no property '%.*s'",
                                  static_cast<int>(className.size()), className.data(),
                                  static_cast<int>(aName.size()), aName.data())
      .handle(kSource, static_cast<int>(std::source_location::current().line()), "");
  __builtin_unreachable();
}

EnumerationLiteralObject const* asLiteral(Object const& aValue) {
  return dynamic_cast<EnumerationLiteralObject const*>(aValue.get());
}

}  // namespace

PropertyIntf const* findProperty(NSInterface::ClassIntf const& aClass, std::string_view aName) {
  auto const all = aClass.allProperties();
  auto const found = std::ranges::find_if(
      all, [aName](PropertyIntf const* aProperty) { return isSpelling(aName, aProperty->getName()); });
  return found == all.end() ? nullptr : *found;
}

PropertyIntf const& propertyOf(ImmutableClassObject const& aElement, String const& aName) {
  std::string const name = aName.to_string();
  PropertyIntf const* const property = findProperty(*required(aElement)->getMetaClass().get(), name);
  if (property == nullptr) raiseNoProperty(aElement, name);
  return *property;
}

void checkHasProperty(ImmutableClassObject const& aElement, PropertyIntf const& aProperty) {
  if (!required(aElement)->getMetaClass().get()->conformsTo(aProperty.getOwner()))
    raiseNoProperty(aElement, aProperty.getName());
}

AnyValue readProperty(ElementInstance const& aElement, PropertyIntf const& aProperty) {
  checkHasProperty(aElement.fElement, aProperty);
  return {vesk::host::readAttribute(*aElement.fInstance, vesk::internal::intern(aProperty.getName()))};
}

void writeProperty(ElementInstance const& aElement, PropertyIntf const& aProperty, AnyValue const& aValue) {
  checkHasProperty(aElement.fElement, aProperty);
  vesk::host::writeAttribute(*aElement.fInstance, vesk::internal::intern(aProperty.getName()), aValue.fValue);
}

UnboxedArgument<ElementInstance> ArgumentUnboxer<ElementInstance>::unbox(vesk::VeskValue aValue) {
  auto element = ArgumentUnboxer<ImmutableClassObject>::unbox(aValue);
  if (!element.fHasValue) return {};
  return {{omGetArrayElement(aValue.array(), 0), std::move(element.fValue)}, true};
}

String textOfProperty(ImmutableClassObject const& aElement, PropertyIntf const& aProperty) {
  checkHasProperty(aElement, aProperty);
  if (aProperty.isMultivalued()) kelm::Error_IncorrectType("String");
  Object const value =
      aProperty.accessors().getEntry(aElement.get(), aElement.getDeviant(), aProperty.getId());
  if (value.isNull()) return String();
  if (StringObject const* const text = asString(value)) return String(text);
  if (auto const* const literal = asLiteral(value))
    return String(toUtf16(literal->type().text(literal->number())));
  std::uint32_t const bits = value.getDeviant().value();
  if (isPrimitive(value, PrimitiveKind::Boolean)) return String(bits != 0 ? u"true" : u"false");
  if (isPrimitive(value, PrimitiveKind::Integer))
    return String(toUtf16(std::to_string(static_cast<std::int32_t>(bits))));
  if (isPrimitive(value, PrimitiveKind::UnlimitedNatural))
    return String(bits == UINT32_MAX ? u"*" : toUtf16(std::to_string(bits)));
  kelm::Error_IncorrectType("String");
}

bool isPropertySet(ImmutableClassObject const& aElement, PropertyIntf const& aProperty) {
  checkHasProperty(aElement, aProperty);
  return aProperty.accessors().isSetEntry(aElement.get(), aElement.getDeviant(), aProperty.getId());
}

void unsetProperty(ClassObject const& aElement, PropertyIntf const& aProperty) {
  checkHasProperty(aElement, aProperty);
  if (aProperty.isReadOnly()) raiseFailure(words::kReadOnlySet, kSource);
  IntrospectiveMethods const& methods = aProperty.accessors();
  if (aProperty.isMultivalued()) {
    methods.setSequenceEntry(aElement.get(), aElement.getDeviant(), aProperty.getId(), nullptr,
                             aElement.getDeviant());
  } else {
    methods.unsetEntry(aElement.get(), aElement.getDeviant(), aProperty.getId());
  }
}

}  // namespace Kelm::mi
