#pragma once

#include <memory>
#include <span>
#include <vector>

#include "vesk/interned.h"

namespace vesk {

/// What a method takes and gives, in the texts of its maker: data types, or full names of classes. Immutable
/// and shared; the texts are interned, so nothing of the maker's needs to live.
class UMLMM_API VeskMethodSignature {
 public:
  VeskMethodSignature(VeskInterned names, VeskInterned result, VeskInterned receiver,
                      std::span<char const* const> argumentTypes);

  /// Names of the arguments without the receiver, separated by comma and blank; "" for none.
  [[nodiscard]] char const* names() const noexcept { return fNames.c_str(); }
  /// "void" for a method that gives nothing.
  [[nodiscard]] VeskInterned result() const noexcept { return fResult; }
  /// Full class name of the receiver, or null.
  [[nodiscard]] VeskInterned receiver() const noexcept { return fReceiver; }
  /// Types, in order; a receiver that is not told by `receiver` is the first of them.
  [[nodiscard]] std::span<VeskInterned const> arguments() const noexcept { return fArguments; }

 private:
  VeskInterned fNames;
  VeskInterned fResult;
  VeskInterned fReceiver;
  std::vector<VeskInterned> fArguments;
};

using VeskMethodSignaturePtr = std::shared_ptr<VeskMethodSignature const>;

}  // namespace vesk
