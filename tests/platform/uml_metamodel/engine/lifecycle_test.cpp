#include "models.h"

using LifecycleTest = ModelTest;

TEST_F(LifecycleTest, DestroyingTakesContentsAndReferencesAlong) {
  auto const package = make<umlmm::Package>();
  auto const base = make<umlmm::Class>();
  auto const derived = make<umlmm::Class>();
  auto const property = make<umlmm::Property>();
  auto const comment = make<umlmm::Comment>();
  package.getPackagedElement().push_back(base);
  package.getPackagedElement().push_back(derived);
  base.getOwnedAttribute().push_back(property);
  auto const generalization = umlmm::Generalization::create(fModel, derived, base);
  comment.getAnnotatedElement().push_back(property);
  comment.getAnnotatedElement().push_back(derived);
  auto const typed = make<umlmm::Property>();
  typed.setType(base);

  base.destroy();
  EXPECT_FALSE(base.isvalid());
  EXPECT_FALSE(property.isvalid());
  EXPECT_TRUE(generalization.getGeneral().isNull());
  EXPECT_TRUE(generalization.isvalid()) << "who merely refers stays";
  EXPECT_EQ(comment.getAnnotatedElement().size(), 1);
  EXPECT_TRUE(typed.getType().isNull());
  EXPECT_EQ(package.getPackagedElement().size(), 1);
  EXPECT_NE(failureOf([&] { base.destroy(); }).find(Kelm::words::kNotInVariant), std::string::npos);
  EXPECT_NE(failureOf([&] { static_cast<void>(base.getName()); }).find(Kelm::words::kNotInVariant),
            std::string::npos);
  EXPECT_NE(failureOf([&] { package.getPackagedElement().push_back(base); }), "");
}

TEST_F(LifecycleTest, AListOutlivesItsElementsWithoutShowingThem) {
  auto const package = make<umlmm::Package>();
  auto const list = package.getPackagedElement();
  list.push_back(make<umlmm::Class>());
  package.destroy();
  EXPECT_NE(failureOf([&] { static_cast<void>(list.size()); }).find(Kelm::words::kNotInVariant),
            std::string::npos);
}

TEST_F(LifecycleTest, ClosingAModelEndsItsElementsAndItsName) {
  auto const element = named<umlmm::Class>(u"Order");
  Kelm::ModelCache::instance().bindModel(u"lifecycle", fModel);
  fModel.object().close();
  EXPECT_FALSE(fModel.isvalid());
  EXPECT_FALSE(element.isvalid());
  EXPECT_TRUE(Kelm::ModelCache::instance().findModel(u"lifecycle").isNull());
  EXPECT_NE(failureOf([&] { make<umlmm::Class>(); }), "");
}

TEST_F(LifecycleTest, DeepContainmentNeedsNoStack) {
  auto outermost = make<umlmm::Package>();
  auto innermost = outermost;
  for (int depth = 0; depth < 100000; ++depth) {
    auto const next = make<umlmm::Package>();
    innermost.getPackagedElement().push_back(next);
    innermost = next;
  }
  outermost.destroy();
  EXPECT_FALSE(innermost.isvalid());
}

TEST_F(LifecycleTest, ANullModelMakesNoElement) {
  EXPECT_NE(failureOf([] { umlmm::Class::create(Kelm::Model()); }).find(Kelm::words::kNullReference),
            std::string::npos);
}

TEST_F(LifecycleTest, ABareInterfaceAnswersAsNoElement) {
  struct Bare final : umlmm::NSInterface::AssociationClassIntf {};
  Bare const bare;
  umlmm::NSInterface::NamedElementIntf const& view = bare;
  view.incRef();
  EXPECT_EQ(view.numRef(), 0);
  EXPECT_FALSE(view.deviant_isValid(fModel.getDeviant()));
  for (bool const immutable : {false, true})
    EXPECT_NE(failureOf([&] {
                view.getVeskName(immutable);
              }).find("Internal Error at uml_metamodel/umlmm/NSInterface/AssociationClassIntf:"),
              std::string::npos);
}
