// The value types of the metamodel, in the sequences that its library instantiates for them.

#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/kernel/containers/sequence_suite.h"
#include "uml_metamodel/umlmm/AggregationKind.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/CallConcurrencyKind.h"
#include "uml_metamodel/umlmm/ConnectorKind.h"
#include "uml_metamodel/umlmm/Integer.h"
#include "uml_metamodel/umlmm/InteractionOperatorKind.h"
#include "uml_metamodel/umlmm/MessageKind.h"
#include "uml_metamodel/umlmm/MessageSort.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

namespace sequence_suite {
namespace {

template <class T>
T valueOf(int aNumber) {
  return T(aNumber);
}
template <>
umlmm::String valueOf(int aNumber) {
  return umlmm::String(Kelm::toUtf16(std::to_string(aNumber)));
}
template <>
umlmm::UnlimitedNatural valueOf(int aNumber) {
  return umlmm::UnlimitedNatural(static_cast<std::uint32_t>(aNumber));
}

template <class T>
int numberOf(T const& aValue) {
  return static_cast<int>(aValue.value());
}
template <>
int numberOf(umlmm::String const& aValue) {
  return std::stoi(aValue.narrow());
}

template <class T>
void addKinds(std::vector<Kind>& aKinds) {
  auto const add = [&](char const* aName, Kelm::SequenceImpl aImpl, bool aIsUnique) {
    aKinds.push_back({std::string(T::kName) + aName, aIsUnique, [=] {
                        return std::make_unique<HandleSubject<T>>(
                            Kelm::SequenceCreator::create<T>({{}, aImpl, aIsUnique, true}), valueOf<T>,
                            numberOf<T>);
                      }});
  };
  add("List", Kelm::STD_VECTOR, false);
  add("MultiIndex", Kelm::MULTI_INDEX, false);
  add("UniqueMultiIndex", Kelm::MULTI_INDEX, true);
}

std::vector<Kind> allKinds() {
  std::vector<Kind> kinds;
  addKinds<umlmm::Integer>(kinds);
  addKinds<umlmm::UnlimitedNatural>(kinds);
  addKinds<umlmm::String>(kinds);
  addKinds<umlmm::VisibilityKind>(kinds);
  return kinds;
}

INSTANTIATE_TEST_SUITE_P(MetamodelValues, SequenceSuite, testing::ValuesIn(allKinds()), nameOf);

template <class T>
class MetamodelValue : public testing::Test {};
using Values = testing::Types<umlmm::Boolean, umlmm::Integer, umlmm::String, umlmm::UnlimitedNatural,
                              umlmm::AggregationKind, umlmm::CallConcurrencyKind, umlmm::ConnectorKind,
                              umlmm::InteractionOperatorKind, umlmm::MessageKind, umlmm::MessageSort,
                              umlmm::ParameterDirectionKind, umlmm::VisibilityKind>;
TYPED_TEST_SUITE(MetamodelValue, Values);

TYPED_TEST(MetamodelValue, NamesTheScriptClassesOfItsSequences) {
  for (bool const unique : {false, true}) {
    auto const sequence = Kelm::SequenceCreator::create<TypeParam>({{}, Kelm::MULTI_INDEX, unique, true});
    auto const name = [&](bool aImmutable) {
      return std::string(sequence.get()->generic_getVeskName(aImmutable, !aImmutable, "n"));
    };
    EXPECT_EQ(name(true), "umlmm.ImmutableSequenceOf" + std::string(TypeParam::kName));
    EXPECT_EQ(name(false), "umlmm.SequenceOf" + std::string(TypeParam::kName));
    sequence.push_back(TypeParam());
    sequence.push_back(TypeParam());
    EXPECT_EQ(sequence.size(), unique ? 1 : 2);
    EXPECT_TRUE(sequence.contains(TypeParam()));
  }
}

template <class... Ts>
std::vector<Kelm::SequenceRef> sequencesOf(testing::Types<Ts...>) {
  std::vector<Kelm::SequenceRef> sequences;
  auto const add = [&]<class T>(T const& aValue, Kelm::SequenceImpl aImpl) {
    auto const sequence = Kelm::SequenceCreator::create<T>({{}, aImpl});
    sequence.push_back(aValue);
    sequences.push_back(sequence);
  };
  (add(Ts(), Kelm::STD_VECTOR), ...);
  (add(Ts(), Kelm::MULTI_INDEX), ...);
  add(Kelm::Object(), Kelm::STD_VECTOR);
  add(Kelm::Object(), Kelm::MULTI_INDEX);
  return sequences;
}

/// Sequences of two types, each of one value, are never equal, and neither takes the values of the other.
TEST(ValuesOfTwoTypes, AreNeverTakenForEachOther) {
  auto const sequences = sequencesOf(Values());
  for (auto const& left : sequences)
    for (auto const& right : sequences) {
      bool const isSame = left.get()->valueType() == right.get()->valueType();
      bool result = !isSame;
      left.get()->specialized_equal(right.get(), Kelm::Deviant(), result);
      EXPECT_EQ(result, isSame);
      auto const assign = [&] { left.get()->specialized_assign(right.get(), Kelm::Deviant(), result); };
      EXPECT_EQ(failureOf(assign).starts_with("Incorrect type"), !isSame);
      EXPECT_EQ(left.get()->generic_size(Kelm::Deviant()), 1);
    }
}

TEST(UniqueSequenceOfBoolean, HoldsTwoValuesAtMost) {
  auto const sequence = Kelm::SequenceCreator::create<umlmm::Boolean>({{}, Kelm::MULTI_INDEX, true, true});
  for (bool const value : {true, false, true, false}) sequence.push_back(value);
  ASSERT_EQ(sequence.size(), 2);
  EXPECT_TRUE(sequence.at(0).value());
  EXPECT_EQ(sequence.removeAll(true), 1);
  EXPECT_FALSE(sequence.at(0).value());
}

}  // namespace
}  // namespace sequence_suite
