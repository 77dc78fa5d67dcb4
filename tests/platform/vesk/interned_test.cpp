#include "vesk/interned.h"

#include <gtest/gtest.h>

namespace {

using namespace vesk::internal;

TEST(Interned, EqualTextsHaveOneTokenAndTheEmptyTextHasNone) {
  std::string const long1(200, 'l'), long2(200, 'l');
  EXPECT_EQ(makeInterned(std::string(long1)), makeInterned(std::string(long2)));
  EXPECT_EQ(intern("umlmm.Comment"), makeInterned("umlmm.Comment"));
  EXPECT_FALSE(intern("umlmm.Comment") == intern("umlmm.Commen"));
  EXPECT_TRUE(makeInterned(std::string()).empty());
  EXPECT_TRUE(intern(static_cast<char const*>(nullptr)).empty());
  EXPECT_STREQ(makeInterned(std::string()).c_str(), "");
}

TEST(Interned, LiteralsAndLaterTextsKeepTheirTokens) {
  auto const token = interned<"literal.Name">();
  EXPECT_TRUE(findInterned("not interned by anyone").empty());
  for (int i = 0; i < 5000; ++i) static_cast<void>(intern(std::to_string(i) + "x"));
  EXPECT_EQ(token, intern("literal.Name"));
  EXPECT_EQ(interned<"literal.Name">(), token);
  EXPECT_EQ(findInterned("4999x").view(), "4999x");
}

}  // namespace
