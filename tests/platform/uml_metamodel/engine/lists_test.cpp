#include <algorithm>
#include <vector>

#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "models.h"

class FeatureListTest : public ModelTest {
 protected:
  FeatureListTest() : fPackage(make<umlmm::Package>()), fList(fPackage.getPackagedElement()) {
    for (char16_t const* name : {u"a", u"b", u"c", u"d"}) {
      fClasses.push_back(named<umlmm::Class>(name));
      fList.push_back(fClasses.back());
    }
  }

  std::u16string order() const {
    std::u16string names;
    for (umlmm::PackageableElement const& value : fList.values()) names += value.getName().text();
    return names;
  }

  umlmm::Package fPackage;
  Kelm::Sequence<umlmm::PackageableElement> fList;
  std::vector<umlmm::Class> fClasses;
};

TEST_F(FeatureListTest, ValuesOfAnotherTypeAreNotAssigned) {
  auto const numbers =
      Kelm::SequenceCreator::create<umlmm::Integer>({fModel.getDeviant(), Kelm::MULTI_INDEX});
  numbers.push_back(1);
  auto const body = make<umlmm::OpaqueExpression>();
  body.getBody().push_back(umlmm::String(u"text"));
  for (auto const& [element, name] :
       {std::pair<Kelm::ClassObject, std::string>(body, "body"),
        std::pair<Kelm::ClassObject, std::string>(fPackage, "packagedElement")}) {
    for (auto const* const property : element.get()->getMetaClass().get()->allProperties()) {
      if (property->getName() != name) continue;
      EXPECT_NE(failureOf([&] {
                  property->accessors().setSequenceEntry(element.get(), element.getDeviant(),
                                                         property->getId(), numbers.get(),
                                                         numbers.getDeviant());
                }).find(name),
                std::string::npos);
    }
  }
  EXPECT_EQ(body.getBody().at(0).text(), u"text");
  EXPECT_EQ(order(), u"abcd");
}

TEST_F(FeatureListTest, LongListsAreChangedFromTheMiddleByElement) {
  std::vector<umlmm::Class> many;
  for (int count = 0; count < 2000; ++count) {
    many.push_back(make<umlmm::Class>());
    fList.push_back(many.back());
  }
  for (std::size_t at = 0; at < many.size(); at += 2) fList.removeAll(many[at]);
  EXPECT_EQ(fList.size(), 1004);
  for (std::size_t at = 1; at < many.size(); at += 2)
    EXPECT_EQ(fList.at(4 + static_cast<int>(at / 2)).get(), many[at].get());
}
