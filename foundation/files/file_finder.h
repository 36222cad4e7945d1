// A walk through a folder. An entry must pass both a type bit and a hidden bit of the mask; "." and
// ".." are passed over.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/files/file_spec.h"

namespace kivstore {

class SFileFinder {
 public:
  static constexpr uint16_t kFiles = 1;
  static constexpr uint16_t kFolders = 2;
  static constexpr uint16_t kVisible = 4;
  static constexpr uint16_t kHidden = 8;
  static constexpr uint16_t kVisibleFiles = kFiles | kVisible;
  static constexpr uint16_t kVisibleFolders = kFolders | kVisible;
  static constexpr uint16_t kEverything = 15;

  // `pattern` follows "*" in the search mask; null or empty means ".*", which is every name. At
  // most 259 characters.
  SFileFinder(const SFileSpec& folder, uint16_t mask, const char* pattern = nullptr);

  // False at the end, which closes the search.
  bool Next(SFileSpec& out);
  // The same walk without building a spec: `entry` holds until the next step.
  bool NextEntry(FolderEntry& entry);
  // Once a step has answered false: the folder could not be opened or not be read to its end, so
  // that what was not shown may still be there.
  bool HasFailed() const { return failed; }

 private:
  bool Start();

  SFileSpec spec;
  bool started = false;
  bool failed = false;
  uint16_t mask;
  char pattern[260];
  std::unique_ptr<IFolderWalk> walk;
};

}  // namespace kivstore
