#pragma once

#include <stdexcept>

#include "model_files/files.h"

namespace umlmm::files::mi {

/// A failure of `umlmm::files` as scripts are told it: its text is JSON (see package.h).
class Failure final : public std::runtime_error {
 public:
  explicit Failure(Error const& aError);
  ~Failure() override;
};

/// The function with its failures in that form.
template <auto Function>
struct Told;
template <class Result, class... Arguments, Result (*Function)(Arguments...)>
struct Told<Function> {
  static Result call(Arguments... aArguments) {
    try {
      return Function(aArguments...);
    } catch (Error const& error) {
      throw Failure(error);
    }
  }
};

}  // namespace umlmm::files::mi
