#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "KelmClass.h"
#include "commonMethods.h"
#include "dynamicValues.h"
#include "kelm/meta.h"
#include "snapshots.h"

namespace Kelm::mi {

namespace {

using NSInterface::ClassIntf;
using NSInterface::DataTypeIntf;
using NSInterface::PropertyIntf;
using NSInterface::TypeIntf;

template <class T>
auto const& required(T const& aReceiver) {
  if (aReceiver.isNull()) raiseNullReference("kelm/Kelm/Object_h");
  return *aReceiver.get();
}

template <class T, class Intf>
std::optional<T> optional(Intf const* aObject) {
  return aObject == nullptr ? std::nullopt : std::optional<T>(T(aObject, metaDeviant()));
}

/// Gives property readers and methods from the members of a meta interface.
template <class T, auto Member>
auto ask(T const& aReceiver) {
  return (required(aReceiver).*Member)();
}
template <class T, class Item, auto Member>
ImmutableSequence<Item> list(T const& aReceiver) {
  return snapshot<Item>((required(aReceiver).*Member)(), metaDeviant());
}

bool conformsTo(ImmutableType const& aType, ImmutableType const& aOther) {
  return required(aType).conformsTo(required(aOther));
}

std::optional<ImmutableProperty> property(ImmutableClass const& aClass, String const& aName) {
  return optional<ImmutableProperty>(findProperty(required(aClass), aName.to_string()));
}

ImmutableSequence<String> literals(ImmutableDataType const& aType) {
  std::vector<String> texts;
  for (std::string_view const literal : required(aType).literals()) texts.emplace_back(toUtf16(literal));
  auto const records = texts | std::views::transform([](String const& aText) { return aText.record(); });
  return snapshot<String>(records, Deviant());
}

int idOf(ImmutableProperty const& aProperty) { return static_cast<int>(required(aProperty).getId()); }
ImmutableType typeOf(ImmutableProperty const& aProperty) {
  return ImmutableType(&required(aProperty).getType(), metaDeviant());
}
std::string_view typeNameOf(ImmutableProperty const& aProperty) {
  return required(aProperty).getType().getName();
}
std::optional<ImmutableProperty> oppositeOf(ImmutableProperty const& aProperty) {
  return optional<ImmutableProperty>(required(aProperty).getOpposite());
}
ImmutableClass ownerOf(ImmutableProperty const& aProperty) {
  return ImmutableClass(&required(aProperty).getOwner(), metaDeviant());
}
AnyValue get(ImmutableProperty const& aProperty, ElementInstance const& aObject) {
  return readProperty(aObject, required(aProperty));
}
void set(ImmutableProperty const& aProperty, ElementInstance const& aObject, AnyValue const& aValue) {
  writeProperty(aObject, required(aProperty), aValue);
}
String getText(ImmutableProperty const& aProperty, ImmutableClassObject const& aObject) {
  return textOfProperty(aObject, required(aProperty));
}

std::optional<ImmutableType> find(ImmutablePackage const& aPackage, String const& aName) {
  std::string const name = aName.to_string();
  auto const isNamed = [&name](TypeIntf const* aType) { return aType->getName() == name; };
  auto const classes = required(aPackage).classes();
  if (auto const found = std::ranges::find_if(classes, isNamed); found != classes.end())
    return optional<ImmutableType>(*found);
  auto const dataTypes = required(aPackage).dataTypes();
  auto const found = std::ranges::find_if(dataTypes, isNamed);
  return found == dataTypes.end() ? std::nullopt : optional<ImmutableType>(*found);
}

constexpr char kType[] = "Kelm.ImmutableType";
constexpr char kClass[] = "Kelm.ImmutableClass";
constexpr char kDataType[] = "Kelm.ImmutableDataType";
constexpr char kProperty[] = "Kelm.ImmutableProperty";
constexpr char kPackage[] = "Kelm.ImmutablePackage";
constexpr char kText[] = "char vector";
constexpr char kLogical[] = "logical scalar";
constexpr char kInt32[] = "int32 scalar";
constexpr char kClasses[] = "Kelm.ImmutableSequenceOfImmutableClass";
constexpr char kDataTypes[] = "Kelm.ImmutableSequenceOfImmutableDataType";
constexpr char kProperties[] = "Kelm.ImmutableSequenceOfImmutableProperty";
constexpr char kElement[] = "Kelm.ImmutableClassObject";

constexpr MethodRow method(char const* aName, SignatureTexts aSignature, Bind aBind) {
  return {aName, 0, Form::MemberFunction, aSignature, aBind};
}

constexpr std::array kTypeMethods{
    staysReadOnlyRow<ImmutableType>(kType),
    method("conformsTo", {"other", kLogical, kType, {kType}}, &bindFunction<&conformsTo>),
};
constexpr std::array kTypeProperties{
    computed<&ask<ImmutableType, &TypeIntf::getName>>("name", kText),
    computed<&ask<ImmutableType, &TypeIntf::getQualifiedName>>("qualifiedName", kText),
};

constexpr std::array kClassMethods{
    staysReadOnlyRow<ImmutableClass>(kClass),
    method("isAbstract", {"", kLogical, kClass}, &bindFunction<&ask<ImmutableClass, &ClassIntf::isAbstract>>),
    method("superClasses", {"", kClasses, kClass},
           &bindFunction<&list<ImmutableClass, ImmutableClass, &ClassIntf::superClasses>>),
    method("ownedProperties", {"", kProperties, kClass},
           &bindFunction<&list<ImmutableClass, ImmutableProperty, &ClassIntf::ownedProperties>>),
    method("allProperties", {"", kProperties, kClass},
           &bindFunction<&list<ImmutableClass, ImmutableProperty, &ClassIntf::allProperties>>),
    method("property", {"name", kProperty, kClass, {kText}}, &bindFunction<&property>),
};

constexpr std::array kDataTypeMethods{
    staysReadOnlyRow<ImmutableDataType>(kDataType),
    method("literals", {"", "Kelm.ImmutableSequenceOfString", kDataType}, &bindFunction<&literals>),
};

constexpr std::array kPropertyMethods{
    staysReadOnlyRow<ImmutableProperty>(kProperty),
    method("owner", {"", kClass, kProperty}, &bindFunction<&ownerOf>),
    method("get", {"object", kAnyValue, kProperty, {kElement}}, &bindFunction<&get>),
    method("set", {"object, value", "void", kProperty, {"Kelm.ClassObject", kAnyValue}}, &bindFunction<&set>),
    method("getText", {"object", kText, kProperty, {kElement}}, &bindFunction<&getText>),
};
constexpr std::array kPropertyProperties{
    computed<&ask<ImmutableProperty, &PropertyIntf::getName>>("name", kText),
    computed<&idOf>("id", kInt32),
    computed<&typeOf>("type", kType),
    computed<&typeNameOf>("typeName", kText),
    computed<&ask<ImmutableProperty, &PropertyIntf::getLower>>("lower", kInt32),
    computed<&ask<ImmutableProperty, &PropertyIntf::getUpper>>("upper", kInt32),
    computed<&ask<ImmutableProperty, &PropertyIntf::getDefault>>("default", kText),
    computed<&ask<ImmutableProperty, &PropertyIntf::isReadOnly>>("isReadOnly", kLogical),
    computed<&ask<ImmutableProperty, &PropertyIntf::isMultivalued>>("isMultivalued", kLogical),
    computed<&ask<ImmutableProperty, &PropertyIntf::isComposite>>("isComposite", kLogical),
    computed<&ask<ImmutableProperty, &PropertyIntf::isDerived>>("isDerived", kLogical),
    computed<&ask<ImmutableProperty, &PropertyIntf::isOrdered>>("isOrdered", kLogical),
    computed<&ask<ImmutableProperty, &PropertyIntf::isUnique>>("isUnique", kLogical),
    computed<&oppositeOf>("opposite", kProperty),
    computed<&list<ImmutableProperty, ImmutableProperty, &PropertyIntf::subsetted>>("subsetted", kProperties),
    computed<&list<ImmutableProperty, ImmutableProperty, &PropertyIntf::redefined>>("redefined", kProperties),
};

constexpr std::array kPackageMethods{
    staysReadOnlyRow<ImmutablePackage>(kPackage),
    method("classes", {"", kClasses, kPackage},
           &bindFunction<&list<ImmutablePackage, ImmutableClass, &NSInterface::PackageIntf::classes>>),
    method("dataTypes", {"", kDataTypes, kPackage},
           &bindFunction<&list<ImmutablePackage, ImmutableDataType, &NSInterface::PackageIntf::dataTypes>>),
    method("find", {"name", kType, kPackage, {kText}}, &bindFunction<&find>),
};
constexpr std::array kPackageProperties{
    computed<&ask<ImmutablePackage, &NSInterface::PackageIntf::getName>>("name", kText),
    computed<&ask<ImmutablePackage, &NSInterface::PackageIntf::getUri>>("uri", kText),
};

constexpr std::array<char const*, 1> kUnderObject{"Kelm.ImmutableObject"};
constexpr std::array<char const*, 1> kUnderType{kType};

constexpr std::array kAll{
    KelmClass{"Type", Access::ReadOnly, "A type of the metamodel", kUnderObject, kTypeMethods,
              kTypeProperties},
    KelmClass{"Class", Access::ReadOnly, "A class of the metamodel", kUnderType, kClassMethods},
    KelmClass{"DataType", Access::ReadOnly, "A data type of the metamodel", kUnderType, kDataTypeMethods},
    KelmClass{"Property", Access::ReadOnly, "A property of a class of the metamodel", kUnderObject,
              kPropertyMethods, kPropertyProperties},
    KelmClass{"Package", Access::ReadOnly, "A metamodel", kUnderObject, kPackageMethods, kPackageProperties},
};

}  // namespace

std::span<KelmClass const> metaClasses() { return kAll; }

}  // namespace Kelm::mi
