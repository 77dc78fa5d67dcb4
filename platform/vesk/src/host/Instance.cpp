#include "vesk/host/Instance.h"

#include <memory>

#include "vesk/VeskClassInfo.h"
#include "vesk/host/Bindings.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::host {

namespace {

/// Instances that run finish, innermost first: a release may release further instances.
struct Releasing {
  Instance* fInstance;
  Releasing* fOuter;
};

Releasing* sReleasing = nullptr;

Instance* makeOnHeap(ClassRecord& cls) { return new Instance(cls); }

InstanceMaker sMaker = &makeOnHeap;

}  // namespace

std::size_t Instance::sLiveCount = 0;

Instance::~Instance() { --sLiveCount; }

void Instance::release() {
  if (--fCount != 0 || fState == State::Released) return;
  std::unique_ptr<Instance> const self(this);
  finish();
}

void Instance::finish() {
  bool const wasBound = fState == State::Bound;
  fState = State::Released;
  if (!wasBound) return;
  struct Scope : Releasing {
    explicit Scope(Instance* instance) : Releasing{instance, sReleasing} { sReleasing = this; }
    ~Scope() {
      sReleasing = fOuter;
      // A class that failed before it dropped the binding must not leave it behind.
      if (bindings::lookUp(fInstance->fId) == fInstance) bindings::erase(fInstance->fId);
    }
  } const scope(this);
  fClass->info().releaseInstance(client(), fId);
}

Instance* Instance::findReleasing(void const* id) noexcept {
  for (Releasing* one = sReleasing; one; one = one->fOuter)
    if (one->fInstance->fId == id) return one->fInstance;
  return nullptr;
}

Instance* Instance::fromArray(tarnArray const* array) noexcept {
  if (!array || array->fClassId != objectClassId) return nullptr;
  if (array->fFlags & tarnArray::Embedded)
    return static_cast<Instance*>(static_cast<VeskInterface*>(array->fData));
  if (tarn::numberOfElements(array) == 0) return nullptr;
  return dynamic_cast<Instance*>(static_cast<VeskInterface*>(*tarn::dataAs<void*>(array)));
}

void setInstanceMaker(InstanceMaker maker) noexcept { sMaker = maker ? maker : &makeOnHeap; }

Instance* makeInstance(ClassRecord& cls) { return sMaker(cls); }

}  // namespace vesk::host
