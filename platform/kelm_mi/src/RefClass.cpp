#include "RefClass.h"

#include "boxing.h"
#include "kelm/ClassObject.h"
#include "kelm/values.h"
#include "names.h"
#include "uml_metamodel_mi/frame/Unboxing.h"

namespace Kelm::mi {

namespace {

using vesk::VeskValue;

/// "umlmm::Class" is "umlmm.Class" in scripts.
bool isNamed(NSInterface::ClassIntf const& aClass, ClassName const& aName) {
  std::string_view const qualified = aClass.getQualifiedName();
  std::string_view const package = aName.fPackage.substr(0, aName.fPackage.size() - 1);
  return qualified.size() == package.size() + 2 + aName.fShort.size() && qualified.starts_with(package) &&
         qualified.ends_with(aName.fShort) && qualified.substr(package.size(), 2) == "::";
}

NSInterface::ClassIntf const* findAncestor(NSInterface::ClassIntf const& aClass, ClassName const& aName) {
  if (isNamed(aClass, aName)) return &aClass;
  for (NSInterface::ClassIntf const* const super : aClass.superClasses()) {
    if (auto const* const found = findAncestor(*super, aName)) return found;
  }
  return nullptr;
}

}  // namespace

NSInterface::ClassIntf const* findAncestor(NSInterface::ClassIntf const& aClass,
                                           std::string_view aScriptName) {
  std::string const changeable = changeableClassName(aScriptName);
  ClassName const name = splitClassName(changeable);
  return name.fPackage.empty() ? nullptr : findAncestor(aClass, name);
}

VeskValue RefClass::box(NSInterface::ObjectIntf const* aObject, Deviant aDeviant) const {
  if (fElements == Elements::Text) {
    StringObject const* const text = asString(ImmutableObject(aObject, aDeviant));
    return tarnCreateString_UTF16(text == nullptr ? u"" : text->data());
  }
  return boxMostlyBound(aObject, aDeviant, fElements == Elements::ReadOnly, fElement);
}

Object RefClass::unboxObject(VeskValue aValue) const {
  return unboxReference<Object>(aValue, fElement).fValue;
}

Object RefClass::unboxElement(VeskValue aValue) const {
  Object object = unboxObject(aValue);
  if (!isElement(object)) kelm::Error_IncorrectType(fElement.c_str());
  return object;
}

bool RefClass::isElement(Object const& aObject) const {
  auto const* const element = queryInterface<NSInterface::ClassObjectIntf>(aObject.get());
  if (element == nullptr) return false;
  ImmutableClass const elementClass = element->getMetaClass();
  if (fMetaClass == nullptr) fMetaClass = findAncestor(*elementClass.get(), fElement.view());
  return fMetaClass != nullptr && elementClass.get()->conformsTo(*fMetaClass);
}

}  // namespace Kelm::mi
