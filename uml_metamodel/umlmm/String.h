#pragma once

#include <concepts>
#include <string_view>

#include "kelm/Object.h"
#include "kelm/String.h"

namespace umlmm {

/// A text of the metamodel; it shares its record with the object that carries it.
class UMLMM_API String : public Kelm::String {
 public:
  static constexpr char kName[] = "String";

  String() noexcept = default;
  String(std::u16string const& aText) : Kelm::String(aText) {}
  explicit String(std::same_as<std::u16string_view> auto aText) : Kelm::String(aText) {}
  String(Kelm::String const& aText) noexcept : Kelm::String(aText) {}
  /// The text that the object carries; raises the incorrect-type failure for a null or any other object.
  explicit String(Kelm::ImmutableObject const& aObject);

  operator Kelm::Object() const;
};

}  // namespace umlmm
