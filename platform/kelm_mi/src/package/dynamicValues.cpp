#include "dynamicValues.h"

#include <algorithm>
#include <source_location>

#include "kelm/Generic.h"
#include "kelm/values.h"
#include "names.h"
#include "uml_metamodel_mi/frame/Boxing.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

namespace {

using NSInterface::PropertyIntf;
using vesk::VeskInterned;
using vesk::VeskValue;

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

/// "umlmm::Class" is "umlmm.Class" in scripts.
std::string scriptName(NSInterface::TypeIntf const& aType) {
  std::string name(aType.getQualifiedName());
  if (auto const at = name.find("::"); at != std::string::npos) name.replace(at, 2, ".");
  return name;
}

/// The read-only class that shows all values of a many-valued property.
VeskInterned sequenceClass(PropertyIntf const& aProperty) {
  NSInterface::TypeIntf const& type = aProperty.getType();
  bool const ofElements = queryInterface<NSInterface::ClassIntf>(&type) != nullptr;
  return vesk::internal::intern(std::string_view(sequenceClassName({true, ofElements}, scriptName(type))));
}

VeskValue none() {
  return vesk::factory::basic::BindingRegistry::announce(static_cast<void*>(nullptr),
                                                         ScriptClass<ImmutableObject>::name());
}

bool isPlainValue(Object const& aValue) {
  return aValue.getDeviant().isValue() || asString(aValue) != nullptr;
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

VeskValue readProperty(ImmutableClassObject const& aElement, PropertyIntf const& aProperty) {
  checkHasProperty(aElement, aProperty);
  IntrospectiveMethods const& methods = aProperty.accessors();
  Deviant const deviant = aElement.getDeviant();
  if (aProperty.isMultivalued()) {
    return announceObject(methods.getSequenceEntry(aElement.get(), deviant, aProperty.getId()), deviant, true,
                          sequenceClass(aProperty));
  }
  Object const value = methods.getEntry(aElement.get(), deviant, aProperty.getId());
  if (value.isNull()) return none();
  if (isPlainValue(value)) kelm::Error_IncorrectType("Object");
  // Literals are bound as their properties bind them.
  return ReferenceBoxer::box(value, asLiteral(value) == nullptr, ScriptClass<ImmutableObject>::name());
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
