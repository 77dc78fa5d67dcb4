#include "models.h"
#include "uml_metamodel/umlmm/Factory.h"

class TextualTest : public ModelTest {
 protected:
  Kelm::Object read(char16_t const* aText) const { return factory().createFromString(Kelm::String(aText)); }
  umlmm::Factory factory() const {
    return umlmm::Factory(umlmm::NSInterface::FactoryIntf::createNewFactory(fModel), fModel.getDeviant());
  }
  int elements() const { return static_cast<int>(Kelm::ElementList::size(fModel.object().roots())); }
};

TEST_F(TextualTest, MakesElementsWithNamesAndFeatures) {
  auto const base = named<umlmm::Class>(u"Base");
  auto const made = Kelm::queryHandle<umlmm::Class, umlmm::VisitationDomain>(read(
      u"umlmm.Class \"Order \\\"A\\\"\" { isAbstract = true; visibility = protected; superClass = [Base] }"));
  ASSERT_FALSE(made.isNull());
  EXPECT_EQ(made.getName().text(), u"Order \"A\"");
  EXPECT_TRUE(made.getIsAbstract().value());
  EXPECT_EQ(made.getVisibility().toString().text(), u"Protected");
  EXPECT_EQ(made.getSuperClass().front().get(), base.get());
}

TEST_F(TextualTest, NamesTheplaceOfAnErrorAndMakesNothing) {
  struct Case {
    char16_t const* fText;
    char const* fFailure;
  };
  for (Case const& wrong :
       {Case{u"Klass", "cannot read 'Klass' at position 1"},
        Case{u"Classifier", "cannot read 'Classifier' at position 1"},
        Case{u"Class A { isAbstract = 3; }", "cannot read '3' at position 24"},
        Case{u"Class A { isAbstrakt = true; }", "cannot read 'isAbstrakt' at position 11"},
        Case{u"Class A { superClass = [Nobody] }", "cannot read 'Nobody' at position 25"},
        Case{u"Class A { isAbstract = true", "at position 28"},
        Case{u"Class \"A", "cannot read '\"A' at position 7"}, Case{u"", "at position 1"}}) {
    EXPECT_NE(failureOf([&] { read(wrong.fText); }).find(wrong.fFailure), std::string::npos)
        << wrong.fFailure;
    EXPECT_EQ(elements(), 0);
  }
}

TEST_F(TextualTest, AFactoryOfAReadOnlyVariantReadsAndShowsWhatItMadeThere) {
  auto const base = named<umlmm::Class>(u"Base");
  Kelm::Deviant const readOnly = fModel.object().readOnlyDeviant();
  auto const factory = umlmm::Factory::createNewFactory(Kelm::Model(fModel.get(), readOnly));
  auto const made = umlmm::cast<umlmm::Class>(
      factory.createFromString(Kelm::String(u"Class Order { superClass = [Base]; isAbstract = true }")));
  EXPECT_EQ(made.getDeviant(), readOnly);
  EXPECT_EQ(made.getSuperClass().front().get(), base.get());
  EXPECT_NE(failureOf([&] { made.setName("other"); }), "") << "only reading is free";
  EXPECT_NE(
      failureOf([&] { factory.createFromString(Kelm::String(u"Class A { ownedAttribute = [Base] }")); }), "");
  EXPECT_EQ(elements(), 2);
  fModel.object().close();
  EXPECT_NE(
      failureOf([&] { factory.createFromString(Kelm::String(u"Class B")); }).find(Kelm::words::kNotInVariant),
      std::string::npos);
}

TEST_F(TextualTest, ReadsAValueOfAType) {
  auto const make = [&](char16_t const* aType, char16_t const* aText) {
    return factory().createFromString(Kelm::String(aType), Kelm::String(aText));
  };
  using umlmm::VisitationDomain;
  auto const comment = Kelm::queryHandle<umlmm::Comment, VisitationDomain>(make(u"Comment", u"a note"));
  EXPECT_EQ(comment.getBody().text(), u"a note");
  auto const number =
      Kelm::queryHandle<umlmm::LiteralInteger, VisitationDomain>(make(u"LiteralInteger", u"-12"));
  EXPECT_EQ(number.getValue().value(), -12);
  EXPECT_EQ(make(u"AggregationKind", u"shared"), Kelm::Object(umlmm::AggregationKind(1)));
  EXPECT_NE(failureOf([&] { make(u"LiteralInteger", u"many"); }), "");
  EXPECT_NE(failureOf([&] { make(u"Nothing", u"x"); }).find("Nothing"), std::string::npos);
}
