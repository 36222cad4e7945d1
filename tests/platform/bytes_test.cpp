#include "platform/base/bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kivstore {
namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// The rule itself, one byte at a time.
int SlowCompareNoCase(const std::string& a, const std::string& b) {
  for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
    const int x = FoldLower(static_cast<unsigned char>(a[i]));
    const int y = FoldLower(static_cast<unsigned char>(b[i]));
    if (x != y) {
      return x < y ? -1 : 1;
    }
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

TEST(Bytes, FoldingChangesAToZOnly) {
  for (unsigned c = 0; c < 256; ++c) {
    const auto byte = static_cast<unsigned char>(c);
    EXPECT_EQ(FoldLower(byte), c >= 0x41 && c <= 0x5A ? c + 0x20 : c);
    EXPECT_EQ(FoldUpper(byte), c >= 0x61 && c <= 0x7A ? c - 0x20 : c);
    EXPECT_EQ(FoldLowerPacked(uint64_t{c} * 0x0101010101010101),
              uint64_t{FoldLower(byte)} * 0x0101010101010101);
  }
}

TEST(Bytes, CaseBlindOrderHoldsAtEveryLengthAndPlace) {
  std::vector<std::string> texts{""};
  for (size_t length = 1; length <= 18; ++length) {
    const std::string base = std::string("abcdefghijklmnopqr").substr(0, length);
    texts.push_back(base);
    for (const size_t at : {size_t{0}, length / 2, length - 1}) {
      for (const char c : {'A', 'Z', '[', '_', '{', '\0', '\x7F', '\x80', '\xC1', '\xFF'}) {
        texts.push_back(base);
        texts.back()[at] = c;
      }
    }
  }
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      const int expected = SlowCompareNoCase(a, b);
      ASSERT_EQ(Sign(CompareBytesNoCase(a, b)), expected) << a << '|' << b;
      ASSERT_EQ(EqualBytesNoCase(a, b), expected == 0);
      const uint64_t keyA = FoldedSortKey(a);
      const uint64_t keyB = FoldedSortKey(b);
      ASSERT_TRUE(keyA == keyB || (keyA < keyB) == (expected < 0)) << a << '|' << b;
    }
  }
}

TEST(Bytes, PlainOrderIsUnsignedAndTheSortKeyTheFirstEightBytesFolded) {
  EXPECT_LT(CompareBytes("Z", "a"), 0);
  EXPECT_LT(CompareBytes("z", "\x80"), 0);
  EXPECT_LT(CompareBytes("a", "ab"), 0);
  EXPECT_EQ(FoldedSortKey("DefAult9x"), 0x64656661756C7439u);
  EXPECT_EQ(FoldedSortKey("AbCdE"), 0x6162636465000000u);
}

}  // namespace
}  // namespace kivstore
