#include "kelm/String.h"

#include <gtest/gtest.h>

#include "kelm/values.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::String;
using Kelm::StringObject;

TEST(StringObject, TextIsInlineAndTerminated) {
  StringObject const* const record = StringObject::make(std::u16string_view(u"ab\0c", 4));
  EXPECT_EQ(record->text(), std::u16string_view(u"ab\0c", 4));
  EXPECT_EQ(record->data()[4], u'\0');
  EXPECT_EQ(record->numRef(), 1);
  EXPECT_EQ(record->incRef(), 2);
  EXPECT_EQ(record->decRef(), 1);
  EXPECT_EQ(record->decRef(), 0);

  EXPECT_EQ(StringObject::make(u""), StringObject::empty());
  EXPECT_EQ(StringObject::empty()->data()[0], u'\0');
  EXPECT_GE(StringObject::empty()->decRef(), 1);
}

TEST(StringObject, IsToldFromOtherObjects) {
  String const text(u"x");
  EXPECT_EQ(Kelm::asString(Kelm::Object(text.record(), Kelm::Deviant())), text.record());
  EXPECT_EQ(Kelm::asString(Kelm::Object(new CountedObject, Kelm::Deviant())), nullptr);
  EXPECT_EQ(Kelm::asString(Kelm::Object()), nullptr);
}

TEST(String, CopiesShareTheRecordAndNotTheNarrowCopy) {
  String const text(u"text");
  EXPECT_FALSE(text.hasNarrow());
  EXPECT_STREQ(text.narrow(), "text");
  String copy(text);
  EXPECT_EQ(copy.record(), text.record());
  EXPECT_FALSE(copy.hasNarrow());
  EXPECT_EQ(text.record()->numRef(), 2);

  copy.narrow();
  copy.assign(copy.text().substr(1));
  EXPECT_EQ(copy.text(), u"ext");
  EXPECT_FALSE(copy.hasNarrow());
  EXPECT_STREQ(copy.narrow(), "ext");
  EXPECT_EQ(text.text(), u"text");

  String moved(std::move(copy));
  EXPECT_TRUE(copy.empty());
  EXPECT_TRUE(moved.hasNarrow());
  moved = moved;
  EXPECT_EQ(moved.text(), u"ext");
  EXPECT_TRUE(String(nullptr).empty());
}

TEST(String, ComparesByCodeUnits) {
  EXPECT_TRUE(String(u"a") < String(u"b"));
  EXPECT_FALSE(String(u"b") < String(u"b"));
  EXPECT_EQ(String(u"same"), String(u"same"));
  EXPECT_GT(String(u"ab").compare(String(u"a")), 0);
}

struct Spelling {
  std::u16string fWide;
  std::string fNarrow;
};

class Utf : public testing::TestWithParam<Spelling> {};

TEST_P(Utf, GoesThereAndBack) {
  EXPECT_EQ(Kelm::toUtf8(GetParam().fWide), GetParam().fNarrow);
  EXPECT_EQ(Kelm::toUtf16(GetParam().fNarrow), GetParam().fWide);
  EXPECT_EQ(String::to_string(GetParam().fWide), GetParam().fNarrow);
}

INSTANTIATE_TEST_SUITE_P(
    Borders, Utf,
    testing::Values(Spelling{u"", ""}, Spelling{u"\u007F\u0080", "\x7F\xC2\x80"},
                    Spelling{u"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},
                    Spelling{u"\uD7FF\uE000\uFFFF", "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
                    Spelling{u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
                    Spelling{std::u16string(u"a\0b", 3), std::string("a\0b", 3)}));

TEST(Utf, WhatIsMalformedIsReplaced) {
  std::string const mark = "\xEF\xBF\xBD";
  EXPECT_EQ(Kelm::toUtf8(u"\xD800"), mark);
  EXPECT_EQ(Kelm::toUtf8(u"a\xDC00\xD800z"), "a" + mark + mark + "z");
  EXPECT_EQ(Kelm::toUtf8(u"\xD800\xD83D\xDE00"), mark + "\xF0\x9F\x98\x80");

  EXPECT_EQ(Kelm::toUtf16("\x80z"), u"\uFFFDz") << "stray follower";
  EXPECT_EQ(Kelm::toUtf16("\xE2\x82"), u"\uFFFD") << "cut";
  EXPECT_EQ(Kelm::toUtf16("\xE2\x82z"), u"\uFFFDz") << "broken off";
  EXPECT_EQ(Kelm::toUtf16("\xC0\xAF"), u"\uFFFD\uFFFD") << "overlong";
  EXPECT_EQ(Kelm::toUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "surrogate";
  EXPECT_EQ(Kelm::toUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "past the last plane";
}

}  // namespace
