#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "kelm/Model.h"
#include "uml_metamodel_mi/package.h"
#include "uml_metamodel_mi/support/Recording.h"

// Class infos and methods come from calloc; this one fails when it is told to. Sanitizers bring an allocator
// of their own, which can't be mixed with it.
#if defined(__SANITIZE_ADDRESS__)
#define UMLMM_CALLOC_FAILS 0
#else
#define UMLMM_CALLOC_FAILS 1
#endif

namespace {
int sCallsLeft = -1;
}

#if UMLMM_CALLOC_FAILS
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* calloc(std::size_t count, std::size_t size) noexcept {
  if (sCallsLeft >= 0 && sCallsLeft-- == 0) return nullptr;
  return __libc_calloc(count, size);
}
#endif

namespace umlmm::mi {
namespace {

/// Runs `aBody` with the n-th calloc failing, for each n from 0 on until a run has no failure, and calls
/// `aCheck` after each failing run with n. Answers how many runs failed.
int sweep(int aMost, auto const& aBody, auto const& aCheck) {
  for (int n = 0; n < aMost; ++n) {
    sCallsLeft = n;
    bool failed = false;
    try {
      aBody();
    } catch (std::bad_alloc const&) {
      failed = true;
    }
    sCallsLeft = -1;
    if (!failed) return n;
    aCheck(n);
  }
  return aMost;
}

class Memory : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!UMLMM_CALLOC_FAILS) GTEST_SKIP() << "calloc belongs to the sanitizer";
    Kelm::initialize();
  }
};

TEST_F(Memory, classesAnnouncedBeforeAFailureStayAnnounced) {
  std::unique_ptr<testing::RecordingPackage> package;
  int const failures = sweep(
      60,
      [&] {
        package = std::make_unique<testing::RecordingPackage>();
        umlmmStaticInitializePackage(package.get());
      },
      [&](int n) { EXPECT_EQ(package->fClasses.size(), static_cast<std::size_t>(n)); });
  EXPECT_EQ(failures, 60);
}

TEST_F(Memory, aClassKeepsTheMethodsAddedBeforeAFailure) {
  testing::RecordingPackage package;
  umlmmStaticInitializePackage(&package);
  for (char const* name :
       {"Association", "MessageSort", "SequenceOfString", "StringIterator", "ImmutableFactory"}) {
    std::unique_ptr<testing::RecordingClass> cls;
    int const failures = sweep(
        1000,
        [&] {
          cls = std::make_unique<testing::RecordingClass>();
          package.find(name)->initializeClass(cls.get(), nullptr);
        },
        [&](int n) { EXPECT_EQ(cls->fMethods.size(), static_cast<std::size_t>(n)) << name; });
    EXPECT_EQ(static_cast<std::size_t>(failures), cls->fMethods.size()) << name;
  }
}

}  // namespace
}  // namespace umlmm::mi
