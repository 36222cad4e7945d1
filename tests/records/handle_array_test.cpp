#include "records/handle_array.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/records/failing_memory.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Array = SHandleArray<int16_t>;
using Values = std::vector<int16_t>;

Values ValuesOf(const Array& array) {
  return Values(array.Data(), array.Data() + array.GetCount());
}

Array MakeArray(const Values& values, int16_t fill = -1) {
  Array array(fill);
  for (size_t i = 0; i < values.size(); ++i) {
    array.SetAt(static_cast<int32_t>(i), values[i]);
  }
  array.Resize(static_cast<int16_t>(values.size()));
  return array;
}

struct SizeCase {
  const char* what;
  void (*change)(Array&);
  Values values;
  int16_t capacity;
};

// Each begins with the four values 1, 2, 3, 4, a capacity of 4 and a fill of -1.
const SizeCase kSizeCases[] = {
    {"Resize down keeps what fits", [](Array& a) { a.Resize(2); }, {1, 2}, 2},
    {"Resize up adds room and no elements", [](Array& a) { a.Resize(9); }, {1, 2, 3, 4}, 9},
    {"Resize to nothing frees", [](Array& a) { a.Resize(0); }, {}, 0},
    {"Resize below nothing does nothing", [](Array& a) { a.Resize(-3); }, {1, 2, 3, 4}, 4},
    {"SetSize down keeps the block", [](Array& a) { a.SetSize(1); }, {1}, 4},
    {"SetSize up is exact and fills", [](Array& a) { a.SetSize(6); }, {1, 2, 3, 4, -1, -1}, 6},
    {"EnsureSize up goes by tens", [](Array& a) { a.EnsureSize(5); }, {1, 2, 3, 4, -1}, 10},
    {"EnsureSize never shortens", [](Array& a) { a.EnsureSize(1); }, {1, 2, 3, 4}, 4},
    {"EnsureSize below nothing does nothing", [](Array& a) { a.EnsureSize(-1); }, {1, 2, 3, 4}, 4},
    {"ResetTo more", [](Array& a) { a.ResetTo(5); }, {-1, -1, -1, -1, -1}, 5},
    {"ResetTo less keeps the block", [](Array& a) { a.ResetTo(2); }, {-1, -1}, 4},
    {"SetAt inside", [](Array& a) { a.SetAt(1, 9); }, {1, 9, 3, 4}, 4},
    {"SetAt outside grows", [](Array& a) { a.SetAt(5, 9); }, {1, 2, 3, 4, -1, 9}, 10},
    {"SetAt below nothing", [](Array& a) { a.SetAt(-1, 9); }, {1, 2, 3, 4}, 4},
    {"SetAt beyond 16 bits", [](Array& a) { a.SetAt(32767, 9); }, {1, 2, 3, 4}, 4},
};

TEST(SHandleArray, ChangesSizeAsEachOperationSays) {
  for (const SizeCase& c : kSizeCases) {
    Array array = MakeArray({1, 2, 3, 4});
    c.change(array);
    EXPECT_EQ(ValuesOf(array), c.values) << c.what;
    EXPECT_EQ(array.GetCapacity(), c.capacity) << c.what;
  }
}

TEST(SHandleArray, ReachesItsLastPossibleElement) {
  Array array(0);
  array.SetAt(32766, 5);
  EXPECT_EQ(array.GetCount(), 32767);
  EXPECT_EQ(array.GetCapacity(), 32767);
  EXPECT_EQ(array.At(32766), 5);
}

TEST(SHandleArray, AssignsAnExactCopyWithItsOwnBlock) {
  Array source(7);
  source.SetAt(2, 3);
  Array copy = MakeArray({1});
  copy.Assign(source);
  source.SetAt(0, 99);
  EXPECT_EQ(ValuesOf(copy), (Values{7, 7, 3}));
  EXPECT_EQ(copy.GetCapacity(), 3);
  EXPECT_EQ(copy.GetFill(), 7);
  copy.Assign(Array(4));
  EXPECT_EQ(copy.Data(), nullptr);
  EXPECT_EQ(copy.GetFill(), 4);
}

TEST(SHandleArray, ComparesCountAndElementsOnly) {
  Array roomy = MakeArray({1, 2}, 5);
  roomy.Resize(20);
  EXPECT_TRUE(roomy == MakeArray({1, 2}));
  EXPECT_FALSE(roomy == MakeArray({1, 3}));
  EXPECT_FALSE(roomy == MakeArray({1, 2, 0}));
}

// A record that is nothing but an array of three values.
struct ArrayRecord : SDob {
  void Serialize(IDobArchive& archive) override { array.Transfer(archive, "Values"); }
  Array array = MakeArray({1, 2, 3});
};

std::string ArrayBytes(int count, int elements) {
  ByteWriter writer;
  writer.Short(count);
  for (int i = 0; i < elements; ++i) {
    writer.Short(100 + i);
  }
  return writer.Bytes();
}

TEST(SHandleArray, GoesOutAsCountAndElements) {
  ArrayRecord record;
  EXPECT_EQ(BytesOf(record), std::string("\0\3\0\1\0\2\0\3", 8));
}

TEST(SHandleArray, TakesTheLengthOfTheFile) {
  struct {
    int count;
    int16_t capacity;
  } const kCases[] = {{0, 3}, {2, 3}, {3, 3}, {30, 30}, {256, 256}, {257, 257}, {5000, 5000}};
  for (const auto& c : kCases) {
    ArrayRecord record;
    ASSERT_TRUE(Fill(record, ArrayBytes(c.count, c.count)));
    ASSERT_EQ(record.array.GetCount(), c.count);
    EXPECT_EQ(record.array.GetCapacity(), c.capacity);
    for (int i = 0; i < c.count; ++i) {
      ASSERT_EQ(record.array.At(i), 100 + i);
    }
  }
}

TEST(SHandleArray, KeepsSixteenBitsOfCountAndReadsPastTheRest) {
  ArrayRecord record;
  ASSERT_TRUE(Fill(record, ArrayBytes(65535, 65535)));
  EXPECT_EQ(record.array.GetCount(), 32767);
  EXPECT_EQ(record.array.At(32766), static_cast<int16_t>(100 + 32766));
}

TEST(SHandleArray, AllocatesNoMoreThanTheDataBacks) {
  ArrayRecord record;
  FailingMemory memory;
  EXPECT_FALSE(Fill(record, ArrayBytes(65535, 10)));
  EXPECT_LE(memory.largest, 512);
  EXPECT_EQ(record.array.At(9), 109);
  EXPECT_EQ(record.array.At(10), -1);
}

TEST(SHandleArray, StaysAsItWasWithoutMemory) {
  Array array = MakeArray({1, 2});
  Array target = MakeArray({5});
  ArrayRecord record;
  FailingMemory memory;
  memory.exhausted = true;
  array.SetAt(50, 1);
  EXPECT_EQ(ValuesOf(array), (Values{1, 2}));
  target.Assign(array);
  EXPECT_EQ(target.GetCount(), 0);
  // What there is no room for is read past.
  EXPECT_TRUE(Fill(record, ArrayBytes(30, 30)));
  EXPECT_EQ(ValuesOf(record.array), (Values{100, 101, 102}));
}

TEST(SHandleArray, GivesTheFillValueOutside) {
  const Array array = MakeArray({1, 2}, -9);
  EXPECT_EQ(array.At(-1), -9);
  EXPECT_EQ(array.At(2), -9);
  EXPECT_EQ(array.At(1), 2);
}

}  // namespace
}  // namespace kivtest
