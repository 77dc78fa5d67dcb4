#include <gtest/gtest.h>
#include <malloc.h>

#include "kelm/DeviantRegistry.h"
#include "uml_metamodel_mi/support/Script.h"
#include "vesk/factory/BindingRegistry.h"
#include "vesk/host/Instance.h"

namespace umlmm::mi {
namespace {

using umlmm::testing::call;
using umlmm::testing::make;
using umlmm::testing::Value;

/// What must not grow while a script makes and drops elements.
struct Counts {
  std::size_t fBindings = vesk::factory::basic::BindingRegistry::size();
  std::size_t fRecords = Kelm::DeviantRegistry::liveRecords();
  std::size_t fInstances = vesk::host::Instance::liveCount();
  std::size_t fHeap = mallinfo2().uordblks;
};

TEST(Lifetimes, makingBoxingDestroyingAndDroppingLeavesNothing) {
  Value const model = call("umlmm.Factory", "createNewModel");
  Value const package = make("umlmm.Package", model);
  auto const rounds = [&](int aCount) {
    for (int round = 0; round < aCount; ++round) {
      Value const element = make("umlmm.Class", model);
      element.set("name", std::u16string(u"Order"));
      package.get("packagedElement").call("append", element);
      Value const view = element.call("asImmutable");
      Value const owner = view.get("owner");
      if (round % 2 == 0) package.get("packagedElement").call("clear");
      element.call("destroy");
    }
  };
  rounds(1000);
  Counts const before;
  rounds(100000);
  Counts const after;
  EXPECT_EQ(after.fBindings, before.fBindings);
  EXPECT_EQ(after.fRecords, before.fRecords);
  EXPECT_EQ(after.fInstances, before.fInstances);
  EXPECT_EQ(after.fHeap, before.fHeap);
}

}  // namespace
}  // namespace umlmm::mi
