#include <functional>
#include <map>
#include <optional>
#include <sstream>

#include "models.h"
#include "uml_metamodel/umlmm/ChangeObserver.h"

// What observers are told of each change: once, when it is made for good, all that it did.

namespace {

class Log final : public umlmm::ChangeObserver {
 public:
  using umlmm::ChangeObserver::ChangeObserver;

  std::string fText;
  std::function<void()> fThen;

 private:
  void changed(umlmm::ChangeSteps const& aSteps) noexcept override {
    static constexpr char const* kKinds[] = {"set", "in", "out", "order", "new", "gone"};
    std::ostringstream out;
    for (std::size_t at = 0; at < aSteps.size(); ++at) {
      auto const step = aSteps.at(at);
      out << kKinds[static_cast<int>(step.fKind)] << ' ' << number(step.fElement);
      if (step.fProperty != nullptr) out << '.' << step.fProperty->getName();
      if (step.fValue != nullptr) out << ' ' << number(step.fValue);
      out << (at + 1 < aSteps.size() ? ", " : "; ");
    }
    fText += out.str();
    if (auto const then = std::exchange(fThen, nullptr)) then();
  }
  std::size_t number(Kelm::NSInterface::ClassObjectIntf const* aElement) {
    return fNumbers.emplace(aElement, fNumbers.size() + 1).first->second;
  }

  std::map<Kelm::NSInterface::ClassObjectIntf const*, std::size_t> fNumbers;
};

struct ObserversTest : ModelTest {
  std::optional<Log> fLog{fModel};

  std::string told() { return std::exchange(fLog->fText, ""); }
};

TEST_F(ObserversTest, ValuesLinksAndElements) {
  auto const clazz = make<umlmm::Class>();
  EXPECT_EQ(told(), "new 1; ");
  clazz.setName(umlmm::String(std::u16string(u"Order")));
  clazz.setIsActive(umlmm::Boolean(true));
  EXPECT_EQ(told(), "set 1.name; set 1.isActive; ");
  auto const property = make<umlmm::Property>();
  clazz.getOwnedAttribute().push_back(property);
  property.setType(clazz);
  property.setLower(umlmm::Integer(0));
  EXPECT_EQ(
      told(),
      "new 2; in 1.ownedAttribute 2; in 2.type 1; new 3, in 2.lowerValue 3, set 3.value, set 2.lower; ");
  auto const body = make<umlmm::OpaqueExpression>();
  body.getBody().push_back(umlmm::String(std::u16string(u"a")));
  body.getBody().push_back(umlmm::String(std::u16string(u"b")));
  EXPECT_EQ(told(), "new 4; order 4.body; order 4.body; ");
  property.destroy();
  EXPECT_EQ(told(), "out 1.ownedAttribute 2, gone 2, gone 3; ");
}

TEST_F(ObserversTest, RefusedChangesAreNotTold) {
  auto const inner = make<umlmm::Package>();
  auto const outer = make<umlmm::Package>();
  outer.getPackagedElement().push_back(inner);
  told();
  EXPECT_NE(failureOf([&] { inner.getPackagedElement().push_back(outer); }), "");
  EXPECT_NE(failureOf([&] {
              umlmm::Factory::createNewFactory(fModel).createFromString(
                  umlmm::String(std::u16string(u"Class Order { isAbstract = 3 }")));
            }),
            "");
  EXPECT_EQ(told(), "");
}

TEST_F(ObserversTest, AnObserverMayChangeTheModelAndEnd) {
  auto const clazz = make<umlmm::Class>();
  told();
  fLog->fThen = [&] { clazz.setIsActive(umlmm::Boolean(true)); };
  clazz.setName(umlmm::String(std::u16string(u"Order")));
  EXPECT_EQ(told(), "set 1.name; set 1.isActive; ");
  {
    Log second(fModel);
    clazz.setIsActive(umlmm::Boolean(false));
    EXPECT_EQ(second.fText, told());
  }
  // The last one, while it is told.
  fLog->fThen = [&] { fLog.reset(); };
  clazz.setIsActive(umlmm::Boolean(true));
  EXPECT_FALSE(fLog);
  clazz.setIsActive(umlmm::Boolean(true));
  Log outlives(fModel);
  fModel.object().close();
  EXPECT_EQ(outlives.fText, "");
  EXPECT_NE(failureOf([&] { Log late(fModel); }), "");
}

}  // namespace
