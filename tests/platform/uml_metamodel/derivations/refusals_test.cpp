#include "../engine/models.h"

// What the published classes refuse before the derivations see it: values and sequences without a type.

namespace {

class RefusalsTest : public ModelTest {
 protected:
  /// Whether a write through the table of accessors fails.
  template <class Intf, class X>
  static bool isRefused(X const& aElement, unsigned aFeature, Kelm::Object const& aValue) {
    auto const write = [&] {
      Intf::sIntrospectiveMethods.setEntry(aElement.get(), aElement.getDeviant(), aFeature, aValue);
    };
    return !failureOf(write).empty();
  }
  /// Whether a sequence refuses a value of a type that its own class has no words for.
  template <class Value, class Sequence>
  static bool isRefused(Sequence const& aSequence, Value const& aValue) {
    Kelm::Sequence<Value> const untyped(aSequence.get(), aValue.getDeviant());
    return !failureOf([&] { untyped.push_back(aValue); }).empty();
  }
};

using namespace umlmm::NSInterface;

TEST_F(RefusalsTest, ARefusedWriteMakesNothing) {
  auto const property = make<umlmm::Property>();
  EXPECT_TRUE(isRefused<MultiplicityElementIntf>(property, 4, umlmm::Boolean(true))) << "lower";
  EXPECT_EQ(property.getLower()->value(), 1);
  EXPECT_EQ(property.getLowerValue().get(), nullptr);

  auto const parameter = make<umlmm::Parameter>();
  parameter.setDefault(Kelm::String(Kelm::toUtf16("x")));
  EXPECT_TRUE(isRefused<ParameterIntf>(parameter, 2, umlmm::Integer(1))) << "default";
  EXPECT_EQ(parameter.getDefault().to_string(), "x");

  auto const operation = make<umlmm::Operation>();
  auto const comment = umlmm::detail::asObject(make<umlmm::Comment>());
  EXPECT_TRUE(isRefused<OperationIntf>(operation, 2, umlmm::Integer(1))) << "isOrdered";
  EXPECT_TRUE(isRefused<OperationIntf>(operation, 4, umlmm::String())) << "lower";
  EXPECT_TRUE(isRefused<OperationIntf>(operation, 12, comment)) << "type";
  EXPECT_TRUE(isRefused<OperationIntf>(operation, 12, umlmm::Integer(1))) << "type";
  EXPECT_TRUE(operation.getOwnedParameter().empty());
}

TEST_F(RefusalsTest, AComputedListTakesWhatItsFeatureTakes) {
  auto const type = make<umlmm::Class>();
  EXPECT_TRUE(isRefused<umlmm::Classifier>(type.getSuperClass(), make<umlmm::Interface>()));
  EXPECT_NE(failureOf([&] { type.getInheritedMember().get()->generic_clear(type.getDeviant()); }), "");
  EXPECT_TRUE(type.getGeneralization().empty());
  auto const package = make<umlmm::Package>();
  EXPECT_TRUE(
      isRefused<umlmm::PackageableElement>(package.getOwnedType(), make<umlmm::InstanceSpecification>()));
  EXPECT_TRUE(package.getPackagedElement().empty());
}

}  // namespace
