#include "hosts/kivreport/page/keyboard_picture.h"

#include <string_view>

#include "hosts/kivreport/page/drawing.h"
#include "hosts/kivreport/page/markup.h"
#include "records/key_index.h"

namespace kivreport {
namespace {

constexpr int kKey = 44, kKeyGap = 4;  // a key, and between two

// A row of keys, moved to the right as on a real keyboard.
struct KeyRow {
  std::string_view keys;
  int left;
};
constexpr KeyRow kRows[] = {
    {"`1234567890-=", 0}, {"QWERTYUIOP[]\\", 72}, {"ASDFGHJKL;'", 84}, {"ZXCVBNM,./", 108}};
constexpr int kSpaceLeft = 180, kSpaceWidth = 260;
constexpr int64_t kTelling = 10;  // keystrokes: with fewer a key's share says little
constexpr int kKeyboardWidth = 72 + 13 * (kKey + kKeyGap);
constexpr int kKeyboardHeight = 5 * (kKey + kKeyGap);

int PercentOf(const KeyCount& count) {
  return count.keystrokes > 0
             ? static_cast<int>((count.errors * 100 + count.keystrokes / 2) / count.keystrokes)
             : 0;
}

// From one that says little over four shades.
char KeyShade(const KeyCount& count) {
  const int percent = PercentOf(count);
  return count.keystrokes < kTelling ? 'o'
         : percent >= 20             ? 'd'
         : percent >= 10             ? 'c'
         : percent >= 4              ? 'b'
                                     : 'a';
}

std::string DrawKey(int x, int y, int width, const KeyCount& count, const std::string& name) {
  const double middle = x + width / 2.0;
  std::string key = std::string("<g class=\"") + KeyShade(count) + "\"><rect x=\"" +
                    std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" width=\"" +
                    std::to_string(width) + "\" height=\"" + std::to_string(kKey) +
                    "\" rx=\"5\"/>" + DrawnText(middle, y + 18, Escaped(name));
  if (count.keystrokes > 0) {
    key += DrawnText(middle, y + 36, ErrorShare(count));
  }
  return key + "</g>";
}

std::string DrawRow(const Keys& keys, const KeyRow& row, int y) {
  std::string drawn;
  int x = row.left;
  for (const char key : row.keys) {
    const auto index = static_cast<size_t>(kivstore::KeyIndexOf(key));
    drawn += DrawKey(x, y, kKey, keys.byKey[index], std::string(1, key));
    x += kKey + kKeyGap;
  }
  return drawn;
}

std::string WeakestInWords(const Keys& keys, const Words& words) {
  std::string text;
  for (const int key : keys.Weakest()) {
    text += (text.empty() ? " " : ", ") + Escaped(KeyName(key)) + ' ' +
            ErrorShare(keys.byKey[static_cast<size_t>(key)]);
  }
  return std::string(words[Word::kWeakest]) + (text.empty() ? " –" : text);
}

}  // namespace

std::string ErrorShare(const KeyCount& count) {
  return std::to_string(PercentOf(count)) + "\u00A0%";
}

std::string KeyboardPicture(const Keys& keys, const Words& words) {
  std::string drawn;
  int y = 0;
  for (const KeyRow& row : kRows) {
    drawn += DrawRow(keys, row, y);
    y += kKey + kKeyGap;
  }
  drawn += DrawKey(kSpaceLeft, y, kSpaceWidth, keys.byKey[kivstore::kSpaceKey],
                   std::string(words[Word::kSpaceBar]));
  return "<svg class=\"keys\" role=\"img\" viewBox=\"0 0 " + std::to_string(kKeyboardWidth) + ' ' +
         std::to_string(kKeyboardHeight) + "\" aria-label=\"" + WeakestInWords(keys, words) +
         "\">" + drawn + "</svg>\n";
}

}  // namespace kivreport
