#include "kelm/kernel/containers/sequence/SequenceRef.h"

#include <gtest/gtest.h>

#include "kelm/kernel/containers/failures.h"
#include "kelm/kernel/containers/values.h"

namespace sequence_suite {
namespace {

using List = Kelm::ListQImpl<Number>;
using Proxy = Kelm::GenericReferenceCountingSequenceProxy;

TEST(SequenceRef, NullHandleRaisesBeforeAnythingElse) {
  std::string const expected = failureAt(
      "Cannot access NULL sequence. Use MakeSequence to create sequences.See testSequenceCreation in "
      "kelm/kernel/unittest/sequence_tests.",
      "sequence/SequenceRef");
  Kelm::Sequence<Number> const null;
  Kelm::ImmutableSequence<Number> const immutable = null;
  EXPECT_EQ(failureText([&] { null.at(-1); }), expected);
  EXPECT_EQ(failureText([&] { null.push_back({1}); }), expected);
  EXPECT_EQ(failureText([&] { null.begin(); }), expected);
  EXPECT_EQ(failureText([&] { null.removeAll({1}); }), expected);
  EXPECT_EQ(failureText([&] { immutable.size(); }), expected);
  EXPECT_EQ(failureText([&] { immutable.values(); }), expected);
}

TEST(SequenceRef, ProxyLivesAsLongAsItsHandles) {
  {
    auto handle = std::make_unique<Kelm::Sequence<Fragile>>(counted<Fragile, Repeating<Fragile>>());
    handle->push_back(Fragile(1));
    Kelm::ImmutableSequence<Fragile> second = *handle;
    EXPECT_EQ(second.get()->numRef(), 2);
    EXPECT_TRUE(second == *handle);
    handle.reset();
    EXPECT_EQ(second.get()->numRef(), 1);
    EXPECT_EQ(second.front().fValue, 1);
    auto const other = counted<Fragile, Repeating<Fragile>>();
    second.assign(other.get());
    EXPECT_EQ(other.get()->numRef(), 2);
    EXPECT_EQ(Fragile::sAlive, 0);
  }
  List bare;
  Kelm::Sequence<Number>(&bare, {}).push_back({1});
  EXPECT_EQ(bare.numRef(), 0);
  EXPECT_EQ(bare.generic_size({}), 1);
}

TEST(SequenceRef, BrokenCountsRaise) {
  std::string const expected = failureAt("Internal assertion without a message detected! Please fix me asap",
                                         "sequence/SequenceProxy");
  Proxy proxy(new List());
  EXPECT_EQ(failureText([&] { proxy.decRef(); }), expected);
  EXPECT_EQ(failureText([&] { proxy.incRef(); }), expected);
  EXPECT_EQ(proxy.numRef(), -1);
  auto const iterator = proxy.generic_begin({});
  EXPECT_EQ(failureText([&] { iterator->decRef(); }), expected);
  EXPECT_EQ(failureText([&] { iterator->incRef(); }), expected);
}

TEST(SequenceRef, ReferencesReadAsAnythingTheyConvertTo) {
  Thing thing;
  auto const objects = counted<Kelm::Object, Repeating<Kelm::Object>>();
  Kelm::Variant const variant{};
  Kelm::Deviant const deviant(&variant);
  objects.push_back(Kelm::Object(&thing, deviant));
  Kelm::ImmutableSequence<Kelm::ImmutableObject> const read = objects;
  EXPECT_EQ(read.at(0).get(), &thing);
  EXPECT_EQ(read.at(0).getDeviant(), deviant);
  // The same object in another variant is the same value.
  EXPECT_TRUE(read.contains(Kelm::ImmutableObject(&thing, {})));
}

TEST(SequenceRef, BlocksRaiseWhenTheSequenceChangesMeanwhile) {
  for (auto const& sequence : {counted<Number, List>(), counted<Number, Repeating<Number>>()}) {
    for (int i = 0; i < 100; ++i) sequence.push_back({i});
    int seen = 0;
    auto const walk = [&] {
      for ([[maybe_unused]] Number const& value : sequence.values()) {
        if (++seen == 10) sequence.replace(0, {7});
      }
    };
    EXPECT_NE(failureText(walk).find("sequence index out of bounds"), std::string::npos);
    EXPECT_LT(seen, 100);
  }
}

TEST(SequenceRef, ReplacedTextDropsItsNarrowCopy) {
  for (auto const& sequence : {counted<Text, Kelm::ListQImpl<Text>>(), counted<Text, Unique<Text>>()}) {
    Text text(u"old");
    text.narrow();
    sequence.push_back(text);
    sequence.replace(0, Text(u"new"));
    EXPECT_STREQ(sequence.at(0).narrow(), "new");
  }
}

TEST(SequenceRef, SharedListsPartOnTheFirstChangeOnly) {
  List list;
  Kelm::Sequence<Number> const handle(&list, {});
  handle.push_back({1});
  List const copy(list);
  EXPECT_EQ(list.shareCount(), 2);
  EXPECT_EQ(handle.removeAll({2}), 0);
  EXPECT_TRUE(handle.contains({1}));
  EXPECT_NE(failureText([&] { handle.replace(1, {2}); }), "");
  EXPECT_NE(failureText([&] { handle.insert(2, {2}); }), "");
  EXPECT_EQ(list.shareCount(), 2);
  handle.begin();
  EXPECT_EQ(list.shareCount(), 1);
  EXPECT_EQ(copy.shareCount(), 1);
}

}  // namespace
}  // namespace sequence_suite
