#include <gtest/gtest.h>

#include "platform/kelm/support/failure.h"
#include "platform/kelm_mi/support/Script.h"
#include "platform/kelm_mi/support/TestMetamodel.h"
#include "vesk/VeskClassInfo.h"

namespace {

using namespace kelm_mi_test;

using Names = std::vector<std::string>;

Names superclasses(char const* aClass) {
  Names names;
  for (auto const* const super : classNamed(aClass).superclasses()) names.emplace_back(super->fName.view());
  return names;
}

/// Whether the class has the methods of this name itself, and all stand for the inherited ones.
bool overrides(char const* aClass, char const* aMethod) {
  bool any = false;
  for (auto const& method : classNamed(aClass).methods()) {
    if (method.fName.view() != aMethod) continue;
    any = true;
    if (!method.fOverridesAll) return false;
  }
  return any;
}

class SequenceTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { publishZoo(); }

  SequenceTest() : fDogs(callOn("zoo.SequenceOfDog", "make", {Empty()})) {
    for (Value const* const value : {&fFirst, &fSecond, &fThird}) call(fDogs, "append", {value->object()});
  }
  std::vector<Kelm::ReferenceCountingIntf*> contents() const {
    std::vector<Kelm::ReferenceCountingIntf*> result;
    for (int i = 1; i <= call(fDogs, "size").int32(); ++i) result.push_back(call(fDogs, "at", {i}).native());
    return result;
  }
  auto natives(std::initializer_list<Value const*> aValues) const {
    std::vector<Kelm::ReferenceCountingIntf*> result;
    for (Value const* const value : aValues) result.push_back(value->native());
    return result;
  }

  Value const fFirst = show(makeBeast(dog()), false);
  Value const fSecond = show(makeBeast(dog()), false);
  Value const fThird = show(makeBeast(dog()), false);
  Value const fAnimal = show(makeBeast(animal()), false);
  Value const fDogs;
};

TEST_F(SequenceTest, sequencesStandToEachOtherAsTheirElementsDo) {
  EXPECT_EQ(superclasses("zoo.SequenceOfDog"), (Names{"zoo.ImmutableSequenceOfDog", "zoo.SequenceOfAnimal"}));
  EXPECT_EQ(superclasses("zoo.SequenceOfImmutableDog"),
            (Names{"zoo.ImmutableSequenceOfImmutableDog", "zoo.SequenceOfImmutableAnimal"}));
  EXPECT_EQ(superclasses("zoo.ImmutableSequenceOfDog"),
            (Names{"zoo.ImmutableSequenceOfImmutableDog", "zoo.ImmutableSequenceOfAnimal"}));
  EXPECT_EQ(superclasses("zoo.ImmutableSequenceOfImmutableDog"),
            (Names{"zoo.ImmutableSequenceOfImmutableAnimal"}));
  EXPECT_EQ(superclasses("zoo.SequenceOfAnimal"),
            (Names{"zoo.ImmutableSequenceOfAnimal", "Kelm.SequenceOfClassObject"}));
  EXPECT_EQ(superclasses("zoo.DogIterator"), Names{"zoo.DogImmutableIterator"});
  EXPECT_EQ(superclasses("zoo.ImmutableDogIterator"), Names{"zoo.ImmutableDogImmutableIterator"});
  EXPECT_TRUE(superclasses("zoo.DogImmutableIterator").empty());
}

TEST_F(SequenceTest, readOnlySequencesReadAndNothingElse) {
  EXPECT_EQ(classNamed("zoo.SequenceOfDog").methods().size(), 24u);
  EXPECT_EQ(classNamed("zoo.SequenceOfImmutableDog").methods().size(), 24u);
  EXPECT_EQ(classNamed("zoo.ImmutableSequenceOfDog").methods().size(), 7u);
  EXPECT_EQ(classNamed("zoo.DogIterator").methods().size(), 6u);
  EXPECT_EQ(classNamed("zoo.ImmutableSequenceOfImmutableDog").findMember(vesk::internal::intern("append")),
            nullptr);
  for (char const* const name : {"append", "insert", "replace", "at", "front", "begin", "make", "makeUnique"})
    EXPECT_TRUE(overrides("zoo.SequenceOfDog", name)) << name;
}

TEST_F(SequenceTest, positionsCountFromOne) {
  EXPECT_EQ(call(fDogs, "at", {1}).object(), fFirst.object());
  EXPECT_EQ(call(fDogs, "at", {3}).object(), fThird.object());
  EXPECT_NE(failureOf([&] { call(fDogs, "at", {0}); }).find("sequence index must be positive"),
            std::string::npos);
  EXPECT_NE(failureOf([&] { call(fDogs, "at", {4}); }).find("sequence index out of bounds"),
            std::string::npos);
  call(fDogs, "erase", {1});
  call(fDogs, "insert", {3, fFirst.object()});
  EXPECT_EQ(contents(), natives({&fSecond, &fThird, &fFirst}));
  call(fDogs, "replace", {1, fFirst.object()});
  EXPECT_EQ(call(fDogs, "removeAll", {fFirst.object()}).int32(), 2);
  EXPECT_EQ(contents(), natives({&fThird}));
  call(fDogs, "push_front", {fSecond.object()});
  call(fDogs, "pop_back");
  EXPECT_EQ(call(fDogs, "front").object(), call(fDogs, "back").object());
  call(fDogs, "clear");
  EXPECT_TRUE(call(fDogs, "isEmpty").logical());
}

TEST_F(SequenceTest, onlyElementsOfTheClassGetIn) {
  // Below the match of signatures, where a list of more general elements is reached by its own class.
  auto const& animals = member(classNamed("zoo.SequenceOfAnimal"), "append");
  Arguments good{fDogs.object(), fFirst.object()};
  EXPECT_NE(vesk::host::findMethod(animals, CallForm::OnClass, good, 2), nullptr);
  EXPECT_THROW(call(fDogs, "append", {fAnimal.object()}), vesk::VeskError);
  for (auto const& method : classNamed("zoo.SequenceOfDog").methods()) {
    if (method.fName.view() != "append" && method.fName.view() != "push_front") continue;
    VeskValue const arguments[] = {fDogs.array(), fAnimal.array()};
    VeskValue result;
    int count = 0;
    EXPECT_NE(
        failureOf([&] { method.fInfo->invoke(nullptr, count, &result, 2, arguments); }).find("'zoo.Dog'"),
        std::string::npos);
  }
  EXPECT_NE(failureOf([&] { call(fDogs, "append", {Empty()}); }).find("'zoo.Dog'"), std::string::npos);
  EXPECT_EQ(call(fDogs, "size").int32(), 3);
}

TEST_F(SequenceTest, aUniqueSequenceRefusesAnElementTwice) {
  Value const unique = callOn("zoo.SequenceOfDog", "makeUnique", {Empty()});
  call(unique, "append", {fFirst.object()});
  call(unique, "append", {fFirst.object()});
  EXPECT_EQ(call(unique, "size").int32(), 1);
}

TEST_F(SequenceTest, iteratorsWalkKeepTheirPlaceAndEdit) {
  Value const it = call(fDogs, "begin");
  EXPECT_EQ(it.className(), "zoo.DogIterator");
  Value const copy = call(it, "clone");
  call(it, "getNext");
  EXPECT_TRUE(call(it, "ne", {copy.object()}).logical());
  EXPECT_EQ(call(copy, "item").object(), fFirst.object());
  EXPECT_EQ(call(it, "item").object(), fSecond.object());
  Value const next = call(fDogs, "erase", {it.object()});
  EXPECT_EQ(call(next, "item").object(), fThird.object());
  Value const inserted = call(fDogs, "insert", {next.object(), fSecond.object()});
  EXPECT_EQ(call(inserted, "item").object(), fSecond.object());
  call(fDogs, "erase", {copy.object(), inserted.object()});
  EXPECT_EQ(contents(), natives({&fSecond, &fThird}));
  call(inserted, "getNext");
  call(inserted, "getNext");
  EXPECT_TRUE(call(inserted, "eq", {call(fDogs, "end").object()}).logical());
  EXPECT_THROW(callOn("zoo.DogIterator", "item", {Empty()}), vesk::VeskError);
  EXPECT_NE(failureOf([&] { callOn("zoo.DogIterator", "clone", {Empty()}); }).find("NULL ref"),
            std::string::npos);
  EXPECT_NE(failureOf([&] { callOn("zoo.SequenceOfDog", "size", {Empty()}); }).find("NULL sequence"),
            std::string::npos);
}

TEST_F(SequenceTest, theHostWalksInBlocksAndSeesWhatTheMethodsSee) {
  for (int i = 0; i < 200; ++i) call(fDogs, "append", {fSecond.object()});
  auto const* const hook = classNamed("zoo.SequenceOfDog").info().getSequenceHook();
  ASSERT_NE(hook, nullptr);
  EXPECT_STREQ(hook->elementType(), "zoo.Dog");
  ASSERT_EQ(hook->size(fDogs.object()), 203u);
  constexpr std::size_t kBlock = vesk::SequenceHook::kBlock;
  std::vector<VeskValue> values(kBlock);
  std::uint64_t stamp = 0;
  EXPECT_EQ(hook->readBlock(fDogs.object(), 1, 250, values.data(), stamp), kBlock);
  EXPECT_EQ(Instance::fromArray(values[0].array()), fSecond.object());
  EXPECT_EQ(Instance::fromArray(values[1].array()), fThird.object());
  EXPECT_EQ(Instance::fromArray(values[kBlock - 1].array()), fSecond.object());
  for (VeskValue const& value : values) tarnDestroyArray(value.array());
  EXPECT_EQ(hook->find(fDogs.object(), fThird.object()->array(), 0, 203), 2u);
  EXPECT_EQ(hook->find(fDogs.object(), fThird.object()->array(), 3, 203), vesk::SequenceHook::kNotFound);
  EXPECT_EQ(hook->find(fDogs.object(), fSecond.object()->array(), 2, 203), 3u);

  // The same size, but not the same sequence.
  call(fDogs, "replace", {1, fSecond.object()});
  EXPECT_EQ(hook->readBlock(fDogs.object(), 32, 250, values.data(), stamp), 0u);
  EXPECT_EQ(stamp, 0u);
}

TEST_F(SequenceTest, readOnlyElementsStayReadOnly) {
  Value const seen = callOn("zoo.SequenceOfImmutableDog", "make", {Empty()});
  call(seen, "append", {fFirst.object()});
  EXPECT_EQ(call(seen, "at", {1}).className(), "zoo.ImmutableDog");
  Value const item = call(call(seen, "begin"), "item");
  EXPECT_EQ(item.className(), "zoo.ImmutableDog");
  EXPECT_TRUE(item.isImmutable());
}

}  // namespace
