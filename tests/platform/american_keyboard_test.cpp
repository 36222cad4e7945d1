// The keyboard that POSIX knows, and Windows where it is the user's.
#include <gtest/gtest.h>

#include "platform/platform.h"

namespace kivstore {
namespace {

TEST(Keyboard, IsTheStandardAmericanLayout) {
  const struct {
    const char* characters;
    int first, shift;
  } runs[] = {{"abcdefghijklmnopqrstuvwxyz", 0x41, 0},
              {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", 0x41, 0x100},
              {"0123456789", 0x30, 0},
              {")!@#$%^&*(", 0x30, 0x100},
              {";=,-./`", 0xBA, 0},
              {":+<_>?~", 0xBA, 0x100},
              {"[\\]'", 0xDB, 0},
              {"{|}\"", 0xDB, 0x100},
              {" ", 0x20, 0},
              {"\b\t", 0x08, 0}};
  for (const auto& run : runs) {
    int key = run.first;
    for (const char* c = run.characters; *c != '\0'; ++c) {
      EXPECT_EQ(Platform().keyboard->ScanCharacter(*c), key++ | run.shift) << *c;
    }
  }
  EXPECT_EQ(Platform().keyboard->ScanCharacter('\xE4'), -1);
}

}  // namespace
}  // namespace kivstore
