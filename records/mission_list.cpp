#include "records/mission_list.h"

#include <algorithm>
#include <memory>

#include "archive/dob_pref_archive.h"

namespace kivstore {
namespace {

// How many missions in a row a text may lack altogether before its count is not believed.
constexpr int kMissesInText = 256;

}  // namespace

// Missions are objects: they go to a block of their new size one by one.
bool SMissionList::SetCapacity(int32_t n) {
  const MemoryHandle grown =
      AllocateBlock(int64_t{n} * static_cast<int64_t>(sizeof(STOMissionDob)));
  auto* const moved = static_cast<STOMissionDob*>(LockBlock(grown));
  if (moved == nullptr) {
    FreeBlock(grown);
    return false;
  }
  std::uninitialized_copy(begin(), end(), moved);
  std::destroy(begin(), end());
  FreeBlock(handle);
  handle = grown;
  missions = moved;
  capacity = n;
  return true;
}

// Up to n missions, for which there must be room.
void SMissionList::AppendNew(int32_t n) {
  std::uninitialized_default_construct(end(), missions + n);
  count = n;
}

bool SMissionList::SetCount(int32_t n) {
  if (n < 0 || n > kMaxMissions || (n > capacity && !SetCapacity(n))) {
    return false;
  }
  if (n > count) {
    AppendNew(n);
    return true;
  }
  std::destroy(missions + n, end());
  count = n;
  if (n == 0) {
    FreeBlock(handle);
    handle = nullptr;
    missions = nullptr;
    capacity = 0;
  }
  return true;
}

bool SMissionList::Grow(int32_t n) {
  if (n <= count) {
    return true;
  }
  const int32_t step = std::clamp(n / 8, 4, 1024);
  if (n > kMaxMissions || (n > capacity && !SetCapacity((n + step - 1) / step * step))) {
    return false;
  }
  AppendNew(n);
  return true;
}

// New missions have their defaults.
void SMissionList::Clear() {
  const int32_t old = std::min<int32_t>(count, kMissionCount);
  SetCount(kMissionCount);
  std::for_each(missions, missions + old, [](auto& mission) { mission.Clear(); });
  std::for_each(missions + old, end(), [](auto& mission) { mission.SetDirty(true); });
}

void SMissionList::Serialize(IDobArchive& archive) {
  uint16_t n = static_cast<uint16_t>(count);
  archive.PushSection("Missions");
  archive.TransferUShort("Count", n);
  if (archive.IsReading()) {
    Read(archive, n);
  } else {
    for (int32_t i = 0; i < count; ++i) {
      TransferMission(archive, i, missions[i]);
    }
  }
  archive.PopSection();
}

void SMissionList::TransferMission(IDobArchive& archive, int32_t index, STOMissionDob& mission) {
  archive.PushKeyNumber(static_cast<uint16_t>(index));
  mission.Serialize(archive);
  archive.PopKey();
}

bool SMissionList::Measure(std::string_view bytes, int64_t& length) const {
  const int32_t n = StoredCountAt(bytes, length);
  int64_t ofMission = 0;
  STOMissionDob().Measure(bytes, ofMission);
  length += kStoredWidth<uint16_t> + n * ofMission;
  return n >= 0 && n <= kMaxMissions;
}

// Missions that the list cannot take are read past.
void SMissionList::Take(const uint8_t*& from) {
  uint16_t n;
  TakeStored(from, n);
  n < count ? SetCount(n) : Grow(n);
  STOMissionDob past;
  for (int32_t i = 0; i < n; ++i) {
    (i < count ? missions[i] : past).Take(from);
  }
}

// The list grows as missions arrive; those that it cannot take are read past. Only a text has more
// behind what is missing; elsewhere nothing comes behind the first failure.
void SMissionList::Read(IDobArchive& archive, uint16_t claimed) {
  if (claimed < count) {
    SetCount(claimed);
  }
  const auto* const text = dynamic_cast<const SDobPrefArchive*>(&archive);
  int misses = 0;
  STOMissionDob past;
  for (int32_t i = 0; i < claimed && misses <= kMissesInText; ++i) {
    const int64_t found = text != nullptr ? text->GetKeysFound() : 0;
    Grow(i + 1);
    TransferMission(archive, i, i < count ? missions[i] : past);
    if (text == nullptr && archive.HasError()) {
      return;
    }
    misses = text != nullptr && text->GetKeysFound() == found ? misses + 1 : 0;
  }
}

void SMissionList::SetDirty(bool value) {
  for (STOMissionDob& mission : *this) {
    mission.SetDirty(value);
  }
}

bool SMissionList::IsDirty() const {
  return std::any_of(begin(), end(), [](const auto& m) { return m.IsDirty(); });
}

SDateTime SMissionList::GetModified() const {
  SDateTime highest = SDateTime::None();
  for (const STOMissionDob& mission : *this) {
    Raise(highest, mission.GetModified());
  }
  return highest;
}

bool SMissionList::HasDifferences() const {
  return std::any_of(begin(), end(), [](const auto& m) { return m.HasDifferences(); });
}

bool SMissionList::IsEqual(const SMissionList& other) const {
  return std::equal(begin(), end(), other.begin(), other.end(),
                    [](const auto& a, const auto& b) { return a.IsEqual(b); });
}

void SMissionList::Copy(const SMissionList& other) {
  SetCount(other.count);
  for (int32_t i = 0; i < std::min(count, other.count); ++i) {
    missions[i].Copy(other.missions[i]);
  }
}

void SMissionList::Merge(const SMissionList& other) {
  const int32_t common = std::min(count, other.count);
  for (int32_t i = 0; i < common; ++i) {
    missions[i].Merge(other.missions[i]);
  }
  if (!Grow(other.count)) {
    return;
  }
  for (int32_t i = common; i < other.count; ++i) {
    missions[i].Copy(other.missions[i]);
  }
}

void SMissionList::MarkDifferences(const SMissionList& other) {
  for (int32_t i = 0; i < std::min(count, other.count); ++i) {
    missions[i].MarkDifferences(other.missions[i]);
  }
}

void SMissionList::ClearStamps() {
  for (STOMissionDob& mission : *this) {
    mission.ClearStamps();
  }
}

}  // namespace kivstore
