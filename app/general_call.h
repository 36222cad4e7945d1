// What stands around one command: the set-up that makes the application object with its records
// and aims it at the host's data path, and the tear-down that takes all of it away again. Lives on
// the stack of GeneralProc; one at a time.
//
// Survivors of a call: the roster caches, gTeacherTier, gSiteMode and the module handle.
#pragma once

#include <cstdint>

#include "foundation/memory/memory_block.h"
#include "kivstore/general_proc.h"

namespace kivstore {

class SGeneralCall {
 public:
  // Nothing in it is checked: where memory or the path lacks, the command finds no store.
  explicit SGeneralCall(const SGeneralParams& params);
  ~SGeneralCall();
  SGeneralCall(const SGeneralCall&) = delete;
  SGeneralCall& operator=(const SGeneralCall&) = delete;

  uint8_t GetMode() const { return mode; }
  const char* GetDataPath() const { return dataPath; }
  char GetSeparator() const { return static_cast<char>(separator); }

 private:
  void MakeApplication();
  void SetSite();
  void SetDataPath(const char* path);
  void FreeDataPath();

  uint8_t mode;
  uint8_t reserved = 0;
  char* dataPath = nullptr;               // the library's own copy, in the block below
  MemoryHandle dataPathHandle = nullptr;  // owned
  uint8_t separator = '\\';
};

}  // namespace kivstore
