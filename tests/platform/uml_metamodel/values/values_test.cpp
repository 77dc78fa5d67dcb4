#include "kelm/values.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "brond/TypeInfo.h"
#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"

namespace {

/// Some values of each type, among them its limits.
template <class T>
std::vector<T> samples();
template <>
std::vector<umlmm::Boolean> samples() {
  return {false, true};
}
template <>
std::vector<umlmm::Integer> samples() {
  return {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
}
template <>
std::vector<umlmm::UnlimitedNatural> samples() {
  using umlmm::UnlimitedNatural;
  return {UnlimitedNatural(0), UnlimitedNatural(0x80000001), UnlimitedNatural(UnlimitedNatural::kUnlimited)};
}
template <>
std::vector<umlmm::String> samples() {
  return {umlmm::String(), umlmm::String(u"text"), umlmm::String(std::u16string(u"\xD800\0z", 3))};
}

template <class T>
class Values : public testing::Test {};
using Types = testing::Types<umlmm::Boolean, umlmm::Integer, umlmm::String, umlmm::UnlimitedNatural>;
TYPED_TEST_SUITE(Values, Types);

TYPED_TEST(Values, TravelAsObjects) {
  for (TypeParam const& value : samples<TypeParam>()) {
    Kelm::Object const object = value;
    EXPECT_FALSE(object.isNull());
    EXPECT_TRUE(TypeParam(object) == value);
    EXPECT_TRUE(TypeParam(Kelm::Object(object)) == TypeParam(value));
  }
  EXPECT_TRUE(TypeParam() == samples<TypeParam>().front()) << "the default";
}

template <class T>
Kelm::Object anObject() {
  return samples<T>().back();
}

TYPED_TEST(Values, RefuseOtherObjects) {
  std::string const text = "Incorrect type: the value is not of type '" + std::string(TypeParam::kName) + "'";
  CountedObject counted;
  counted.incRef();
  Kelm::Object const stripped(anObject<TypeParam>().get(), Kelm::Deviant());
  std::vector<Kelm::Object> foreign = {Kelm::Object(), Kelm::Object(&counted, Kelm::Deviant())};
  if constexpr (!std::is_same_v<TypeParam, umlmm::String>) {
    foreign.push_back(stripped);  // a primitive without its value
    foreign.push_back(anObject<umlmm::String>());
  }
  if constexpr (!std::is_same_v<TypeParam, umlmm::Integer>) foreign.push_back(anObject<umlmm::Integer>());
  if constexpr (!std::is_same_v<TypeParam, umlmm::Boolean>) foreign.push_back(anObject<umlmm::Boolean>());
  for (Kelm::Object const& object : foreign)
    EXPECT_TRUE(tells(failureOf([&] { TypeParam value(object); }), text, "kelm/Kelm/Error"));
}

TEST(String, SharesItsRecordWithTheObject) {
  umlmm::String const text(u"shared");
  Kelm::Object const object = text;
  EXPECT_EQ(object.get(), text.record());
  EXPECT_EQ(umlmm::String(object).record(), text.record());
}

TEST(UnlimitedNatural, IsWrittenAsAStarOrDigits) {
  Brond::TypeInfo const& info = *umlmm::UnlimitedNatural::getTypeInfo();
  auto const read = [&](char const* aText) {
    Brond::ErrorHolder error;
    Brond::any const value = info.convertFromString(aText, error);
    EXPECT_EQ(error.hasError(), value.empty()) << aText;
    return value.empty() ? std::string("error") : info.convertToString(value);
  };
  for (char const* const text : {"*", "0", "7", "4294967294"}) EXPECT_EQ(read(text), text);
  EXPECT_EQ(read("  007\t"), "7");
  EXPECT_EQ(read(" *\n"), "*");
  for (char const* const text :
       {"", " ", "-1", "+1", "1 2", "**", "* 1", "1.0", "0x1", "4294967295", "99999999999"})
    EXPECT_EQ(read(text), "error") << text;
  EXPECT_THROW(info.convertToString(Brond::any(umlmm::Integer(1))), Brond::bad_any_cast);
}

}  // namespace
