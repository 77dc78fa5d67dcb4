#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "kelm/DeviantRegistry.h"
#include "kelm/Model.h"
#include "uml_metamodel_mi/support/Recording.h"
#include "uml_metamodel_mi/support/Script.h"
#include "vesk/factory/BindingRegistry.h"

// Every record that the libraries hand to the host comes from calloc; here the n-th one fails.

extern "C" void* __libc_calloc(std::size_t aCount, std::size_t aSize);
extern "C" void __libc_free(void* aMemory);

namespace {

/// Failures to come: counts down to the one that fails.
int sUntilFailure = -1;
bool sHasFailed = false;
bool sIsCounting = false;
long sLive = 0;

constexpr std::size_t kMost = 1 << 16;
void* sRecords[kMost];

std::size_t placeOf(void* aMemory) { return (reinterpret_cast<std::uintptr_t>(aMemory) >> 4) % kMost; }

void remember(void* aMemory) {
  std::size_t place = placeOf(aMemory);
  while (sRecords[place] != nullptr && sRecords[place] != sRecords) place = (place + 1) % kMost;
  sRecords[place] = aMemory;
  ++sLive;
}

void forget(void* aMemory) {
  for (std::size_t place = placeOf(aMemory); sRecords[place] != nullptr; place = (place + 1) % kMost) {
    if (sRecords[place] != aMemory) continue;
    sRecords[place] = sRecords;  // a removed place: lookups go on behind it
    --sLive;
    return;
  }
}

}  // namespace

extern "C" void* calloc(std::size_t aCount, std::size_t aSize) {
  if (!sIsCounting) return __libc_calloc(aCount, aSize);
  if (sUntilFailure > 0 && --sUntilFailure == 0) {
    sHasFailed = true;
    return nullptr;
  }
  void* const memory = __libc_calloc(aCount, aSize);
  remember(memory);
  return memory;
}

extern "C" void free(void* aMemory) {
  if (sLive > 0 && aMemory != nullptr) forget(aMemory);
  __libc_free(aMemory);
}

namespace umlmm::mi {
namespace {

using umlmm::testing::call;
using umlmm::testing::make;
using umlmm::testing::RecordingClass;
using umlmm::testing::RecordingPackage;
using umlmm::testing::Value;

/// Runs `aAction` with the n-th record failing; whether one failed.
template <class Action>
bool fails(int aNth, Action aAction) {
  sUntilFailure = aNth;
  sHasFailed = false;
  sIsCounting = true;
  try {
    aAction();
  } catch (std::bad_alloc const&) {
    sIsCounting = false;
    EXPECT_TRUE(sHasFailed) << "a bad allocation that nobody caused";
    return true;
  } catch (...) {
    sIsCounting = false;
    throw;
  }
  sIsCounting = false;
  EXPECT_FALSE(sHasFailed) << "a failure that was swallowed";
  return false;
}

class Faults : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { Kelm::initialize(); }
};

TEST_F(Faults, theAnnouncingPassLosesNothing) {
  for (int nth = 1; nth <= 1885; nth += nth < 50 ? 1 : 37) {
    RecordingPackage package;
    ASSERT_TRUE(fails(nth, [&] { umlmmStaticInitializePackage(&package); })) << nth;
    EXPECT_EQ(static_cast<int>(package.fClasses.size() + package.fFunctions.size()), nth - 1);
    package.fClasses.clear();
    package.fFunctions.clear();
    ASSERT_EQ(sLive, 0) << nth;
  }
}

TEST_F(Faults, fillingAClassOfEachKindLosesNothing) {
  RecordingPackage package;
  umlmmStaticInitializePackage(&package);
  for (char const* name :
       {"ImmutableClass", "Class", "ClassMetaProperty", "SequenceOfClass", "SequenceOfImmutableClass",
        "ImmutableSequenceOfClass", "ImmutableSequenceOfImmutableClass", "ClassIterator",
        "ImmutableClassImmutableIterator", "AggregationKind", "SequenceOfInteger",
        "ImmutableSequenceOfString", "BooleanIterator", "StringImmutableIterator", "Factory",
        "ImmutableFactory"}) {
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
      RecordingClass cls;
      failed = fails(nth, [&] { package.find(name)->initializeClass(&cls, vesk::host::client()); });
      if (failed) {
        EXPECT_EQ(cls.fMethods.size() + cls.fProperties.size(), static_cast<std::size_t>(nth - 1)) << name;
      }
      cls.fMethods.clear();
      cls.fProperties.clear();
      ASSERT_EQ(sLive, 0) << name << " at " << nth;
    }
  }
}

TEST_F(Faults, callsWritesAndListChangesLeaveNothingHalfBound) {
  Value const model = call("umlmm.Factory", "createNewModel");
  Value const package = make("umlmm.Package", model);
  // Classes are filled by a first round: what is swept is the work itself.
  auto const work = [&] {
    Value const element = make("umlmm.Class", model);
    element.set("name", std::u16string(u"Order"));
    package.get("packagedElement").call("append", element);
    package.get("packagedElement").call("clear");
    element.call("destroy");
  };
  work();
  bool failed = true;
  for (int nth = 1; failed; ++nth) {
    std::size_t const bindings = vesk::factory::basic::BindingRegistry::size();
    std::size_t const records = Kelm::DeviantRegistry::liveRecords();
    failed = fails(nth, work);
    EXPECT_EQ(vesk::factory::basic::BindingRegistry::size(), bindings);
    EXPECT_EQ(Kelm::DeviantRegistry::liveRecords(), records);
    EXPECT_EQ(sLive, 0);
  }
}

}  // namespace
}  // namespace umlmm::mi
