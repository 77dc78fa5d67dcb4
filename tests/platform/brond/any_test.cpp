#include "brond/any.h"

#include <gtest/gtest.h>

#include <string>

#include "brond/TypeInfo.h"

namespace {

using Brond::any;
using Brond::any_cast;
using Brond::bad_any_cast;

TEST(Any, CopiesItsValueAndComparesByIt) {
  any const text{std::string("a")};
  any copy = text;
  EXPECT_EQ(any_cast<std::string>(copy), "a");
  EXPECT_NE(&any_cast<std::string>(copy), &any_cast<std::string>(text));
  EXPECT_TRUE(copy == text);
  copy = any(std::string("b"));
  EXPECT_FALSE(copy == text);
  EXPECT_FALSE(any(1) == text);
  EXPECT_FALSE(text == any());
  EXPECT_TRUE(any() == any());
}

TEST(Any, HolderIsNotEqualToNothing) {
  any const number(7);
  EXPECT_FALSE(number.content()->equals(nullptr));
  EXPECT_EQ(number.content()->pointerLevel(), 0);
  EXPECT_EQ(number.content()->type(), typeid(int));
}

TEST(Any, CastOfAnEmptyHolderOrAnotherTypeFails) {
  EXPECT_THROW(any_cast<int>(any()), bad_any_cast);
  EXPECT_THROW(any_cast<unsigned>(any(1)), std::bad_cast);
}

class DigitInfo : public Brond::TypeInfo {
 public:
  any convertFromString(std::string const& text, Brond::ErrorHolder& error) const override {
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '9') return any(text[0] - '0');
    error.setError("not a digit: " + text);
    return any();
  }
  std::string convertToString(any const& value) const override {
    return std::to_string(any_cast<int>(value));
  }
};

TEST(TypeInfo, ReportsARejectedTextInTheHolder) {
  DigitInfo const info;
  Brond::ErrorHolder error;
  any const digit = info.convertFromString("4", error);
  EXPECT_FALSE(error.hasError());
  EXPECT_EQ(info.convertToString(digit), "4");
  EXPECT_TRUE(info.convertFromString("x", error).empty());
  EXPECT_TRUE(error.hasError());
  EXPECT_EQ(error.text(), "not a digit: x");
}

}  // namespace
