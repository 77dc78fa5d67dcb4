#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "lum/visibility.h"

namespace vesk {

/// A fact of a member that its library wants told in descriptions of the class, beside those that every
/// member has.
struct Detail {
  char const* fName;
  std::variant<std::int64_t, std::string> fValue;
};

using Details = std::vector<Detail>;

/// What a method or property info is beside its own interface when there are such facts of it.
class UMLMM_API Detailed {
 public:
  /// In the order in which a description tells them.
  [[nodiscard]] virtual Details details() const = 0;

 protected:
  virtual ~Detailed();
};

/// The facts of a member; none of one that is not Detailed.
template <class Info>
[[nodiscard]] Details detailsOf(Info const& info) {
  auto const* const detailed = dynamic_cast<Detailed const*>(&info);
  return detailed ? detailed->details() : Details();
}

}  // namespace vesk
