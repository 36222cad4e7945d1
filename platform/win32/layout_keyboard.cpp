// The layout in use.
#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

class LayoutKeyboard final : public IKeyboard {
 public:
  int16_t ScanCharacter(char character) override { return VkKeyScanA(character); }
};

constinit NeverDestroyed<LayoutKeyboard> gLayoutKeyboard;

}  // namespace

IKeyboard& WindowsKeyboard() {
  return gLayoutKeyboard.object;
}

}  // namespace kivstore
