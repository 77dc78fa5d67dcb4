#include <gtest/gtest.h>

#include "kelm/Asserter.h"
#include "kelm/Deviant.h"
#include "kelm/ModelCache.h"
#include "lum/lum.h"
#include "uml_metamodel_mi/support/Script.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::mi {
namespace {

using umlmm::testing::call;
using umlmm::testing::Empty;
using umlmm::testing::make;
using umlmm::testing::Value;

class Scripts : public ::testing::Test {
 protected:
  Value fModel = call("umlmm.Factory", "createNewModel");
};

TEST_F(Scripts, newModelsHaveUrisOfTheirOwnAndAreBound) {
  std::size_t const before = Kelm::ModelCache::instance().size();
  Value const second = call("umlmm.Factory", "createNewModel");
  EXPECT_EQ(Kelm::ModelCache::instance().size(), before + 1);
  EXPECT_NE(second.get("uri").text(), fModel.get("uri").text());
  EXPECT_TRUE(Kelm::DeviantAssertions::sAssertionsEnabled);
}

TEST_F(Scripts, bindingsEndWithTheirHostObjects) {
  std::size_t const before = vesk::factory::basic::BindingRegistry::size();
  {
    Value const comment = make("umlmm.Comment", fModel);
    Value const immutable = comment.call("asImmutable");
    EXPECT_EQ(vesk::factory::basic::BindingRegistry::size(), before + 2);
  }
  EXPECT_EQ(vesk::factory::basic::BindingRegistry::size(), before);
}

TEST_F(Scripts, literalsArePrinted) {
  std::string printed;
  lumSetPrintSink([](char const* text, std::size_t length,
                     void* to) { static_cast<std::string*>(to)->append(text, length); },
                  &printed);
  call("umlmm.AggregationKind", "Composite").call("disp");
  lumSetPrintSink(nullptr, nullptr);
  EXPECT_EQ(printed, "Composite\n");
}

TEST_F(Scripts, theHostReadsValuesInBlocks) {
  Value const kinds = call("umlmm.SequenceOfMessageSort", "make", fModel);
  Value const reply = call("umlmm.MessageSort", "Reply");
  kinds.call("append", reply);
  auto const* const hook = kinds.instance()->classRecord().info().getSequenceHook();
  ASSERT_NE(hook, nullptr);
  vesk::VeskValue values[4];
  std::uint64_t stamp = 0;
  ASSERT_EQ(hook->readBlock(kinds.instance(), 0, 4, values, stamp), 1u);
  EXPECT_EQ(vesk::host::Instance::fromArray(values[0].array()), reply.instance());
  tarnDestroyArray(values[0].array());
}

}  // namespace
}  // namespace umlmm::mi
