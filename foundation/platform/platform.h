// The services in use, one pointer per concern. Each starts at the platform's own implementation
// and is never null; a test or an administering host puts another one in its place and takes it
// back.
//
// Everything that asks the operating system stands behind these. No other folder includes a system
// header.
#pragma once

#include "foundation/platform/clock.h"
#include "foundation/platform/dates.h"
#include "foundation/platform/file_services.h"
#include "foundation/platform/keyboard.h"
#include "foundation/platform/memory.h"
#include "foundation/platform/resources.h"
#include "foundation/platform/system.h"

namespace kivstore {

struct SPlatform {
  IFileServices* files;
  IClock* clock;
  IMemory* memory;
  IResources* resources;
  IDates* dates;
  IKeyboard* keyboard;
  ISystem* system;
};

// Constant-initialised from the platform's own services, so that static construction may use it.
SPlatform& Platform();

// Holds one service in place for a scope.
template <class Service>
class SPlatformOverride {
 public:
  SPlatformOverride(Service*& slot, Service* replacement) : slot(slot), previous(slot) {
    slot = replacement;
  }
  ~SPlatformOverride() { slot = previous; }
  SPlatformOverride(const SPlatformOverride&) = delete;
  SPlatformOverride& operator=(const SPlatformOverride&) = delete;

 private:
  Service*& slot;
  Service* previous;
};

}  // namespace kivstore
