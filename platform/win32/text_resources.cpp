// The string table of the module's resources, made by string_table.rc.
#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

class TextResources final : public IResources {
 public:
  int LoadText(ModuleHandle module, int id, char* buffer, int size) override {
    if (id < 0 || id > INT16_MAX || size < 1) {
      return 0;
    }
    return LoadStringA(static_cast<HINSTANCE>(module), static_cast<UINT>(id), buffer, size);
  }
};

constinit NeverDestroyed<TextResources> gTextResources;

}  // namespace

IResources& WindowsResources() {
  return gTextResources.object;
}

}  // namespace kivstore
