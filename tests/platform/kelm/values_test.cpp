#include "kelm/values.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::EnumerationType;
using Kelm::PrimitiveKind;

constexpr std::string_view kColours[] = {"None", "Red", "DarkRed"};

EnumerationType& colours() {
  static EnumerationType sColours("Colour", "test.Colour", kColours);
  return sColours;
}

TEST(Primitives, CarryTheirBitsInTheDeviant) {
  for (std::uint32_t const bits : {0u, 1u, 0x80000000u, 0xFFFFFFFFu}) {
    Kelm::Object const object = Kelm::makePrimitive(PrimitiveKind::Integer, bits);
    EXPECT_TRUE(object.getDeviant().isValue());
    EXPECT_EQ(object.getDeviant().value(), bits);
    EXPECT_EQ(object.getDeviant().variant(), nullptr);
    EXPECT_TRUE(object.isvalid());
    EXPECT_TRUE(Kelm::isPrimitive(object, PrimitiveKind::Integer));
    EXPECT_FALSE(Kelm::isPrimitive(object, PrimitiveKind::Boolean));
  }
  EXPECT_FALSE(Kelm::isPrimitive(Kelm::Object(), PrimitiveKind::Boolean));
  EXPECT_NE(Kelm::makePrimitive(PrimitiveKind::Boolean, 0), Kelm::makePrimitive(PrimitiveKind::Boolean, 1));
}

TEST(Enumerations, EachNumberHasOneObjectForEver) {
  for (int const number : {0, 2, 3, -1, 1000, INT32_MIN}) {
    auto const* const object = colours().object(number);
    EXPECT_EQ(object->number(), number);
    EXPECT_EQ(colours().object(number), object);
    EXPECT_EQ(Kelm::literalNumber(Kelm::Object(object, Kelm::Deviant()), colours()), number);
    EXPECT_STREQ(object->getVeskName(true), "test.Colour");
    EXPECT_STREQ(object->getVeskName(false), "test.Colour");
  }
  EXPECT_NE(colours().object(3), colours().object(4));
}

TEST(Enumerations, ForeignObjectsAreRefused) {
  static EnumerationType sOther("Other", "test.Other", kColours);
  CountedObject object;
  object.incRef();
  for (Kelm::Object const& foreign :
       {Kelm::Object(), Kelm::Object(&object, Kelm::Deviant()),
        Kelm::Object(sOther.object(1), Kelm::Deviant()), Kelm::makePrimitive(PrimitiveKind::Integer, 1)})
    EXPECT_TRUE(tells(failureOf([&] { Kelm::literalNumber(foreign, colours()); }),
                      "Incorrect type: the value is not of type 'Colour'", "kelm/Kelm/Error"));
}

TEST(Enumerations, TextsAreTheLiteralsAsSpelled) {
  EXPECT_EQ(colours().text(2), "DarkRed");
  EXPECT_EQ(colours().text(3), "3");
  EXPECT_EQ(colours().text(-7), "-7");
  EXPECT_EQ(colours().parse("DarkRed"), 2);
  EXPECT_EQ(colours().parse("darkRed"), 2);
  EXPECT_EQ(colours().parse("none"), 0);
  for (char const* const text : {"", "darkred", "DARKRED", "DarkRed ", "Dark", "1", "\x4Eone\x20"})
    EXPECT_NE(failureOf([&] { colours().parse(text); }), "") << text;
}

}  // namespace
