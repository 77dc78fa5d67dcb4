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

TEST_F(Scripts, theHostReadsInBlocksAndSeesWhatTheMethodsSee) {
  Value const list = call("umlmm.SequenceOfClass", "make", fModel);
  Value const first = make("umlmm.Class", fModel), second = make("umlmm.Class", fModel),
              third = make("umlmm.Class", fModel);
  for (Value const* element : {&first, &second, &third}) list.call("append", *element);
  for (int i = 0; i < 200; ++i) list.call("append", second);
  auto* const instance = list.instance();
  auto const* const hook = instance->classRecord().info().getSequenceHook();
  ASSERT_NE(hook, nullptr);
  EXPECT_STREQ(hook->elementType(), "umlmm.Class");
  ASSERT_EQ(hook->size(instance), 203u);
  constexpr std::size_t kBlock = vesk::SequenceHook::kBlock;
  std::vector<vesk::VeskValue> values(kBlock);
  std::uint64_t stamp = 0;
  ASSERT_EQ(hook->readBlock(instance, 1, 250, values.data(), stamp), kBlock);
  for (auto const& [at, element] : {std::pair{0u, &second}, {1u, &third}, {unsigned{kBlock} - 1, &second}})
    EXPECT_EQ(vesk::host::Instance::fromArray(values[at].array()), element->instance());
  for (vesk::VeskValue const& value : values) tarnDestroyArray(value.array());
  EXPECT_EQ(hook->find(instance, third.instance()->array(), 0, 203), 2u);
  EXPECT_EQ(hook->find(instance, third.instance()->array(), 3, 203), vesk::SequenceHook::kNotFound);
  EXPECT_EQ(hook->find(instance, second.instance()->array(), 2, 203), 3u);

  // The same size, but not the same sequence.
  list.call("replace", 1, second);
  EXPECT_EQ(hook->readBlock(instance, 32, 250, values.data(), stamp), 0u);
  EXPECT_EQ(stamp, 0u);

  Value const kinds = call("umlmm.SequenceOfMessageSort", "make", fModel);
  Value const reply = call("umlmm.MessageSort", "Reply");
  kinds.call("append", reply);
  ASSERT_EQ(kinds.instance()->classRecord().info().getSequenceHook()->readBlock(kinds.instance(), 0, 4,
                                                                                values.data(), stamp),
            1u);
  EXPECT_EQ(vesk::host::Instance::fromArray(values[0].array()), reply.instance());
  tarnDestroyArray(values[0].array());
}

/// Behind the match of types, which refuses this earlier.
TEST_F(Scripts, descriptorsAndMethodsRefuseElementsOfAnotherClass) {
  Value const property = make("umlmm.Property", fModel), comment = make("umlmm.Comment", fModel);
  auto const refusal = [](auto const& aCall) -> std::string {
    try {
      aCall();
    } catch (std::exception const& failure) {
      return failure.what();
    }
    return "";
  };
  auto const& type =
      *property.instance()->classRecord().findMember(vesk::internal::intern("type"))->fProperty;
  EXPECT_NE(refusal([&] {
              type.fInfo->setValue(property.instance(), comment.instance()->array());
            }).find("umlmm.ImmutableType"),
            std::string::npos);
  Value const list = call("umlmm.SequenceOfClass", "make", fModel);
  for (auto const& method : umlmm::testing::classNamed("umlmm.SequenceOfClass").methods()) {
    if (method.fName.view() != "append" && method.fName.view() != "push_front") continue;
    vesk::VeskValue const arguments[] = {list.instance()->array(), comment.instance()->array()};
    vesk::VeskValue result;
    int count = 0;
    EXPECT_NE(
        refusal([&] { method.fInfo->invoke(nullptr, count, &result, 2, arguments); }).find("'umlmm.Class'"),
        std::string::npos);
  }
  EXPECT_EQ(list.call("size").number(), 0);
  EXPECT_NE(refusal([&] {
              property.call("getProperty", std::u16string(u"name"));
            }).find("cannot be reached by its name"),
            std::string::npos)
      << "without a front";
}

}  // namespace
}  // namespace umlmm::mi
