#pragma once

#include <string>
#include <utility>

#include "lum/visibility.h"

namespace vesk {

/// Who calls: passed through every operation, never null, never looked into by a library. It outlives all
/// calls in its name.
class UMLMM_API VeskClient {
 public:
  explicit VeskClient(std::string name);
  virtual ~VeskClient();

  [[nodiscard]] std::string const& name() const noexcept { return fName; }

 private:
  std::string fName;
};

}  // namespace vesk
