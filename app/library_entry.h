// What the system tells the library as it is loaded and unloaded.
#pragma once

#include <cstdint>

#include "platform/resources.h"

namespace kivstore {

inline constexpr uint32_t kProcessAttach = 1;

// Keeps the handle by which the string table is found. True for every reason.
inline bool LibraryEntry(ModuleHandle module, uint32_t reason) {
  if (reason == kProcessAttach) {
    gModuleHandle = module;
  }
  return true;
}

}  // namespace kivstore
