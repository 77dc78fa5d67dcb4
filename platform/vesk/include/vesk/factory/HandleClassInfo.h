#pragma once

#include "vesk/factory/BindingRegistry.h"
#include "vesk/factory/VeskFactoryClassInfo.h"

namespace vesk::factory {

template <class T, bool OwnsNative>
class HandleClassInfo;

/// A class info for instances that refer to a T they do not own.
template <class T>
class UMLMM_API HandleClassInfo<T, false> : public VeskFactoryClassInfo {
 public:
  using VeskFactoryClassInfo::VeskFactoryClassInfo;

  int handleQueryFirst() const override { return 0; }
  void releaseInstance(VeskClient const*, void* id) override { basic::BindingRegistry::remove(id); }
  int handleQuerySecond() const override { return 1; }
};

}  // namespace vesk::factory
