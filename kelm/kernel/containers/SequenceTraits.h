#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <functional>
#include <string_view>

#include "kelm/Object.h"
#include "kelm/scriptNames.h"

namespace Kelm {

/// A class whose values refer to objects: Kelm::Object and the reference classes of a metamodel.
template <class T>
concept ReferenceClass = requires {
  typename T::InterfaceType;
  typename T::Domain;
}
&&std::derived_from<T, Handle<typename T::InterfaceType>>;

/// What sequences know of their value type: equality, order, and the name in script class names. A value type
/// gives these by members (`value()`, or `compare` and a static `kName`) or by a specialisation.
template <class T>
struct SequenceTraits {
  static bool equal(T const& aLeft, T const& aRight) {
    if constexpr (requires { aLeft.value(); }) {
      return aLeft.value() == aRight.value();
    } else if constexpr (requires { aLeft.compare(aRight); }) {
      return aLeft.compare(aRight) == 0;
    } else {
      return aLeft == aRight;
    }
  }
  static bool less(T const& aLeft, T const& aRight) {
    if constexpr (requires { aLeft.value(); }) {
      return aLeft.value() < aRight.value();
    } else if constexpr (requires { aLeft.compare(aRight); }) {
      return aLeft.compare(aRight) < 0;
    } else {
      return aLeft < aRight;
    }
  }
};

/// References are compared by the object they name, their order is that of addresses: the same for as long as
/// the objects live, another one in the next run.
template <ReferenceClass T>
struct SequenceTraits<T> {
  static bool equal(T const& aLeft, T const& aRight) noexcept { return aLeft.get() == aRight.get(); }
  static bool less(T const& aLeft, T const& aRight) noexcept {
    return std::less<void const*>()(aLeft.get(), aRight.get());
  }
};

/// A value type that gives its sequences script class names, by its own short name ("String").
template <class T>
concept NamedValue = requires {
  { T::kName } -> std::convertible_to<char const*>;
};

namespace detail {

template <auto const&... Parts>
consteval auto joined() {
  std::array<char, (std::string_view(Parts).size() + ... + 1)> text{};
  std::size_t at = 0;
  auto const add = [&](std::string_view aPart) {
    for (char const character : aPart) text[at++] = character;
  };
  (add(Parts), ...);
  return text;
}

/// Names of the script classes that show sequences of T.
template <NamedValue T>
struct SequenceNames {
 private:
  static constexpr std::string_view kPackage = "umlmm.";
  static constexpr std::string_view kValue = T::kName;

 public:
  static constexpr auto kMutable = joined<kPackage, scriptNames::kSequenceOf, kValue>();
  static constexpr auto kImmutable =
      joined<kPackage, scriptNames::kImmutable, scriptNames::kSequenceOf, kValue>();
};

}  // namespace detail
}  // namespace Kelm
