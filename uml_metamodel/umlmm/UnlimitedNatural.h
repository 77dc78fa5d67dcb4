#pragma once

#include <compare>
#include <cstdint>

#include "kelm/Object.h"
#include "lum/visibility.h"

namespace Brond {
class TypeInfo;
}

namespace umlmm {

/// A natural number of the metamodel, or unlimited, which is the greatest (UML 2.5.1, clause 21); below 2^32
/// - 1.
class UMLMM_API UnlimitedNatural {
 public:
  static constexpr char kName[] = "UnlimitedNatural";
  static constexpr std::uint32_t kUnlimited = UINT32_MAX;

  constexpr UnlimitedNatural() noexcept = default;
  constexpr explicit UnlimitedNatural(std::uint32_t aValue) noexcept : fValue(aValue) {}
  /// The value that the object carries; raises the incorrect-type failure for a null or any other object.
  explicit UnlimitedNatural(Kelm::ImmutableObject const& aObject);
  static constexpr UnlimitedNatural unlimited() noexcept { return UnlimitedNatural(kUnlimited); }

  operator Kelm::Object() const;
  /// kUnlimited for unlimited.
  constexpr std::uint32_t value() const noexcept { return fValue; }
  constexpr bool isUnlimited() const noexcept { return fValue == kUnlimited; }
  friend constexpr auto operator<=>(UnlimitedNatural const&, UnlimitedNatural const&) noexcept = default;

  /// Conversion from and to text: "*" or decimal digits. Blanks around the text and leading zeros are
  /// allowed. Lives as long as the process.
  static Brond::TypeInfo const* getTypeInfo() noexcept;

 private:
  std::uint32_t fValue = 0;
};

static_assert(sizeof(UnlimitedNatural) == 4);

}  // namespace umlmm
