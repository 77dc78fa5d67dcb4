#pragma once

#include "vesk/factory/BindingRegistry.h"
#include "vesk/factory/VeskFactoryClassInfo.h"

namespace vesk::factory {

/// A class info for instances that stand for a T. There is but the form that does not own it: the end of an
/// instance drops its binding and leaves the T alone.
template <class T, bool OwnsNative>
class HandleClassInfo;

template <class T>
class UMLMM_API HandleClassInfo<T, false> : public VeskFactoryClassInfo {
 public:
  using VeskFactoryClassInfo::VeskFactoryClassInfo;

  int handleQueryFirst() const override { return 0; }
  void releaseInstance(VeskClient const*, void* id) override { basic::BindingRegistry::remove(id); }
  int handleQuerySecond() const override { return 1; }
};

}  // namespace vesk::factory
