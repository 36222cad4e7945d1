#include "records/key_tables.h"

namespace kivstore {
namespace {

struct ShortcutWord {
  uint16_t modifier;
  SString word;
};

}  // namespace

SString FormatShortcut(uint16_t modifiers, int key) {
  static const ShortcutWord words[] = {{kControlDown, SString::FromResource(4040)},
                                       {kAltDown, SString::FromResource(4041)},
                                       {kShiftDown, SString::FromResource(4042)}};
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
