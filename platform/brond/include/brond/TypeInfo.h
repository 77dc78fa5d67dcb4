#pragma once

#include <string>

#include "brond/ErrorHolder.h"
#include "brond/any.h"

namespace Brond {

/// What the system knows of a value type at run time: its conversion to and from text, UTF-8. Immutable; any
/// thread may ask.
class UMLMM_API TypeInfo {
 public:
  virtual ~TypeInfo();

  /// The value that `text` writes down; an empty holder and a message in `error` if it writes none.
  virtual any convertFromString(std::string const& text, ErrorHolder& error) const = 0;

  /// The text of a value of this type; throws bad_any_cast for a value of another type.
  virtual std::string convertToString(any const& value) const = 0;
};

}  // namespace Brond
