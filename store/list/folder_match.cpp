#include "store/list/folder_match.h"

#include <algorithm>
#include <bit>
#include <new>

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"

namespace kivstore {
namespace {

constexpr int32_t kMostUnknown = 32767;           // lists are walked with 16-bit counters
constexpr uint64_t kSpread = 0x9E3779B97F4A7C15;  // brings every bit to the top

}  // namespace

SFolderMatch::SFolderMatch(int32_t room)
    : room(room), known(new (std::nothrow) KnownName[static_cast<size_t>(room)]) {
  const size_t size = std::bit_ceil(2 * static_cast<size_t>(room) + 1);
  places.reset(new (std::nothrow) int32_t[size]);
  placeMask = static_cast<uint32_t>(size - 1);
  if (places != nullptr) {
    std::fill_n(places.get(), size, kNoName);
  }
}

int32_t& SFolderMatch::FirstAt(uint64_t key) const {
  return places[static_cast<uint32_t>(key * kSpread >> 40) & placeMask];
}

// All of the name counts, so that long names alike at their start do not pile up in one place. Few
// are long: kept out of the way of the others.
[[gnu::noinline]] uint64_t SFolderMatch::KeyOfLong(std::string_view name, uint64_t sortKey) {
  uint64_t key = sortKey;
  while (name.size() > kWholeKey) {
    name.remove_prefix(kWholeKey);
    key = key * kSpread + FoldedSortKey(name);
  }
  return key;
}

// From the last to the first, so that of equal names the first hangs in front.
void SFolderMatch::Link() {
  for (int32_t i = count - 1; i >= 0; --i) {
    int32_t& first = FirstAt(known[i].key);
    known[i].next = first;
    first = i;
  }
}

bool SFolderMatch::Walk(const SFileSpec& folder, uint16_t mask, Filter filter,
                        const SString& argument) {
  if (known == nullptr || places == nullptr) {
    return false;
  }
  Link();
  SFileFinder finder(folder, mask);
  FolderEntry entry;
  while (finder.NextEntry(entry)) {
    const std::string_view name(entry.name, static_cast<size_t>(entry.nameLength));
    if (filter != nullptr && !filter(name, argument)) {
      continue;
    }
    if (!Mark(name) && !AddUnknown(name)) {
      return false;
    }
  }
  unknown.Sort(CompareStrings);
  return !finder.HasFailed();
}

bool SFolderMatch::AddUnknown(std::string_view name) {
  const int32_t before = unknown.GetSize();
  unknown.Add(SString(name));
  return before < kMostUnknown && unknown.GetSize() > before;
}

// Of several equal names the folder's entries take one each.
bool SFolderMatch::Mark(std::string_view name) {
  const uint64_t key = KeyOf(name, FoldedSortKey(name));
  for (int32_t i = FirstAt(key); i != kNoName; i = known[i].next) {
    KnownName& candidate = known[i];
    if (candidate.key == key && !candidate.isOnDisk &&
        (name.size() <= kWholeKey ? candidate.name->GetLength() <= static_cast<int>(kWholeKey)
                                  : EqualBytesNoCase(candidate.name->View(), name))) {
      candidate.isOnDisk = true;
      ++found;
      return true;
    }
  }
  return false;
}

}  // namespace kivstore
