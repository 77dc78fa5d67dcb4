#pragma once

#include "vesk/factory/Invoker.h"

namespace vesk::factory {

/// A function of a package that runs through an Invoker, whose function and thunk its maker sets before the
/// package takes it over.
class UMLMM_API FunctionInfo : public VeskMethod {
 public:
  FunctionInfo(char const* name, MethodAttributes attributes);
  ~FunctionInfo() override;
  void invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const override;
  [[nodiscard]] impl::Invoker& invoker() noexcept { return fInvoker; }
  [[nodiscard]] impl::Invoker const& invoker() const noexcept { return fInvoker; }

 private:
  impl::Invoker fInvoker;
};

}  // namespace vesk::factory
