#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "kelm/values.h"
#include "uml_metamodel/umlmm/fwd.h"

namespace umlmm::detail {

/// A literal of an enumeration, by its number from 0. Any number is accepted here; one without a literal has
/// its digits as text, and features refuse it. Order is that of the numbers. `E` names its record by `type()`
/// and its literals by the nested `Value`.
template <class E>
class EnumerationValue {
 public:
  constexpr EnumerationValue() noexcept = default;
  constexpr EnumerationValue(int aNumber) noexcept : fNumber(aNumber) {}
  /// The literal that an object stands for; raises the incorrect-type failure for any other object.
  explicit EnumerationValue(Kelm::ImmutableObject const& aObject)
      : fNumber(Kelm::literalNumber(aObject, E::type())) {}

  /// The one object of the literal.
  operator Kelm::Object() const { return Kelm::Object(E::type().object(fNumber), Kelm::Deviant()); }

  /// True for numbers without a literal too.
  constexpr bool isValid() const noexcept { return true; }
  constexpr int number() const noexcept { return fNumber; }
  auto value() const noexcept { return static_cast<typename E::Value>(fNumber); }

  /// The literal as spelled ("None").
  Kelm::String toString() const { return Kelm::String(Kelm::toUtf16(E::type().text(fNumber))); }
  /// The literal of a name, which may start in lower case; raises the incorrect-type failure for others.
  static E fromString(std::string const& aName) { return E(E::type().parse(aName)); }

  static Kelm::ImmutableDataType MetaDataType() {
    return Kelm::ImmutableDataType(E::type().fMetaType, Kelm::metaDeviant());
  }
  Kelm::ImmutableDataType getMetaDataType() const { return MetaDataType(); }

  friend constexpr auto operator<=>(EnumerationValue const&, EnumerationValue const&) noexcept = default;

 private:
  int fNumber = 0;
};

}  // namespace umlmm::detail
