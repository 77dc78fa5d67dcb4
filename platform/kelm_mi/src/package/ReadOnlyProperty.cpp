#include "ReadOnlyProperty.h"

#include <memory>

#include "tarn/tarn.h"

namespace Kelm::mi {

namespace {

class ReadOnlyProperty final : public vesk::VeskPropInfo {
 public:
  explicit ReadOnlyProperty(ComputedProperty const& aProperty)
      : VeskPropInfo(aProperty.fName, "", 0), fProperty(aProperty) {}

  char const* getDataType() const override { return fProperty.fType; }
  int getMemberSetAccess() const override { return 1; }
  vesk::VeskValue getValue(vesk::VeskInterface* aInstance) override { return fProperty.fRead(*aInstance); }
  void setValue(vesk::VeskInterface*, vesk::VeskValue) override {
    raiseFailure(words::kReadOnlySet, "kelm_mi/marshal/KelmmiReadOnlyProperty");
  }
  void releaseValue(vesk::VeskInterface*, vesk::VeskValue aValue) override {
    if (fProperty.fHoldsArray) tarnDestroyArray(aValue.array());
  }

 private:
  ComputedProperty fProperty;
};

}  // namespace

void addComputedProperty(vesk::VeskClass* aClass, ComputedProperty const& aProperty) {
  aClass->addProperty(std::make_unique<ReadOnlyProperty>(aProperty).release());
}

}  // namespace Kelm::mi
