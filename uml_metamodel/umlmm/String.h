#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "kelm/Object.h"
#include "kelm/String.h"

namespace umlmm {

/// A text of the metamodel (UML 2.5.1, clause 21); it shares its record with the object that carries it.
class UMLMM_API String : public Kelm::String {
 public:
  static constexpr char kName[] = "String";

  String() noexcept = default;
  /// From UTF-16: a literal (`u"Order"`), string or view.
  template <std::convertible_to<std::u16string_view> Text>
  String(Text const& aText) : Kelm::String(std::u16string_view(aText)) {}
  /// From UTF-8; what is malformed becomes the replacement character.
  template <std::convertible_to<std::string_view> Text>
  String(Text const& aText) : Kelm::String(Kelm::StringObject::make(std::string_view(aText)), Counted()) {}
  String(Kelm::String const& aText) noexcept : Kelm::String(aText) {}
  /// The text that the object carries; raises the incorrect-type failure for a null or any other object.
  explicit String(Kelm::ImmutableObject const& aObject);
  /// The same; takes over the object's count.
  explicit String(Kelm::Object&& aObject);

  operator Kelm::Object() const;
};

}  // namespace umlmm
