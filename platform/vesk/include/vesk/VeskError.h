#pragma once

#include <stdexcept>
#include <string>

#include "lum/visibility.h"

namespace vesk {

/// A failure of the class system itself; what() is for the reader of a script, in UTF-8. What methods and
/// properties throw passes through unchanged. Lack of memory is no VeskError, but a
/// std::bad_alloc.
class UMLMM_API VeskError : public std::runtime_error {
 public:
  enum class Kind {
    General,  ///< anything else, such as a binding that may not be made
    Match,    ///< a call or value that does not fit what is declared
    Range,    ///< a number that does not fit its data type
    Name,     ///< a class, package or member that does not exist
    Load,     ///< a library that cannot be loaded
  };

  explicit VeskError(std::string const& text, Kind kind = Kind::General);
  ~VeskError() override;

  [[nodiscard]] Kind kind() const noexcept { return fKind; }

 private:
  Kind fKind;
};

}  // namespace vesk
