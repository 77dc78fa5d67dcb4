#include "kelm/Asserter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstring>

#include "platform/kelm/support/failure.h"

namespace {

using Kelm::Asserter;
using Kelm::Exception;

std::string handled(Kelm::AsserterEx<Exception> const& aReporter, char const* aExtra = "") {
  return failureOf([&] { aReporter.handle("some/File", 42, aExtra); });
}

TEST(Asserter, FormatsTheMessageWithItsPlace) {
  EXPECT_EQ(handled(Asserter::Make<Exception>(false, "%d of %s", 3, "four")),
            "Assertion failed: 3 of four at some/File:42: ");
  EXPECT_EQ(handled(Asserter::MakeAlways<Exception>("%s", "100%"), "more"),
            "Assertion failed: 100% at some/File:42: more");
}

TEST(Asserter, AConditionThatHoldsRaisesNothingAndLeavesTheBuffer) {
  handled(Asserter::MakeAlways<Exception>("kept"));
  EXPECT_EQ(handled(Asserter::Make<Exception>(true, "other")), "");
  EXPECT_STREQ(Asserter::fLogBuf, "kept");
}

TEST(Asserter, LongMessagesAreCut) {
  std::string const text(5000, 'x');
  EXPECT_EQ(handled(Asserter::MakeAlways<Exception>("%s", text.c_str())),
            "Assertion failed: " + text.substr(0, 4096) + " at some/File:42: ");
}

TEST(Asserter, AFailingFormatterLeavesAnEmptyMessage) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
  std::memset(Asserter::fLogBuf, 'x', sizeof Asserter::fLogBuf);
  EXPECT_EQ(handled(Asserter::MakeAlways<Exception>("before %ls", L"\x20AC")),
            "Assertion failed:  at some/File:42: ");
  EXPECT_TRUE(std::all_of(std::begin(Asserter::fLogBuf), std::end(Asserter::fLogBuf),
                          [](char aByte) { return aByte == 0; }));
}

TEST(Asserter, HelpersRaiseTheirTextsAtTheCallersPlace) {
  int const line = __LINE__ + 1;
  std::string const text = failureOf([] { Kelm::raiseFailure("a % sign", "some/Source"); });
  EXPECT_EQ(text, "Assertion failed: a % sign at some/Source:" + std::to_string(line) + ": ");
  EXPECT_TRUE(tells(failureOf([] { Kelm::raiseNullReference("kelm/Kelm/Object_h"); }),
                    "Cannot access NULL ref. Use isValid() before calling methods", "kelm/Kelm/Object_h"));
  EXPECT_TRUE(tells(failureOf([] { kelm::Error_IncorrectType("Integer"); }),
                    "Incorrect type: the value is not of type 'Integer'", "kelm/Kelm/Error"));
}

}  // namespace
