#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kelm/Object.h"
#include "kelm/meta.h"
#include "kelm_mi/families.h"
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
  /// Under which positions are shown; of an iterator class its own name.
  vesk::VeskInterned fIterator;
  vesk::ClassFamily const& fFamily;
  /// Those of the superclasses of the elements.
  std::vector<vesk::ClassFamily const*> fBases;
  /// Of the sequence itself, or of what an iterator walks.
  Access fAccess;
  Elements fElements;

  Access elementAccess() const noexcept {
    return fElements == Elements::Changeable ? Access::Changeable : Access::ReadOnly;
  }

  /// The value of an element in a variant; of null a null reference, or the empty text.
  vesk::VeskValue box(NSInterface::ObjectIntf const* aObject, Deviant aDeviant) const;
  /// The element in an argument. Raises the incorrect-type failure unless it is an instance of the element
  /// class.
  Object unboxElement(vesk::VeskValue aValue) const;
  /// The object in an argument, whatever it is; null for an empty one.
  Object unboxObject(vesk::VeskValue aValue) const;

  /// By the metaclass of the object, whatever class shows it; false for null and for what is no element.
  bool isElement(Object const& aObject) const;

  /// The class of the elements, once an instance of it was seen.
  mutable NSInterface::ClassIntf const* fMetaClass = nullptr;
};

/// A class by full names: its own, that of its elements, and for a sequence those of its iterators and of the
/// changeable superclasses of the elements.
RefClass makeRefClass(Access aAccess, Elements aElements, char const* aName, char const* aElementClass,
                      char const* aIteratorClass = "", std::vector<std::string> const& aBases = {});
/// A read-only class of texts.
RefClass makeTextClass(vesk::ClassFamily const& aFamily, vesk::VeskInterned aName);

}  // namespace Kelm::mi
