#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kelm/Object.h"
#include "kelm/meta.h"
#include "vesk/VeskValue.h"
#include "vesk/interned.h"

namespace Kelm::mi {

/// What the elements of a sequence of objects look like to a script.
enum class Elements : std::uint8_t {
  Changeable,  ///< references under their changeable class
  ReadOnly,    ///< references under their read-only class
  Text,        ///< string objects, as texts
};

/// What one class of sequences or iterators knows: the names in its signatures and how its elements cross.
/// Shared by all methods of the class.
struct RefClass {
  vesk::VeskInterned fName;
  vesk::VeskInterned fElement;
  /// Null for an iterator class.
  vesk::VeskInterned fIterator;
  /// Full names of the superclasses of the changeable element class.
  std::vector<vesk::VeskInterned> fBases;
  /// Whether the sequence itself, or what an iterator walks, is read-only.
  bool fReadOnly;
  Elements fElements;

  /// The value of an element in a variant.
  vesk::VeskValue box(NSInterface::ObjectIntf const* aObject, Deviant aDeviant) const;
  /// The element in an argument. Raises the incorrect-type failure unless it is an instance of the element
  /// class.
  Object unboxElement(vesk::VeskValue aValue) const;
  /// The object in an argument, whatever it is; null for an empty one.
  Object unboxObject(vesk::VeskValue aValue) const;

  bool isElement(Object const& aObject) const;

  /// The class of the elements, once an instance of it was seen.
  mutable NSInterface::ClassIntf const* fMetaClass = nullptr;
};

/// The class of a script name ("umlmm.Class") among a class and all its superclasses, or null.
NSInterface::ClassIntf const* findAncestor(NSInterface::ClassIntf const& aClass,
                                           std::string_view aScriptName);

}  // namespace Kelm::mi
