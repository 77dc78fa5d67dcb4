#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

#include "model_files/files.h"
#include "uml_metamodel/umlmm.h"
#include "uml_metamodel/umlmm/models.h"

// The n-th allocation of whatever kind fails, while a file is read or written.

extern "C" void* __libc_malloc(std::size_t aSize);
extern "C" void* __libc_calloc(std::size_t aCount, std::size_t aSize);
extern "C" void* __libc_memalign(std::size_t aAlignment, std::size_t aSize);
extern "C" void __libc_free(void* aMemory);

namespace {

int sUntilFailure = 0;
bool sHasFailed = false;
long sLive = 0;

bool fails() {
  if (sUntilFailure == 0 || --sUntilFailure > 0) return false;
  return sHasFailed = true;
}
void* counted(void* aMemory) {
  if (aMemory != nullptr) ++sLive;
  return aMemory;
}

}  // namespace

extern "C" void* malloc(std::size_t aSize) { return fails() ? nullptr : counted(__libc_malloc(aSize)); }
extern "C" void* calloc(std::size_t aCount, std::size_t aSize) {
  return fails() ? nullptr : counted(__libc_calloc(aCount, aSize));
}
extern "C" void* aligned_alloc(std::size_t aAlignment, std::size_t aSize) {
  return fails() ? nullptr : counted(__libc_memalign(aAlignment, aSize));
}
extern "C" void free(void* aMemory) {
  if (aMemory != nullptr) --sLive;
  __libc_free(aMemory);
}

namespace umlmm::files {
namespace {

/// With references, stereotypes, what is not understood, and another encoding.
constexpr char kText[] =
    "<?xml version='1.0' encoding='windows-1252'?>\n"
    "<xmi:XMI xmlns:xmi='http://www.omg.org/spec/XMI/20131001' xmlns:P='http://p' "
    "xmlns:uml='http://www.omg.org/spec/UML/20131001'>\n"
    " <uml:Model xmi:id='m' name='caf\xE9'>\n"
    "  <packagedElement xmi:type='uml:Class' xmi:id='c' name='Order'><odd><x/></odd>\n"
    "   <ownedAttribute xmi:id='a'><type xmi:idref='d'/></ownedAttribute>\n"
    "   <ownedAttribute xmi:id='b'><type "
    "href='http://www.omg.org/spec/UML/20131001/PrimitiveTypes.xmi#String'/>"
    "<upperValue xmi:type='uml:LiteralUnlimitedNatural' xmi:id='u' value='*'/></ownedAttribute>\n"
    "   <ownedAttribute xmi:id='e'><type xmi:idref='gone'/></ownedAttribute>\n"
    "  </packagedElement>\n"
    "  <packagedElement xmi:type='uml:Class' xmi:id='d' name='Item'/>\n"
    " </uml:Model>\n"
    " <P:S base_Class='c' v='1'/><xmi:Extension/>\n"
    "</xmi:XMI>\n";

class Faults : public ::testing::Test {
 protected:
  Faults() { std::ofstream(fPath, std::ios::binary) << kText; }
  ~Faults() override { std::filesystem::remove(fPath); }

  std::string bytes() const {
    std::ifstream file(fPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Runs it with the n-th allocation failing; whether it came to its end.
  template <class Action>
  bool failing(int aNth, Action aAction) {
    bool isDone = false;
    sHasFailed = false;
    sUntilFailure = aNth;
    try {
      aAction();
      isDone = true;
    } catch (std::bad_alloc const&) {
    } catch (std::exception const& other) {
      sUntilFailure = 0;
      ADD_FAILURE() << aNth << ": " << other.what();
    }
    sUntilFailure = 0;
    EXPECT_TRUE(isDone || sHasFailed) << aNth;
    return isDone;
  }

  std::string const fPath =
      (std::filesystem::temp_directory_path() / ("umlmm-faults-" + std::to_string(::getpid()) + ".uml"))
          .string();
};

TEST_F(Faults, AReadingThatFailsLeavesNothing) {
  auto const read = [&] {
    Kelm::Model const model = load(fPath);
    report(model).page();
    if (unknown(byId(model, "c")).size() != 1 || stereotypes(byId(model, "c")).front().fName != "S")
      throw std::logic_error("something is missing");
  };
  // The record of a variant outlives its model, and lists of such grow now and then: the least of some
  // counts.
  auto const left = [](auto aAction) {
    long least = LONG_MAX;
    for (int times = 0; times < 3; ++times) {
      long const before = sLive;
      aAction();
      least = std::min(least, sLive - before);
    }
    return least;
  };
  read();
  long const permanent = left(read);
  sHasFailed = true;
  for (int nth = 1; sHasFailed; ++nth) ASSERT_LE(left([&] { failing(nth, read); }), permanent) << nth;
}

TEST_F(Faults, ASavingThatFailsLeavesTheFileAndTheModel) {
  Kelm::Model const model = load(fPath);
  cast<Class>(byId(model, "d")).setName(String(u"Thing"));
  Class::create(model).setName(String(u"new"));
  sHasFailed = true;
  for (int nth = 1; sHasFailed; ++nth) {
    bool const isDone = failing(nth, [&] { save(model); });
    ASSERT_EQ(bytes() == kText, !isDone) << nth;
    ASSERT_EQ(cast<Class>(byId(model, "c")).getName().to_string(), "Order") << nth;
  }
  EXPECT_EQ(bytes(), textOf(model));
  EXPECT_EQ(report(load(fPath)).fElementCount, report(model).fElementCount + 1);
}

}  // namespace
}  // namespace umlmm::files
