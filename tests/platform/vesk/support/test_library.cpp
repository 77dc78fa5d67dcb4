#include "TestClasses.h"

namespace {
int sTerminations = 0;
}

extern "C" UMLMM_API void SarnInitialize_vesk_test_library() {
  using namespace vesk::testing;
  addPackage("loaded",
             [](vesk::VeskPackage& package) { package.addClass(new TestClass("Thing", nullptr), 2); });
}

extern "C" UMLMM_API void SarnTerminate_vesk_test_library() { ++sTerminations; }

extern "C" UMLMM_API int vesk_test_library_terminations() { return sTerminations; }
