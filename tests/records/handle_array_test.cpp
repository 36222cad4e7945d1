#include "records/handle_array.h"

#include <gtest/gtest.h>

#include <vector>

#include "records/error_dob.h"
#include "tests/records/record_model.h"
#include "tests/support/failing_memory.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Array = SHandleArray<int16_t>;
using Values = std::vector<int16_t>;

Values ValuesOf(const Array& array) {
  return Values(array.Data(), array.Data() + array.GetCount());
}

// What the array is to hold, and how much room it is to have.
struct ArrayModel {
  Values values;
  int capacity = 0;
  int16_t fill = -1;

  int Count() const { return static_cast<int>(values.size()); }
  void Fill(int count) { values.resize(static_cast<size_t>(std::max(count, Count())), fill); }
  void Resize(int n) {
    capacity = n;
    values.resize(static_cast<size_t>(std::min(n, Count())));
  }
  void SetSize(int n) { n < Count() ? values.resize(static_cast<size_t>(n)) : Resize(n), Fill(n); }
  void EnsureSize(int n) {
    capacity = n > capacity ? (n + 9) / 10 * 10 : capacity;
    Fill(n);
  }
  void ResetTo(int n) {
    n >= Count() ? Resize(n) : void();
    values.assign(static_cast<size_t>(n), fill);
  }
  void SetAt(int index, int16_t value) {
    EnsureSize(index + 1);
    values[static_cast<size_t>(index)] = value;
  }
};

using Step = void (*)(Array&, ArrayModel&, int16_t n);

const Step kSteps[] = {
    [](Array& a, ArrayModel& m, int16_t n) { a.Resize(n), n < 0 ? void() : m.Resize(n); },
    [](Array& a, ArrayModel& m, int16_t n) { a.SetSize(n), n < 0 ? void() : m.SetSize(n); },
    [](Array& a, ArrayModel& m, int16_t n) { a.EnsureSize(n), m.EnsureSize(n); },
    [](Array& a, ArrayModel& m, int16_t n) { a.ResetTo(n), n < 0 ? void() : m.ResetTo(n); },
    [](Array& a, ArrayModel& m, int16_t n) { a.SetAt(n, 9), n < 0 ? void() : m.SetAt(n, 9); },
    // An exact copy, with a block of its own, by assignment or construction.
    [](Array& a, ArrayModel& m, int16_t n) {
      Array copy(a), other(7);
      EXPECT_EQ(copy.GetCapacity(), a.GetCount());
      other.SetAt(n / 2, 8);
      other = copy;
      copy.SetAt(0, 77), a.Assign(other), a.Assign(a);
      m.capacity = m.Count();
    },
    [](Array& a, ArrayModel& m, int16_t n) { a.SetFill(n), m.fill = n; },
};

TEST(SHandleArray, DoesWhatAVectorDoes) {
  ForSeeds(20, [](Draw& draw) {
    Array array(-1), last;
    ArrayModel model;
    for (int round = 0; round < 200; ++round) {
      const auto n = static_cast<int16_t>(draw.Between(-3, 40));
      kSteps[draw.Below(std::size(kSteps))](array, model, n);
      ASSERT_EQ(ValuesOf(array), model.values) << round;
      ASSERT_EQ(array.GetCapacity(), model.capacity) << round;
      ASSERT_EQ(array.At(-1), model.fill);
      ASSERT_EQ(array.At(array.GetCount()), array.GetFill());
      ASSERT_EQ(array == last, model.values == ValuesOf(last));
      last = array;
      draw.OneIn(2) ? last.SetAt(draw.Below(50), 9) : void();
    }
  });
}

TEST(SHandleArray, StaysAsItWasWithoutMemory) {
  Array array(-1), target(8);
  array.SetAt(1, 2);
  target.SetAt(0, 5);
  FailingMemory memory;
  memory.exhausted = true;
  array.SetAt(50, 1);
  EXPECT_EQ(ValuesOf(array), (Values{-1, 2}));
  target.Assign(array);
  EXPECT_EQ(target.GetCount() + target.GetCapacity(), 0);
  EXPECT_EQ(target.Data(), nullptr);
  array.ResetTo(20);
  EXPECT_EQ(ValuesOf(array), Values(10, -1));
}

TEST(SHandleArray, ReachesItsLastPossibleElement) {
  Array array(0);
  array.SetAt(32767, 5);
  EXPECT_EQ(array.GetCount(), 0);
  array.SetAt(32766, 5);
  EXPECT_EQ(array.GetCapacity(), 32767);
  EXPECT_EQ(array.At(32766), 5);
}

// A record that is nothing but an array of three values.
struct ArrayRecord : SDob {
  ArrayRecord() { array.SetSize(3); }
  void Serialize(IDobArchive& archive) override { array.Transfer(archive, "Values"); }
  Array array{-1};
};

std::string ArrayBytes(int count, int elements) {
  ByteWriter writer;
  writer.Short(count);
  for (int i = 0; i < elements; ++i) {
    writer.Short(100 + i);
  }
  return writer.Bytes();
}

TEST(SHandleArray, TakesTheLengthOfTheFile) {
  struct {
    int claimed, count, capacity;
  } const kCases[] = {{0, 0, 3},       {2, 2, 3},       {3, 3, 3},          {30, 30, 30},
                      {256, 256, 256}, {257, 257, 257}, {5000, 5000, 5000}, {65535, 32767, 32767}};
  for (const auto& c : kCases) {
    ArrayRecord record;
    ASSERT_TRUE(Fill(record, ArrayBytes(c.claimed, c.claimed)));
    ASSERT_EQ(record.array.GetCount(), c.count);
    EXPECT_EQ(record.array.GetCapacity(), c.capacity);
    EXPECT_EQ(BytesOf(record), ArrayBytes(c.count, c.count));
  }
}

TEST(SHandleArray, AllocatesNoMoreThanTheDataBacks) {
  ArrayRecord record;
  FailingMemory memory;
  EXPECT_FALSE(Fill(record, ArrayBytes(65535, 10)));
  EXPECT_EQ(memory.largest, 512);
  EXPECT_EQ(record.array.At(9), 109);
  EXPECT_EQ(record.array.At(10), -1);
  // What there is no room for is read past.
  ArrayRecord full;
  memory.exhausted = true;
  EXPECT_TRUE(Fill(full, ArrayBytes(30, 30)));
  EXPECT_EQ(ValuesOf(full.array), (Values{100, 101, 102}));
}

// Of a count that a text does not back: elements are looked for until 256 in a row are missing.
TEST(SHandleArray, LooksForElementsOfATextSoFar) {
  const PrefFile pref;
  for (const bool found : {true, false}) {
    SDErrorDob counts;
    const std::string place = found ? "256" : "257";
    EXPECT_FALSE(counts.LoadFromPref(
        pref.Write("[Me]\r\nKeyTypedWrong_Count=65535\r\nKeyTypedWrong_" + place + "=7\r\n"),
        "Me"));
    EXPECT_EQ(counts.keyTypedWrong.At(found ? 256 : 257), found ? 7 : 0);
    EXPECT_LE(counts.keyTypedWrong.GetCount(), 1024);
  }
}

}  // namespace
}  // namespace kivtest
