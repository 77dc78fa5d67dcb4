#pragma once

#include <exception>
#include <functional>
#include <string_view>
#include <vector>

#include "lum/visibility.h"
#include "vesk/fwd.h"

/// What libraries offer the host beside their packages.
namespace vesk::host {

/// Whether a failure is one of those that a library names.
using FailureMatcher = bool (*)(std::exception const& failure);

/// What a failure tells, as far as a front can say more of it than the library.
enum class FailureKind {
  General,
  ReadOnly,     ///< a property was set that cannot be set, or not through this object
  WrongValue,   ///< a value is none of those that are taken
  NoReference,  ///< there is no object behind a reference
};
using FailureClassifier = FailureKind (*)(std::exception const& failure);

/// Gives the failures that `matches` recognises the full name of an exception class, such as "Kelm.Error",
/// under which scripts catch them. The name is permanent text; a name that is known gets the new matcher.
UMLMM_API void nameFailures(char const* name, FailureMatcher matches, FailureClassifier classify = nullptr);
/// The name of a failure, or null if no library names it; of several names that match, the one given first.
[[nodiscard]] UMLMM_API char const* failureName(std::exception const& failure) noexcept;
/// What its library says that a failure tells; General for one that no library names.
[[nodiscard]] UMLMM_API FailureKind failureKind(std::exception const& failure) noexcept;
/// The names given so far.
[[nodiscard]] UMLMM_API std::vector<char const*> failureNames();

/// Adds members to a class of a library.
using ClassExtension = std::function<void(VeskClass* cls, VeskClient const* client)>;
/// Takes an extension for the class of a full name, to be run while the class is filled. One for a class that
/// is filled already is run at once, or refused with a VeskError if it never would be.
using ExtensionRegistrar = void (*)(char const* className, ClassExtension extension);

/// Sets where extensions of the classes of a package go; null removes.
UMLMM_API void setExtensionRegistrar(char const* package, ExtensionRegistrar registrar);
/// Hands an extension to the library of the class's package, or else to the first library that takes
/// extensions. Throws a VeskError of kind Name if none does and for a class that is not defined.
UMLMM_API void addExtension(char const* className, ClassExtension extension);

}  // namespace vesk::host
