// The standard American layout, by a table: every printable character, and the four control
// characters that have a key of their own. Virtual keys have the numbers that Windows gives them.
#include "platform/base/never_destroyed.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

constexpr int16_t kNoKey = -1;
constexpr int16_t kShift = 0x100;

struct LayoutKey {
  char plain;
  char shifted;
  uint8_t virtualKey;
};

constexpr LayoutKey kOtherKeys[] = {
    {'\b', '\b', 0x08}, {'\t', '\t', 0x09}, {'\r', '\r', 0x0D}, {0x1B, 0x1B, 0x1B},
    {' ', ' ', 0x20},   {'0', ')', 0x30},   {'1', '!', 0x31},   {'2', '@', 0x32},
    {'3', '#', 0x33},   {'4', '$', 0x34},   {'5', '%', 0x35},   {'6', '^', 0x36},
    {'7', '&', 0x37},   {'8', '*', 0x38},   {'9', '(', 0x39},   {';', ':', 0xBA},
    {'=', '+', 0xBB},   {',', '<', 0xBC},   {'-', '_', 0xBD},   {'.', '>', 0xBE},
    {'/', '?', 0xBF},   {'`', '~', 0xC0},   {'[', '{', 0xDB},   {'\\', '|', 0xDC},
    {']', '}', 0xDD},   {'\'', '"', 0xDE},
};

class AmericanKeyboard final : public IKeyboard {
 public:
  int16_t ScanCharacter(char character) override {
    if (character >= 'a' && character <= 'z') {
      return static_cast<int16_t>(character - 'a' + 'A');
    }
    if (character >= 'A' && character <= 'Z') {
      return static_cast<int16_t>(character | kShift);
    }
    for (const LayoutKey& key : kOtherKeys) {
      if (character == key.plain) {
        return key.virtualKey;
      }
      if (character == key.shifted) {
        return static_cast<int16_t>(key.virtualKey | kShift);
      }
    }
    return kNoKey;
  }
};

constinit NeverDestroyed<AmericanKeyboard> gAmericanKeyboard;

}  // namespace

IKeyboard& PosixKeyboard() {
  return gAmericanKeyboard.object;
}

}  // namespace kivstore
