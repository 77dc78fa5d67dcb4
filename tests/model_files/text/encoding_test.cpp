#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "model_files/text/SourceText.h"

namespace {

using namespace std::string_literals;
using umlmm::files::Error;
using umlmm::files::SourceText;

std::string prolog(std::string const& aEncoding) {
  return "<?xml version='1.0' encoding='" + aEncoding + "'?>";
}

SourceText textOf(std::string const& aBytes) { return SourceText::fromBytes(aBytes, "a.uml"); }

/// ASCII, each character with zeros around it.
std::string wide(std::string const& aText, std::size_t aBefore, std::size_t aBehind) {
  std::string bytes;
  for (char const byte : aText) bytes += std::string(aBefore, '\0') + byte + std::string(aBehind, '\0');
  return bytes;
}

TEST(SourceText, TellsAndDecodesEncodings) {
  struct Row {
    std::string fBytes, fEncoding, fText;
  };
  std::string const sjis = prolog("Shift_JIS");
  for (Row const& row : std::vector<Row>{
           {"", "utf-8", ""},
           {"<a>\xC3\xA4</a>", "utf-8", "<a>ä</a>"},
           {"\xEF\xBB\xBF<a/>", "utf-8", "<a/>"},
           {"<a>\xE4</a>", "utf-8", "<a>\xE4</a>"},
           {"\n<?xml\tversion = '1.0'\r\nENCODING = \" Windows-1252 \" ?>\x80\x81", "windows-1252",
            "\n<?xml\tversion = '1.0'\r\nENCODING = \" Windows-1252 \" ?>€\xC2\x81"},
           {prolog("Cp1252") + "\x80", "cp1252", prolog("Cp1252") + "€"},
           {prolog("WINDOWS_1251") + "\xCF", "windows_1251", prolog("WINDOWS_1251") + "П"},
           {prolog("ISO-8859-1") + "\x80", "iso-8859-1", prolog("ISO-8859-1") + "\xC2\x80"},
           {prolog("US-ASCII") + "\xE4", "us-ascii", prolog("US-ASCII") + "ä"},
           {prolog("x-mac-roman") + "\x80", "x-mac-roman", prolog("x-mac-roman") + "Ä"},
           {sjis + "\x93\xFA\x87\x40", "shift_jis", sjis + "日①"},
           {prolog("GB2312") + "\xC4\xE3", "gb2312", prolog("GB2312") + "你"},
           {prolog("Big5") + "\xA4\xA4", "big5", prolog("Big5") + "中"},
           {prolog("ISO-2022-JP") + "\x1B$BF|\x1B(B", "iso-2022-jp", prolog("ISO-2022-JP") + "日"},
           {"\xFF\xFE<\0\xE4\0=\xD8\0\xDE"s, "utf-16le", "<ä😀"},
           {"\xFE\xFF\0<\0\xE4\xD8=\xDE\0"s, "utf-16be", "<ä😀"},
           {wide(prolog("utf-16"), 0, 1), "utf-16le", prolog("utf-16")},
           {wide(prolog("utf-8"), 1, 0), "utf-16be", prolog("utf-8")},
           {"\xFF\xFE\0\0"s + wide("<a/>", 0, 3), "utf-32le", "<a/>"},
           {wide("<a/>", 3, 0), "utf-32be", "<a/>"},
           {prolog("UTF-16"), "utf-8", prolog("UTF-16")},
           {"<?xml-stylesheet encoding='latin1'?>", "utf-8", "<?xml-stylesheet encoding='latin1'?>"},
           {"\x4C\x6F\xA7\x94\x93\x6F\x6E", "ibm037", "<?xml?>"},
       }) {
    SCOPED_TRACE(row.fBytes);
    SourceText const text = textOf(row.fBytes);
    EXPECT_EQ(text.encoding(), row.fEncoding);
    EXPECT_EQ(text.utf8(), row.fText);
    EXPECT_EQ(text.encoded(text.utf8()), row.fBytes);
    EXPECT_EQ(text.bytes(), row.fBytes.size());
  }
}

TEST(SourceText, EveryByteOfEveryEncodingComesBack) {
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  for (char const* name : {"utf-8", "us-ascii", "iso-8859-1", "iso-8859-3", "iso-8859-7", "iso-8859-15",
                           "windows-1250", "windows-1252", "windows-1253", "windows-1255", "windows-1258",
                           "koi8-r", "macintosh", "ibm437", "ibm857", "tis-620"}) {
    SCOPED_TRACE(name);
    SourceText const text = textOf(prolog(name) + all);
    EXPECT_EQ(text.encoded(text.utf8()), prolog(name) + all);
    EXPECT_TRUE(text.utf8().starts_with(prolog(name) + all.substr(0, 128)));
  }
}

/// U+10F000 and U+10FE80, which stand for such bytes, when an encoding has them itself.
std::string const kPrivate =
    "\xFC\xDB\0\xDC\xFF\xDB\x80\xDE\xDB\xFC\xDC\0\xDB\xFF\xDE\x80\x80\xFE\x10\0\0\x10\xFE\x80xxxx\xE3\x31\xF2\x32"s;

/// Most of these bytes are no text at all.
TEST(SourceText, MalformedBytesComeBack) {
  std::mt19937 random(7);
  std::vector<std::string> starts{"\xFF\xFE", "\xFE\xFF", "\xFF\xFE\0\0"s, "\0\0\xFE\xFF"s};
  for (char const* name :
       {"shift_jis", "gbk", "gb18030", "big5", "big5-hkscs", "euc-jp", "euc-kr", "johab"}) {
    starts.push_back(prolog(name));
  }
  for (std::string const& start : starts) {
    for (int i = 0; i < 40; ++i) {
      std::string bytes = start;
      for (int j = 0; j < 1000; ++j) bytes += static_cast<char>(random() >> 8);
      bytes += i % 2 == 0 ? "x" : kPrivate;
      SourceText const text = textOf(bytes);
      ASSERT_EQ(text.encoded(text.utf8()), bytes) << text.encoding() << " " << i;
      ASSERT_NO_THROW(textOf(std::string(text.utf8()))) << text.encoding();
    }
  }
  // An escape of bytes takes none with it that are text.
  EXPECT_TRUE(textOf(prolog("gbk") + "\x81<b>").utf8().ends_with("<b>"));
  // Nor after a character that is written otherwise than it would be here.
  EXPECT_TRUE(textOf(prolog("shift_jis") + "\x87\x90\x81<b>").utf8().ends_with("<b>"));
}

TEST(SourceText, CharactersThatTheEncodingLacksBecomeReferences) {
  struct Row {
    std::string fEncoding, fText, fBytes;
  };
  for (Row const& row : std::vector<Row>{{"windows-1252", "€ ä Ω", "\x80 \xE4 &#937;"},
                                         {"iso-8859-1", "€\xFF", "&#8364;&#65533;"},
                                         {"us-ascii", "ä", "\xE4"},
                                         {"shift_jis", "日😀x", "\x93\xFA&#128512;x"},
                                         {"iso-2022-jp", "日€", "\x1B$BF|\x1B(B&#8364;"},
                                         {"utf-8", "日\xFF", "日\xFF"}}) {
    EXPECT_EQ(textOf(prolog(row.fEncoding)).encoded(row.fText), row.fBytes) << row.fEncoding;
  }
}

std::string failureOf(std::string const& aBytes) {
  try {
    textOf(aBytes);
  } catch (Error const& failure) {
    return failure.what();
  }
  return {};
}

TEST(SourceText, RefusesEncodingsThatItCannotGiveBack) {
  for (char const* name : {"klingon", "latin1//TRANSLIT", "../x", "-", "utf\xE4"}) {
    EXPECT_EQ(failureOf(prolog(name)),
              "\"a.uml\" says that its encoding is \""s +
                  (name == "latin1//TRANSLIT"s ? "latin1//translit"
                   : name == "utf\xE4"s        ? "utf?"
                                               : name) +
                  "\", which is not known here; convert the file to UTF-8 and say so in its "
                  "first line");
  }
  EXPECT_NE(failureOf(prolog("iso-2022-jp") + "\x1B(B\x1B$B\x1B$BF|\x1B(B").find("without loss"),
            std::string::npos);
}

TEST(SourceText, PlacesCountLinesOfAnyEnds) {
  std::mt19937 random(3);
  std::string bytes = "\xEF\xBB\xBF";
  for (int i = 0; i < 30000; ++i) bytes += "\r\nxyz"[random() % (i < 10000 ? 2 : 5)];
  SourceText const text = textOf(bytes);
  for (int i = 0; i < 200; ++i) {
    std::size_t const offset = i == 0 ? text.utf8().size() : random() % text.utf8().size();
    std::size_t line = 1, column = 1;
    for (std::size_t j = 0; j < offset; ++j, ++column) {
      char const byte = text.utf8()[j];
      if (byte != '\n' && (byte != '\r' || text.utf8()[j + 1] == '\n')) continue;
      ++line;
      column = 0;
    }
    ASSERT_EQ(text.placeOf(offset).fLine, line) << offset;
    ASSERT_EQ(text.placeOf(offset).fColumn, column) << offset;
  }
  EXPECT_EQ(text.placeOf(0).fFile, "a.uml");
}

TEST(Errors, TellPlaceAndPath) {
  using umlmm::files::ReadError;
  EXPECT_STREQ(ReadError("is odd", {"a.uml", 3, 14}, "Model/Class").what(),
               "a.uml:3:14: is odd, in Model/Class");
  EXPECT_STREQ(ReadError("is odd", {"a.uml"}, "").what(), "a.uml: is odd");
  EXPECT_EQ(ReadError("", {"a.uml", 3, 14}, "Model").place().fColumn, 14U);
}

}  // namespace
