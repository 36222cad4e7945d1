// An index's names held against what a folder really has, letter case ignored, in one walk through
// the folder. Made for lists of a thousand: a name on disk that the index has is only looked up,
// and becomes no string.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "foundation/containers/string_array.h"
#include "foundation/files/file_spec.h"

namespace kivstore {

class SFolderMatch {
 public:
  // For so many names, which come by Add, with their FoldedSortKey, and must outlive this.
  explicit SFolderMatch(int32_t room);
  void Add(const SString& name, uint64_t sortKey) {
    if (known != nullptr && count < room) {
      known[count++] = {KeyOf(name.View(), sortKey), &name, kNoName, false};
    }
  }

  // Which entries of the folder count; null takes all.
  using Filter = bool (*)(std::string_view name, const SString& argument);
  // `mask` is SFileFinder's. False if the folder could not be read to its end, has more unknown
  // names than a list can hold, or memory is short: then nothing is known of the names.
  bool Walk(const SFileSpec& folder, uint16_t mask, Filter filter, const SString& argument);

  // By the order of Add.
  bool IsOnDisk(int32_t index) const { return known[index].isOnDisk; }
  bool AreAllOnDisk() const { return found == count; }
  // What the folder has and the names lack, in the order of CompareStrings.
  SStringArray unknown;

 private:
  // Names with the same place in the table hang together, the first added first.
  struct KnownName {
    uint64_t key;  // of the name without regard to case: what nearly always decides
    const SString* name;
    int32_t next;
    bool isOnDisk;
  };
  static constexpr int32_t kNoName = -1;
  static constexpr size_t kWholeKey = 8;  // a name no longer than this stands in its key whole

  static uint64_t KeyOf(std::string_view name, uint64_t sortKey) {
    return name.size() <= kWholeKey ? sortKey : KeyOfLong(name, sortKey);
  }
  static uint64_t KeyOfLong(std::string_view name, uint64_t sortKey);

  int32_t& FirstAt(uint64_t key) const;
  void Link();
  bool Mark(std::string_view name);
  bool AddUnknown(std::string_view name);

  int32_t room;
  int32_t count = 0;
  int32_t found = 0;  // how many of them are on disk
  uint32_t placeMask = 0;
  std::unique_ptr<KnownName[]> known;
  std::unique_ptr<int32_t[]> places;
};

}  // namespace kivstore
