// The services in use, one pointer per concern. Each starts at the platform's own implementation
// and is never null; a test or an administering host puts another one in its place and takes it
// back.
//
// Everything that asks the operating system stands behind these. No other folder includes a system
// header.
#pragma once

#include "platform/clock.h"
#include "platform/dates.h"
#include "platform/file_services.h"
#include "platform/keyboard.h"
#include "platform/memory.h"
#include "platform/resources.h"
#include "platform/system.h"

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
