#include "../operations/names.h"

class DefaultsTest : public NamedModelTest {
 protected:
  void set(char const* aText) const { fProperty.setDefault(Kelm::String(Kelm::toUtf16(aText))); }
  std::string text() const { return fProperty.getDefault().to_string(); }
  template <class X>
  X valued() const {
    auto const value = make<X>();
    fProperty.setDefaultValue(value);
    return value;
  }

  umlmm::Property const fProperty = make<umlmm::Property>();
};

TEST_F(DefaultsTest, ATextWithoutAValueMakesAString) {
  EXPECT_EQ(text(), "");
  set("blue");
  EXPECT_EQ(text(), "blue");
  auto const value = fProperty.getDefaultValue();
  EXPECT_STREQ(value.get()->getVeskName(false), "umlmm.LiteralString");
  set("red");
  EXPECT_EQ(fProperty.getDefaultValue(), value) << "taken in place";
  set("");
  EXPECT_EQ(fProperty.getDefaultValue().get(), nullptr);
  EXPECT_FALSE(value.isvalid());
}

TEST_F(DefaultsTest, LiteralsTakeATextOfTheirForm) {
  auto const truth = valued<umlmm::LiteralBoolean>();
  EXPECT_EQ(text(), "false");
  set("true");
  EXPECT_TRUE(truth.getValue().value());
  auto const number = valued<umlmm::LiteralInteger>();
  set("-12");
  EXPECT_EQ(number.getValue().value(), -12);
  EXPECT_EQ(text(), "-12");
  auto const natural = valued<umlmm::LiteralUnlimitedNatural>();
  set("*");
  EXPECT_TRUE(natural.getValue().isUnlimited());
  EXPECT_EQ(text(), "*");
  set("4");
  EXPECT_EQ(text(), "4");
  EXPECT_TRUE(natural.isvalid());
}

TEST_F(DefaultsTest, OtherTextsReplaceALiteral) {
  struct Case {
    umlmm::ValueSpecification fValue;
    char const* fText;
  };
  Case const cases[] = {{make<umlmm::LiteralBoolean>(), "yes"},
                        {make<umlmm::LiteralInteger>(), "12 "},
                        {make<umlmm::LiteralInteger>(), "99999999999"},
                        {make<umlmm::LiteralUnlimitedNatural>(), "-1"},
                        {make<umlmm::LiteralUnlimitedNatural>(), "4294967295"},
                        {make<umlmm::LiteralNull>(), "null"},
                        {make<umlmm::Expression>(), "plus"}};
  for (auto const& [value, given] : cases) {
    fProperty.setDefaultValue(value);
    set(given);
    EXPECT_EQ(text(), given);
    EXPECT_FALSE(value.isvalid());
  }
}

TEST_F(DefaultsTest, ExpressionsShowTheirFirstBodyOrSymbol) {
  auto const opaque = valued<umlmm::OpaqueExpression>();
  EXPECT_EQ(text(), "");
  set("a + b");
  set("a - b");
  EXPECT_EQ(listOf(opaque.getBody()), "a - b");
  valued<umlmm::Expression>().setSymbol(Kelm::String(Kelm::toUtf16("plus")));
  EXPECT_EQ(text(), "plus");
  auto const instance = valued<umlmm::InstanceValue>();
  EXPECT_EQ(text(), "");
  instance.setInstance(named<umlmm::InstanceSpecification>(u"origin"));
  EXPECT_EQ(text(), "origin");
  valued<umlmm::LiteralNull>();
  EXPECT_EQ(text(), "");
}

TEST_F(DefaultsTest, ParametersHaveDefaultsToo) {
  auto const parameter = make<umlmm::Parameter>();
  parameter.setDefault(Kelm::String(Kelm::toUtf16("x")));
  EXPECT_EQ(parameter.getDefault().to_string(), "x");
  auto const& methods = umlmm::NSInterface::ParameterIntf::sIntrospectiveMethods;
  constexpr unsigned kDefault = 2;
  auto const refused = [&] {
    methods.setEntry(parameter.get(), parameter.getDeviant(), kDefault, umlmm::Integer(1));
  };
  EXPECT_NE(failureOf(refused), "");
  EXPECT_EQ(parameter.getDefault().to_string(), "x");
}
