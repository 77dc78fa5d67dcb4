#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>

#include "kelm/DeviantRegistry.h"
#include "kelm/Model.h"
#include "uml_metamodel_mi/support/Recording.h"
#include "uml_metamodel_mi/support/Script.h"
#include "vesk/factory/BindingRegistry.h"

// Every record that the libraries hand to the host comes from calloc, all else from malloc; here the n-th
// allocation fails, of records alone or of both.

extern "C" void* __libc_calloc(std::size_t aCount, std::size_t aSize);
extern "C" void* __libc_malloc(std::size_t aSize);
extern "C" void __libc_free(void* aMemory);

namespace {

/// Failures to come: counts down to the one that fails.
int sUntilFailure = -1;
bool sHasFailed = false;
bool sIsCounting = false;
bool sOfRecordsAlone = true;
long sLive = 0;

bool isTheOneThatFails() {
  if (sUntilFailure <= 0 || --sUntilFailure > 0) return false;
  sHasFailed = true;
  return true;
}

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

/// Goes on as if none of the living records were there.
void forgetAll() {
  std::fill_n(sRecords, kMost, nullptr);
  sLive = 0;
}

}  // namespace

extern "C" void* calloc(std::size_t aCount, std::size_t aSize) {
  if (!sIsCounting) return __libc_calloc(aCount, aSize);
  if (isTheOneThatFails()) return nullptr;
  void* const memory = __libc_calloc(aCount, aSize);
  remember(memory);
  return memory;
}

extern "C" void* malloc(std::size_t aSize) {
  if (sIsCounting && !sOfRecordsAlone && isTheOneThatFails()) return nullptr;
  return __libc_malloc(aSize);
}

extern "C" void free(void* aMemory) {
  if (sLive > 0 && aMemory != nullptr) forget(aMemory);
  __libc_free(aMemory);
}

namespace umlmm::mi {
namespace {

using umlmm::testing::call;
using umlmm::testing::make;
using umlmm::testing::RecordingPackage;
using umlmm::testing::Value;
using vesk::host::ClassRecord;

/// Runs `aAction` with the n-th allocation failing; whether that ended it.
template <class Action>
bool attempt(int aNth, Action aAction) {
  sUntilFailure = aNth;
  sHasFailed = false;
  sIsCounting = true;
  bool threw = false;
  try {
    aAction();
  } catch (std::bad_alloc const&) {
    threw = true;
  } catch (...) {
    sIsCounting = false;
    throw;
  }
  sIsCounting = false;
  EXPECT_TRUE(sHasFailed || !threw) << "a bad allocation that nobody caused";
  return threw;
}

/// The same; the failure must end the action.
template <class Action>
bool fails(int aNth, Action aAction) {
  bool const threw = attempt(aNth, aAction);
  EXPECT_EQ(threw, sHasFailed) << "a failure that was swallowed";
  return threw;
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

constexpr int kMostAllocations = 5000;
using Texts = std::vector<std::string>;

/// What a class tells of itself.
Texts describe(ClassRecord& aClass) {
  Texts texts;
  for (ClassRecord const* const cls : aClass.linearization()) texts.emplace_back(cls->fName.view());
  for (auto const& property : aClass.properties())
    texts.push_back(property.fName.c_str() + std::string(": ") + property.fTypeName.c_str());
  for (auto const& method : aClass.methods()) texts.push_back(method.text());
  return texts;
}

/// Fills the class with the n-th allocation failing, for each n until none does, and again after each
/// failure: nothing is left of the attempt.
void sweepFilling(vesk::VeskInterned aName, vesk::VeskClassInfo& aInfo, Texts const& aUndisturbed) {
  sHasFailed = true;
  for (int nth = 1; sHasFailed; ++nth) {
    ASSERT_LT(nth, kMostAllocations);
    long const live = sLive;
    {
      ClassRecord scratch(aName, &aInfo, nullptr, 2);
      bool const threw = attempt(nth, [&] { scratch.ensureFilled(); });
      ASSERT_EQ(scratch.state(), threw ? ClassRecord::State::Announced : ClassRecord::State::Filled);
      ASSERT_TRUE(!threw || sLive == live) << aName.c_str() << " at " << nth;
      Texts const described = describe(scratch);
      ASSERT_EQ(Texts(described.begin() + 1, described.end()), aUndisturbed)
          << aName.c_str() << " at " << nth;
    }
    ASSERT_EQ(sLive, live) << aName.c_str() << " at " << nth;
  }
}

TEST_F(Faults, aClassOfEachKindIsFilledOnceMemoryIsBackAndNothingIsLost) {
  sOfRecordsAlone = false;
  for (char const* name : {"umlmm.ImmutableClass",
                           "umlmm.Class",
                           "umlmm.AssociationMetaProperty",
                           "umlmm.SequenceOfClass",
                           "umlmm.SequenceOfImmutableClass",
                           "umlmm.ImmutableSequenceOfClass",
                           "umlmm.ImmutableSequenceOfImmutableClass",
                           "umlmm.ClassIterator",
                           "umlmm.ImmutableClassImmutableIterator",
                           "umlmm.AggregationKind",
                           "umlmm.SequenceOfInteger",
                           "umlmm.ImmutableSequenceOfString",
                           "umlmm.BooleanIterator",
                           "umlmm.StringImmutableIterator",
                           "umlmm.Factory",
                           "umlmm.ImmutableFactory",
                           "Kelm.ImmutableClassObject",
                           "Kelm.ClassObject",
                           "Kelm.Model",
                           "Kelm.ImmutableProperty",
                           "Kelm.ImmutableSequenceOfString"}) {
    // The first attempts fill superclasses on the way.
    ClassRecord& real = umlmm::testing::classNamed(name);
    for (int nth = 1; real.state() != ClassRecord::State::Filled && nth < kMostAllocations; ++nth)
      attempt(nth, [&] { real.ensureFilled(); });
    Texts const described = describe(real);
    sweepFilling(real.fName, real.info(), Texts(described.begin() + 1, described.end()));
    if (HasFatalFailure()) break;
  }
  sOfRecordsAlone = true;
  forgetAll();
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
