// Texts that lie together and live apart.
#include "foundation/text/text_block.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kivtest {
namespace {

using kivstore::SString;
using kivstore::STextBlock;

TEST(STextBlock, ReadsShortTextsThatOutliveItAndEachOther) {
  std::vector<SString> texts(1000);
  {
    std::string bytes;
    for (int i = 0; i < 1000; ++i) {
      bytes += std::string(static_cast<size_t>(i % 16), static_cast<char>(i % 251 + 1)) + '\0';
    }
    bytes.append(STextBlock::kAhead, '\0');
    STextBlock block;
    const char* at = bytes.data();
    for (SString& text : texts) {
      at = block.Read(at, bytes.data() + bytes.size(), text);
      ASSERT_NE(at, nullptr);
    }
    EXPECT_EQ(at, bytes.data() + bytes.size() - STextBlock::kAhead);
  }
  for (int i = 0; i < 1000; i += 2) {
    texts[static_cast<size_t>(i)].Append("and more of it");
    const SString copy = texts[static_cast<size_t>(i) + 1];
    texts[static_cast<size_t>(i) + 1].Release();
    EXPECT_EQ(copy, SString(static_cast<char>((i + 1) % 251 + 1), (i + 1) % 16));
    EXPECT_EQ(copy.GetCapacity(), copy.GetLength());
  }
  EXPECT_EQ(texts[998], SString(static_cast<char>(998 % 251 + 1), 998 % 16) + "and more of it");
}

TEST(STextBlock, LeavesTheOthersToTheirReader) {
  STextBlock block;
  SString text("kept");
  const char bytes[] = "sixteen of them!\0";
  EXPECT_EQ(block.Read(bytes, bytes + sizeof bytes, text), nullptr);
  EXPECT_EQ(block.Read(bytes + 4, bytes + sizeof bytes, text), nullptr) << "14 are left";
  EXPECT_EQ(text, "kept");
}

}  // namespace
}  // namespace kivtest
