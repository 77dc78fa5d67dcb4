#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <memory>
#include <new>
#include <vector>

#include "tarn/tarn.h"

namespace {

struct Destroy {
  void operator()(tarnArray* array) const { tarnDestroyArray(array); }
};
using Array = std::unique_ptr<tarnArray, Destroy>;

class ArrayTest : public testing::Test {
 protected:
  ~ArrayTest() override { EXPECT_EQ(tarn::liveArrayCount(), fBefore); }
  std::size_t fBefore = tarn::liveArrayCount();
};

TEST_F(ArrayTest, CountIsTheProductOfTheDimensions) {
  std::size_t const cube[] = {2, 3, 4};
  std::size_t const withZero[] = {5, 0, 4};
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateArray(cube, 3, int32ClassId)).get()), 24u);
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateArray(withZero, 3, int32ClassId)).get()), 0u);
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateArray(nullptr, 0, logicalClassId)).get()), 1u);
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateNumericMatrix(7, 3, 12, 0)).get()), 21u);
  EXPECT_EQ(tarn::numberOfElements(Array(tarnCreateEmpty(objectClassId)).get()), 0u);
}

TEST_F(ArrayTest, OpaqueDimensionsAreCompletedToOneRow) {
  Array const numbers(tarnCreateOpaque(12, int32ClassId));
  Array const text(tarnCreateOpaque(0, charClassId));
  EXPECT_EQ(tarn::numberOfElements(numbers.get()), 3u);
  EXPECT_EQ(numbers->fSizes.fRows, 1u);
  EXPECT_EQ(tarn::numberOfElements(text.get()), 0u);
  numbers->_complete_opaque_dimensions();
  EXPECT_EQ(tarn::numberOfElements(numbers.get()), 3u);
}

// Sizes on both sides of the inline word and of every pool, filled to the last byte.
TEST_F(ArrayTest, DataOfEverySizeIsZeroFilledAndItsOwn) {
  std::vector<Array> arrays;
  for (int round = 0; round < 2; ++round) {
    for (std::uint64_t size = 0; size <= 80; ++size) {
      Array array(tarnCreateNumericMatrix(1, size, int32ClassId, 0));
      auto* data = tarn::dataAs<std::int32_t>(array.get());
      for (std::uint64_t i = 0; i < size; ++i) {
        ASSERT_EQ(data[i], 0) << size;
        data[i] = static_cast<std::int32_t>(size);
      }
      arrays.push_back(std::move(array));
    }
    for (std::size_t size = 0; size <= 80; ++size)
      for (std::size_t i = 0; i < size; ++i)
        ASSERT_EQ(tarn::dataAs<std::int32_t>(arrays[size].get())[i], static_cast<std::int32_t>(size));
    arrays.clear();
  }
}

TEST_F(ArrayTest, SizesBeyondMemoryRaiseOutOfMemory) {
  auto const huge = std::numeric_limits<std::uint64_t>::max() / 2;
  EXPECT_THROW(static_cast<void>(tarnCreateNumericMatrix(huge, 4, int32ClassId, 0)), std::bad_alloc);
  EXPECT_THROW(static_cast<void>(tarnCreateNumericMatrix(1, huge, logicalClassId, 0)), std::bad_alloc);
}

std::map<void*, int> sReferences;

class ObjectArrayTest : public ArrayTest {
 protected:
  ObjectArrayTest() {
    sReferences.clear();
    tarnSetElementHooks(
        {[](void* element) { ++sReferences[element]; }, [](void* element) { --sReferences[element]; }});
  }
};

TEST_F(ObjectArrayTest, HoldsOneReferenceForEachElement) {
  int a = 0, b = 0;
  Array array(tarnCreateObjectMatrix(1, 3));
  tarnSetObject(array.get(), 0, &a);
  tarnSetObject(array.get(), 1, &a);
  tarnSetObject(array.get(), 1, &b);
  tarnSetObject(array.get(), 1, &b);
  EXPECT_EQ(sReferences[&a], 1);
  EXPECT_EQ(sReferences[&b], 1);
  array.reset();
  EXPECT_EQ(sReferences[&a], 0);
  EXPECT_EQ(sReferences[&b], 0);
}

TEST_F(ObjectArrayTest, DestroyingAnEmbeddedArrayDropsAReferenceAndNothingElse) {
  int instance = 0;
  tarnArray embedded;
  tarnInitEmbedded(&embedded, &instance);
  EXPECT_EQ(tarn::numberOfElements(&embedded), 1u);
  EXPECT_EQ(*tarn::dataAs<void*>(&embedded), &instance);
  tarnDestroyArray(&embedded);
  EXPECT_EQ(sReferences[&instance], -1);
  EXPECT_EQ(*tarn::dataAs<void*>(&embedded), &instance);
}

}  // namespace
