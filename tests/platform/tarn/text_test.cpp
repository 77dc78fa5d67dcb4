#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tarn/tarn.h"

namespace {

struct Destroy {
  void operator()(tarnArray* array) const { tarnDestroyArray(array); }
  void operator()(char* text) const { tarnFree(text); }
};
using Array = std::unique_ptr<tarnArray, Destroy>;
using Text = std::unique_ptr<char, Destroy>;

struct Row {
  char16_t const* fWide;
  char const* fNarrow;
};

class TextRoundTrip : public testing::TestWithParam<Row> {};

TEST_P(TextRoundTrip, BothWays) {
  auto const [wide, narrow] = GetParam();
  Array const fromWide(tarnCreateString_UTF16(wide));
  Array const fromNarrow(tarnCreateString(narrow));
  EXPECT_EQ(tarn::get_ustring(fromWide.get()), wide);
  EXPECT_EQ(tarn::get_ustring(fromNarrow.get()), wide);
  EXPECT_STREQ(Text(tarnArrayToString_UTF8(fromWide.get())).get(), narrow);
  EXPECT_STREQ(Text(tarnArray2String(fromNarrow.get())).get(), narrow);
}

char16_t const kLoneHigh[] = {u'a', 0xD800, 0};
char16_t const kReversedPair[] = {0xDC00, 0xD800, 0};

INSTANTIATE_TEST_SUITE_P(Texts, TextRoundTrip,
                         testing::Values(Row{u"", ""}, Row{u"body", "body"},
                                         Row{u"\u00e9\u07ff\u0800\uffff", "\u00e9\u07ff\u0800\uffff"},
                                         Row{u"\U00010000 \U0010ffff", "\U00010000 \U0010ffff"},
                                         Row{kLoneHigh, "a\xED\xA0\x80"},
                                         Row{kReversedPair, "\xED\xB0\x80\xED\xA0\x80"}));

TEST(Text, BrokenNarrowTextReadsAsReplacementCharacters) {
  for (char const* broken : {"\x80", "\xC3", "\xC0\xAF", "\xF5\x80", "\xE2\x82"}) {
    Array const array(tarnCreateString(broken));
    EXPECT_NE(tarn::get_ustring(array.get()).find(u'\uFFFD'), std::u16string::npos) << broken;
  }
}

TEST(Text, LengthCountsZerosAndAnEmptyTextIsAnEmptyArray) {
  Array const zeros(tarnCreateStringOfLength(u"a\0b", 3));
  EXPECT_EQ(tarn::get_ustring(zeros.get()), std::u16string(u"a\0b", 3));
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateString("")).get()), 0u);
  std::u16string const big(10000, u'z');
  EXPECT_EQ(tarn::get_ustring(Array(tarnCreateString_UTF16(big.c_str())).get()), big);
}

TEST(Text, ArraysOfOtherClassesHaveNoText) {
  Array const number(tarnCreateNumericMatrix(1, 1, int32ClassId, 0));
  EXPECT_EQ(tarn::get_ustring(number.get()), u"");
  EXPECT_EQ(tarn::get_ustring(nullptr), u"");
}

}  // namespace
