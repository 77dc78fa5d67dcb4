#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace vesk {

/// A fact of a member that its library wants told in descriptions of the class, beside those that every
/// member has.
struct Detail {
  char const* fName;
  std::variant<std::int64_t, std::string> fValue;
};

using Details = std::vector<Detail>;

}  // namespace vesk
