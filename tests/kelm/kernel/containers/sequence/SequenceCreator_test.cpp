#include "kelm/kernel/containers/sequence/SequenceCreator.h"

#include <gtest/gtest.h>

#include "kelm/kernel/containers/failures.h"
#include "kelm/kernel/containers/values.h"

namespace Kelm::detail {

/// A value type that no implementation comes out for.
struct Unmakable {};

template <>
Generic::SequenceIntf* SequenceImplementations<Unmakable>::makeList() {
  return nullptr;
}
template <>
Generic::SequenceIntf* SequenceImplementations<Unmakable>::makeMultiIndex(bool) {
  return nullptr;
}

}  // namespace Kelm::detail

namespace sequence_suite {
namespace {

using Kelm::SequenceCreator;
using Kelm::SequenceRequest;

TEST(SequenceCreator, MakesWhatIsAskedFor) {
  auto const deviant = Kelm::Deviant::ofValue(3);
  for (auto const kind : {Kelm::STD_VECTOR, Kelm::MULTI_INDEX}) {
    for (bool const unique : {false, true}) {
      if (unique && kind == Kelm::STD_VECTOR) continue;
      auto const sequence = SequenceCreator::create<Number>({deviant, kind, unique, true});
      EXPECT_EQ(sequence.getDeviant(), deviant);
      EXPECT_EQ(sequence.get()->numRef(), 1);
      EXPECT_TRUE(sequence.empty());
      sequence.push_back({1});
      sequence.push_back({1});
      EXPECT_EQ(sequence.size(), unique ? 1 : 2);
    }
  }
}

TEST(SequenceCreator, ListMayStartFilled) {
  std::unique_ptr<Kelm::ListQImpl<Number>> list(static_cast<Kelm::ListQImpl<Number>*>(
      Kelm::detail::SequenceImplementations<Number>::makeList({{4}, {5}})));
  EXPECT_EQ(list->shareCount(), 1);
  auto const sequence = counted<Number>(std::move(list));
  EXPECT_EQ(sequence.size(), 2);
  EXPECT_EQ(sequence.back().fValue, 5);
}

TEST(SequenceCreator, UncountedSequenceBelongsToTheCaller) {
  std::unique_ptr<Kelm::Generic::SequenceIntf> const owner(
      SequenceCreator::create<Number>({{}, Kelm::MULTI_INDEX, false, false}).get());
  EXPECT_EQ(owner->numRef(), 0);
  EXPECT_NE(dynamic_cast<Repeating<Number>*>(owner.get()), nullptr);
}

TEST(SequenceCreator, NamesScriptClasses) {
  auto const name = [](SequenceRequest const& aRequest, bool aImmutable, bool aImmutableElements) {
    auto const sequence = SequenceCreator::create<Text>(aRequest);
    return std::string(sequence.get()->generic_getVeskName(aImmutable, aImmutableElements, "n"));
  };
  for (bool const unique : {false, true}) {
    SequenceRequest const request{{}, Kelm::MULTI_INDEX, unique, true};
    EXPECT_EQ(name(request, true, false), "umlmm.ImmutableSequenceOfText");
    EXPECT_EQ(name(request, false, true), "umlmm.SequenceOfText");
  }
  EXPECT_EQ(name({{}, Kelm::STD_VECTOR, false, true}, true, true), "n");
  auto const references = SequenceCreator::create<Kelm::ImmutableObject>({});
  EXPECT_STREQ(references.get()->generic_getVeskName(true, false, "n"), "n");
}

TEST(SequenceCreator, RefusesWhatItCannotMake) {
  auto const create = [](SequenceRequest const& aRequest) {
    return failureText([&] { SequenceCreator::create<Number>(aRequest); });
  };
  EXPECT_EQ(create({{}, Kelm::STD_VECTOR, true, true}),
            failureAt("cannot use STD_VECTOR and aIsUnique together", "sequence/SequenceCreator"));
  EXPECT_EQ(create({{}, static_cast<Kelm::SequenceImpl>(2), false, true}),
            failureAt("unknown sequence implementation requested", "sequence/SequenceCreator"));
  EXPECT_EQ(failureText([] { SequenceCreator::create<Kelm::detail::Unmakable>({}); }),
            failureAt("sequence not created", "sequence/SequenceCreator"));
}

}  // namespace
}  // namespace sequence_suite
