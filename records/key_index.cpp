#include "records/key_index.h"

#include <string_view>

namespace kivstore {
namespace {

// By key index; letters give small letters without Shift, but are named by their capitals.
constexpr std::string_view kCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-=,./;'[`]\\ ";
constexpr std::string_view kOthers = "abcdefghijklmnopqrstuvwxyz)!@#$%^&*(_+<>?:\"{~}| ";
static_assert(kCharacters.size() == kKeyCount && kOthers.size() == kKeyCount);

}  // namespace

int KeyIndexOf(char character) {
  size_t index = kCharacters.find(character);
  if (index == std::string_view::npos) {
    index = kOthers.find(character);
  }
  return index != std::string_view::npos ? static_cast<int>(index) : kNoKey;
}

char KeyCharacter(int index) {
  return index >= 0 && index < kKeyCount ? kCharacters[static_cast<size_t>(index)] : '\0';
}

}  // namespace kivstore
