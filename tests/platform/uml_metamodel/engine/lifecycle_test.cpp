#include "models.h"

using LifecycleTest = ModelTest;

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
