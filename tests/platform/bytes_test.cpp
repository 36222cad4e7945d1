#include "platform/base/bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kivstore {
namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

std::string Lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
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
      const int expected = Sign(Lowered(a).compare(Lowered(b)));
      ASSERT_EQ(Sign(CompareBytesNoCase(a, b)), expected) << a << '|' << b;
      ASSERT_EQ(EqualBytesNoCase(a, b), expected == 0);
      const uint64_t keyA = FoldedSortKey(a), keyB = FoldedSortKey(b);
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
