// The keyboard layout.
#pragma once

#include <cstdint>

namespace kivstore {

class IKeyboard {
 public:
  virtual ~IKeyboard() = default;
  // Low byte: virtual key; high byte: shift state. -1 if the layout has no key for the character.
  virtual int16_t ScanCharacter(char character) = 0;
};

}  // namespace kivstore
