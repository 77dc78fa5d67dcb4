#include "RefClass.h"

#include "boxing.h"
#include "frame/Unboxing.h"
#include "kelm/ClassObject.h"
#include "kelm/values.h"

namespace Kelm::mi {

namespace {

using vesk::VeskValue;

/// "umlmm::Class" is "Class" of "umlmm" in scripts.
bool isShownBy(NSInterface::ClassIntf const& aClass, vesk::ClassFamily const& aFamily) {
  std::string_view const qualified = aClass.getQualifiedName();
  std::string_view const package = aFamily.package();
  return qualified.size() == package.size() + 2 + aFamily.name().size() && qualified.starts_with(package) &&
         qualified.ends_with(aFamily.name()) && qualified.substr(package.size(), 2) == "::";
}

/// The class that a family shows among a class and all its superclasses, or null.
NSInterface::ClassIntf const* findAncestor(NSInterface::ClassIntf const& aClass,
                                           vesk::ClassFamily const& aFamily) {
  if (isShownBy(aClass, aFamily)) return &aClass;
  for (NSInterface::ClassIntf const* const super : aClass.superClasses()) {
    if (auto const* const found = findAncestor(*super, aFamily)) return found;
  }
  return nullptr;
}

}  // namespace

RefClass makeRefClass(Access aAccess, Elements aElements, char const* aName, char const* aElementClass,
                      char const* aIteratorClass, std::vector<std::string> const& aBases) {
  Access const elements = aElements == Elements::Changeable ? Access::Changeable : Access::ReadOnly;
  vesk::VeskInterned const element = vesk::internal::intern(aElementClass);
  RefClass result{vesk::internal::intern(aName),
                  element,
                  vesk::internal::intern(aIteratorClass),
                  familyOfReferences(element, elements),
                  {},
                  aAccess,
                  aElements};
  result.fBases.reserve(aBases.size());
  for (std::string const& base : aBases)
    result.fBases.push_back(
        &familyOfReferences(vesk::internal::intern(std::string_view(base)), Access::Changeable));
  return result;
}

RefClass makeTextClass(vesk::ClassFamily const& aFamily, vesk::VeskInterned aName) {
  return {aName,
          vesk::internal::interned<"char vector">(),
          aFamily.iterator(Access::ReadOnly, Access::Changeable),
          aFamily,
          {},
          Access::ReadOnly,
          Elements::Text};
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
  if (fMetaClass == nullptr) fMetaClass = findAncestor(*elementClass.get(), fFamily);
  return fMetaClass != nullptr && elementClass.get()->conformsTo(*fMetaClass);
}

}  // namespace Kelm::mi
