#include "platform/text_numbers.h"
#include "records/key_tables.h"

namespace kivstore {
namespace {

struct ShortcutWord {
  uint16_t modifier;
  SString word;
};

}  // namespace

SString FormatShortcut(uint16_t modifiers, int key) {
  static const ShortcutWord words[] = {{kControlDown, SString::FromResource(kTextCtrlKey)},
                                       {kAltDown, SString::FromResource(kTextAltKey)},
                                       {kShiftDown, SString::FromResource(kTextShiftKey)}};
  SString text;
  if (key == kNoKeyCode) {
    return text;
  }
  for (const ShortcutWord& entry : words) {
    if ((modifiers & entry.modifier) != 0) {
      text += entry.word;
    }
  }
  text += GetKeyName(key);
  return text;
}

}  // namespace kivstore
