#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "support/TestClasses.h"
#include "vesk/VeskError.h"

namespace {

// The allocator behind the records that the host frees, watched and made to fail at will.
int sCallocs = 0;
bool sIsOutOfMemory = false;

}  // namespace

extern "C" UMLMM_API void* calloc(std::size_t count, std::size_t size) noexcept {
  ++sCallocs;
  if (sIsOutOfMemory) return nullptr;
  // Through a volatile pointer, or the compiler would make the two calls into a calloc again.
  void* (*volatile allocate)(std::size_t) = std::malloc;
  void* memory = allocate(count * size);
  return memory ? std::memset(memory, 0, count * size) : nullptr;
}

namespace {

using namespace vesk::testing;
using vesk::VeskMethodSignaturePtr;
using vesk::VeskValue;
using vesk::factory::impl::Invoker;
using vesk::factory::impl::MethodImpl;

struct WordRow {
  std::uint32_t fWord;
  int fAccess;
  bool fLocked, fVisible, fSealed, fStatic, fAbstract, fDestructible, fOverrides;
};

class AttributeWord : public testing::TestWithParam<WordRow> {};

TEST_P(AttributeWord, IsReadBitByBit) {
  WordRow const& row = GetParam();
  MethodImpl const method("m", row.fWord, "");
  EXPECT_EQ(method.getMemberAccess(), row.fAccess);
  EXPECT_EQ(method.getExtendedAccess().fAccess, row.fAccess);
  EXPECT_EQ(method.isLocked(), row.fLocked);
  EXPECT_EQ(method.isVisible(), row.fVisible);
  EXPECT_EQ(method.isSealed(), row.fSealed);
  EXPECT_EQ(method.isStatic(), row.fStatic);
  EXPECT_EQ(method.isAbstract(), row.fAbstract);
  EXPECT_EQ(method.isDestructible(), row.fDestructible);
  EXPECT_EQ(method.doesMethodOverrideAllSignatures(), row.fOverrides);
}

INSTANTIATE_TEST_SUITE_P(Words, AttributeWord,
                         testing::Values(WordRow{0, 0, true, true, false, false, false, false, false},
                                         WordRow{1 | 2, 0, false, false, false, false, false, false, false},
                                         WordRow{4 | 16, 0, true, true, true, false, true, false, false},
                                         WordRow{8 | 32, 0, true, true, false, true, false, true, false},
                                         WordRow{512 | 4096, 0, true, true, false, false, false, false, true},
                                         WordRow{64 | 128 | 256, 1, true, true, false, false, false, false,
                                                 false},
                                         WordRow{64 | 256, 2, true, true, false, false, false, false, false},
                                         WordRow{64, 5, true, true, false, false, false, false, false}));

TEST(Signature, ReadsBackWhatItWasMadeOf) {
  VeskMethodSignaturePtr signature;
  Invoker::createSignature("n, ns", "logical scalar", "umlmm.X", "a", "b", "c", "d", signature);
  EXPECT_STREQ(signature->names(), "n, ns");
  EXPECT_EQ(signature->result().view(), "logical scalar");
  EXPECT_EQ(signature->receiver().view(), "umlmm.X");
  ASSERT_EQ(signature->arguments().size(), 4u);
  EXPECT_EQ(signature->arguments()[3].view(), "d");
  Invoker::createSignature("", "void", nullptr, signature);
  EXPECT_STREQ(signature->names(), "");
  EXPECT_TRUE(signature->receiver().empty());
  EXPECT_TRUE(signature->arguments().empty());
}

struct First {
  virtual ~First() = default;
  int fFirst = 1;
};
struct Second {
  virtual ~Second() = default;
  virtual int number() const { return 2; }
};
struct Both : First, Second {};

TEST(Invoker, KeepsPlainFunctionsAndPointersToMembers) {
  Invoker invoker;
  EXPECT_FALSE(invoker.hasFunction());
  invoker.setFunction(+[](int value) { return value + 1; });
  EXPECT_TRUE(invoker.hasFunction());
  EXPECT_EQ(invoker.function<int (*)(int)>()(4), 5);

  // A pointer to member of a second base carries an adjustment beside the slot.
  using Member = int (Both::*)() const;
  Member const member = static_cast<Member>(&Second::number);
  invoker.setFunction(member);
  EXPECT_TRUE(invoker.function<Member>() == member);
}

TEST(Invoker, PassesTheCallToItsThunk) {
  auto* method = new MethodImpl("m", 0, "");
  method->invoker().setFunction(+[](int value) { return -value; });
  method->invoker().setThunk([](Invoker const& invoker, vesk::VeskClient const*, int& count,
                                VeskValue* results, int argumentCount, VeskValue const* arguments) {
    results[0] = VeskValue::ofInt32(invoker.function<int (*)(int)>()(arguments[argumentCount - 1].int32()));
    if (count == 0) count = 1;
  });
  VeskValue results[3], arguments[2] = {VeskValue::ofLogical(true), VeskValue::ofInt32(5)};
  int count = 3;
  method->invoke(vesk::host::client(), count, results, 2, arguments);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(results[0].int32(), -5);
  EXPECT_EQ(results[0].word() >> 32, 0xFFFFFFFFu) << "the whole slot is written";
  delete method;
}

TEST(SelfPointer, OnlyAMissingObjectIsRefused) {
  int self = 0;
  vesk::factory::impl::validateSelfPointer(&self);
  EXPECT_THROW(vesk::factory::impl::validateSelfPointer(nullptr), vesk::VeskError);
  EXPECT_THROW(vesk::factory::impl::validateSelfPointer(nullptr, Invoker()), vesk::VeskError);
}

template <class Make>
void expectRecordFromCalloc(Make make) {
  int const before = sCallocs;
  delete make();
  EXPECT_EQ(sCallocs, before + 1);
  sIsOutOfMemory = true;
  EXPECT_THROW(make(), std::bad_alloc);
  sIsOutOfMemory = false;
}

TEST(HostRecords, ComeFromCallocAndRaiseOutOfMemory) {
  expectRecordFromCalloc([] { return new TestClass("C", nullptr); });
  expectRecordFromCalloc([] { return new MethodImpl("m", 0, ""); });
  expectRecordFromCalloc([] { return new vesk::factory::FunctionInfo("f", 0); });
  expectRecordFromCalloc([] { return new TestProperty("p", "char"); });
  expectRecordFromCalloc([] { return new TestPackage("P", nullptr); });
}

}  // namespace
