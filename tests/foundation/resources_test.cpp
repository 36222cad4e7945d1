#include <gtest/gtest.h>

#include <cstring>

#include "foundation/text/string.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

TEST(Resources, NamesOfTheStoreAreTheseBytes) {
  const struct {
    int id;
    const char* text;
  } cases[] = {
      {16500, "Classes"},
      {16501, "Students"},
      {16503, "aeiou"},
      {16505, "options.kiv"},
      {16508, "Default"},
      {16509, "longname.kiv"},
      {16510, "index.kiv"},
      {16512, "TDefault"},
      {16958, "%1 %2"},
      {17057, "_net"},
      {29002, "zep"},
      {16504, "0123456789abcdefghijklmnopqrstuvwxyz"},
      {4002, "QBundle File|QBundle Files|qbs|Qqbs|1"},
      {1002, "\rDo you wish to continue?"},
      {1013, "Set resolution to &hd by %hd"},
      {16073, "Trying to access the class list.\nPlease wait."},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(SString::FromResource(c.id).GetText(), c.text) << c.id;
  }
}

TEST(Resources, AnUnknownNumberLeavesTheString) {
  SString s("old");
  for (const int id : {0, -1, 1, 16203, 40000, 65536 + 16500, INT32_MAX, INT32_MIN}) {
    EXPECT_FALSE(s.LoadResource(id)) << id;
    EXPECT_TRUE(SString::FromResource(id).IsEmpty());
  }
  EXPECT_STREQ(s.GetText(), "old");
  EXPECT_TRUE(s.LoadResource(1001));
  EXPECT_STREQ(s.GetText(), "%s would run better with %s.");
}

TEST(Resources, TextIsCutToTheBuffer) {
  char buffer[] = "########";
  EXPECT_EQ(Platform().resources->LoadText(gModuleHandle, 16501, buffer, 5), 4);
  EXPECT_EQ(std::memcmp(buffer, "Stud\0###", 8), 0);
  EXPECT_EQ(Platform().resources->LoadText(gModuleHandle, 16501, buffer, 0), 0);
}

TEST(Resources, ALoadTakesABufferOf1023Characters) {
  struct LongTexts : IResources {
    int LoadText(ModuleHandle, int, char* buffer, int size) override {
      if (size < 1) {
        return 0;
      }
      std::memset(buffer, 'x', static_cast<size_t>(size - 1));
      buffer[size - 1] = '\0';
      return size - 1;
    }
  } texts;
  SPlatformOverride<IResources> installed(Platform().resources, &texts);
  EXPECT_EQ(SString::FromResource(1).GetLength(), 1022);
  SString formatted;
  formatted.FormatResource(1);
  EXPECT_EQ(formatted.GetLength(), 511);
}

}  // namespace
}  // namespace kivstore
