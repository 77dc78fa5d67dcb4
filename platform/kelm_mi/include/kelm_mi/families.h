#pragma once

#include <string_view>

#include "lum/visibility.h"
#include "vesk/ClassFamily.h"

/// The one place where names of script classes are put together. In the host's thread.
namespace Kelm::mi {

using vesk::Access;

/// The family of a kind of thing: of "umlmm" and "Class" the classes from "umlmm.Class" to
/// "umlmm.ImmutableClassImmutableIterator". Made by the first call; never goes.
UMLMM_API vesk::ClassFamily const& classFamily(std::string_view aPackage, std::string_view aName);

/// The family of a class of references by its full name, for those who are told no more: "umlmm.Class", or
/// with read-only access "umlmm.ImmutableClass".
UMLMM_API vesk::ClassFamily const& familyOfReferences(vesk::VeskInterned aClass, Access aAccess);

/// The family of the classes that show values of C++ type T: `get()` is the family, `kAccess` what a T lets
/// one do. Libraries specialise it for their types.
template <class T>
struct FamilyOf;

}  // namespace Kelm::mi
