#pragma once

#include <string>
#include <utility>

#include "lum/visibility.h"

namespace Brond {

/// Takes the error of a conversion that reports instead of throwing. A second error replaces the first.
class UMLMM_API ErrorHolder {
 public:
  ErrorHolder();
  ~ErrorHolder();

  [[nodiscard]] bool hasError() const noexcept { return fHasError; }
  [[nodiscard]] std::string const& text() const noexcept { return fText; }
  void setError(std::string text);

 private:
  std::string fText;
  bool fHasError = false;
};

}  // namespace Brond
