#include <gtest/gtest.h>

#include <functional>
#include <ranges>
#include <vector>

#include "platform/kelm/support/failure.h"
#include "uml_metamodel/umlmm.h"

namespace {

static_assert(std::ranges::forward_range<decltype(umlmm::ClassView().getOwnedAttribute())>);
static_assert(std::convertible_to<umlmm::ClassView, umlmm::TypeView> &&
              !std::convertible_to<umlmm::TypeView, umlmm::ClassView>);
#ifdef NDEBUG
static_assert(sizeof(umlmm::PropertyView) == 2 * sizeof(void*));
#endif

/// Package p with class C, whose properties a, b, c are typed by it.
class Views : public testing::Test {
 protected:
  Views() {
    fPackage.setName("p");
    fClass.setName("C");
    fPackage.getPackagedElement().push_back(fClass);
    for (char const* name : {"a", "b", "c"}) {
      auto const property = umlmm::Property::create(fModel);
      property.setName(name);
      fClass.getOwnedAttribute().push_back(property);
      property.setType(fClass);
    }
  }
  static std::u16string names(umlmm::ClassView aClass) {
    std::u16string all;
    for (auto const property : aClass.getOwnedAttribute()) all += property.getName();
    return all;
  }

  Kelm::Model fModel = Kelm::NSInterface::FactoryIntf::createNewModel();
  umlmm::Package fPackage = umlmm::Package::create(fModel);
  umlmm::Class fClass = umlmm::Class::create(fModel);
};

TEST_F(Views, AnswerWhatReferencesDo) {
  auto const property = fClass.getOwnedAttribute().at(1);
  umlmm::PropertyView const view = property.view();
  EXPECT_EQ(view.getName(), property.getName().text());
  EXPECT_EQ(view.getIsReadOnly(), property.getIsReadOnly());
  EXPECT_EQ(view.getVisibility(), property.getVisibility());
  EXPECT_EQ(view.getLower(), property.getLower());
  EXPECT_EQ(view.getQualifiedName(), property.getQualifiedName());
  EXPECT_EQ(view.getType().keep<umlmm::ImmutableType>(), property.getType());
  EXPECT_EQ(view.getOwner(), fClass.view());
  EXPECT_EQ(view.getClass().getOwner(), fPackage.view());
  EXPECT_FALSE(view.getAssociation() || view.getDefaultValue());
  EXPECT_EQ(fClass.view().getMember().size(), 3U);
  EXPECT_EQ(fClass.view().allOwnedElements().size(), 3);
}

TEST_F(Views, NarrowToWhatTheElementIs) {
  umlmm::PackageableElementView const part = *fPackage.view().getPackagedElement().begin();
  EXPECT_EQ(names(umlmm::cast<umlmm::ClassView>(part)), u"abc");
  EXPECT_FALSE(umlmm::cast<umlmm::PackageView>(part));
  EXPECT_FALSE(umlmm::cast<umlmm::ClassView>(umlmm::TypeView()));
}

TEST_F(Views, OfNoneRaiseAndOfListsAreRanges) {
  EXPECT_NE(failureOf([] { umlmm::ClassView().getName(); }).find(Kelm::words::kNullReference),
            std::string::npos);
  EXPECT_TRUE(fPackage.view().getOwnedRule().empty());
  // Leaves a hole, which is no element.
  fClass.getOwnedAttribute().at(1).destroy();
  EXPECT_EQ(names(fClass.view()), u"ac");
  auto const attributes = fClass.view().getOwnedAttribute();
  EXPECT_EQ(attributes.size(), 2U);
  auto later = attributes | std::views::filter([](auto aOne) { return aOne.getName() > u"a"; });
  EXPECT_EQ(std::ranges::distance(later), 1);
}

TEST_F(Views, AreOfOneVariantThatMustBeThere) {
  auto const property = fClass.getOwnedAttribute().at(0);
  property.destroy();
  EXPECT_NE(failureOf([&] { property.view(); }).find(Kelm::words::kNotInVariant), std::string::npos);
}

#ifndef NDEBUG
TEST_F(Views, AreCaughtWhenTheModelHasChanged) {
  umlmm::ClassView const view = fClass.view();
  auto const attributes = view.getOwnedAttribute();
  auto const first = attributes.begin();
  fClass.getOwnedAttribute().at(0).destroy();
  for (auto const& use : {std::function<void()>([&] { view.getName(); }),
                          {[&] { attributes.size(); }},
                          {[&] { (*first).getName(); }},
                          {[&] { view.keep<umlmm::ImmutableClass>(); }}})
    EXPECT_NE(failureOf(use).find("The model has changed"), std::string::npos);
}
#endif

}  // namespace
