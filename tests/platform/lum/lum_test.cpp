#include "lum/lum.h"

#include <gtest/gtest.h>

#include <string>

#include "lum/host_word.h"

namespace {

int format(char* buffer, std::size_t size, char const* text, ...) {
  std::va_list arguments;
  va_start(arguments, text);
  int const length = lumVSNprintf(buffer, size, text, arguments);
  va_end(arguments);
  return length;
}

TEST(Lum, FormattedTextIsCutToTheBufferAndStillCountsWhole) {
  char buffer[6];
  EXPECT_EQ(format(buffer, sizeof(buffer), "%d-%s", 42, "long"), 7);
  EXPECT_STREQ(buffer, "42-lo");
}

TEST(Lum, PrintedTextGoesToTheSinkUntilItIsRemoved) {
  std::string printed;
  lumSetPrintSink([](char const* text, std::size_t length,
                     void* to) { static_cast<std::string*>(to)->append(text, length); },
                  &printed);
  std::string const big(5000, 'x');
  EXPECT_EQ(lumPrintf("%s\n", big.c_str()), 5001);
  lumSetPrintSink(nullptr, nullptr);
  EXPECT_EQ(printed, big + "\n");

  testing::internal::CaptureStdout();
  lumPrintf("%s", "outside");
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "outside");
  EXPECT_EQ(printed.size(), big.size() + 1);
}

TEST(HostWord, TaggedIdsLeadBackToTheirRecordAndPlainAddressesAreNotTagged) {
  struct Record {
    lum::HostWord fWord;
    int fOther = 0;
  } record;
  void* id = lum::tagId(&record.fWord);
  EXPECT_TRUE(lum::isTaggedId(id));
  EXPECT_FALSE(lum::isTaggedId(&record));
  EXPECT_EQ(lum::hostWordOf(id), &record.fWord);
}

}  // namespace
