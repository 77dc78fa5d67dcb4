#pragma once

#include "frame/ElementClassInfo.h"
#include "kelm/Object.h"
#include "tarn/tarn.h"
#include "vesk/VeskClass.h"
#include "vesk/host/Instance.h"
#include "vesk/host/PackageRecord.h"

namespace umlmm::testing {

/// An object of a global script class "FrameThing" (or, seen read-only, "FrameImmutableThing") whose counts
/// can be read.
class Thing : public Kelm::NSInterface::ObjectIntf {
 public:
  int incRef() const override { return ++fCount; }
  int decRef() const override { return --fCount; }
  int numRef() const override { return fCount; }
  char const* getVeskName(bool aImmutable) const override {
    if (!fHasName) return "";
    return aImmutable ? "FrameImmutableThing" : "FrameThing";
  }
  bool deviant_isValid(Kelm::Deviant) const override { return true; }

  bool fHasName = true;
  mutable int fCount = 0;
};

class ThingInfo final : public Kelm::mi::ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;
  void initializeClass(vesk::VeskClass*, vesk::VeskClient const*) override {}
};

/// Makes the script classes of things known to the host, once.
inline void announceThings() {
  static bool const done = [] {
    for (char const* name : {"FrameThing", "FrameImmutableThing"})
      vesk::VeskClass::addGlobalClass(new ThingInfo(name, ""));
    return true;
  }();
  static_cast<void>(done);
}

/// An array that the scope gives back.
class Array {
 public:
  explicit Array(tarnArray* array) noexcept : fArray(array) {}
  explicit Array(vesk::VeskValue value) noexcept : fArray(value.array()) {}
  Array(Array const&) = delete;
  Array& operator=(Array const&) = delete;
  ~Array() { tarnDestroyArray(fArray); }

  operator vesk::VeskValue() const noexcept { return fArray; }
  tarnArray* get() const noexcept { return fArray; }
  /// The instance in the array.
  vesk::host::Instance* instance() const noexcept { return vesk::host::Instance::fromArray(fArray); }

 private:
  tarnArray* fArray;
};

}  // namespace umlmm::testing
