#include "models.h"

TEST(ReflectionTest, AccessorsRefuseWhatIsNotTheirs) {
  auto const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  auto const comment = umlmm::Comment::create(model);
  auto const& methods = umlmm::NSInterface::ClassIntf::sIntrospectiveMethods;
  EXPECT_NE(failureOf([&] { methods.getEntry(comment.get(), model.getDeviant(), 4); }).find("has no feature"),
            std::string::npos);
  EXPECT_NE(failureOf([&] {
              methods.getEntry(comment.get(), model.getDeviant(), 99);
            }).find(Kelm::words::kInvalidMetaPropertyId),
            std::string::npos);
  EXPECT_EQ(methods.metaPropertyTable[0].fProperty, nullptr);
  EXPECT_EQ(methods.metaPropertyTable[1].fProperty->getName(), "isAbstract");
}
