#include "records/mission_list.h"

#include <algorithm>
#include <new>

#include "archive/dob_pref_archive.h"

namespace kivstore {
namespace {

// How many missions in a row a text may lack altogether before its count is not believed.
constexpr int kMissesInText = 256;

}  // namespace

bool SMissionList::SetCapacity(int32_t n) {
  const int64_t size = static_cast<int64_t>(n) * static_cast<int64_t>(sizeof(STOMissionDob*));
  bool succeeded = false;
  if (handle != nullptr) {
    succeeded = ResizeBlock(handle, size);
  } else {
    handle = AllocateBlock(size);
    succeeded = handle != nullptr;
  }
  missions = static_cast<STOMissionDob**>(LockBlock(handle));
  if (succeeded) {
    capacity = n;
  }
  return succeeded;
}

// Up to n missions, for which there must be room; all of them or none.
bool SMissionList::AppendNew(int32_t n) {
  for (int32_t i = count; i < n; ++i) {
    missions[i] = new (std::nothrow) STOMissionDob;
    if (missions[i] == nullptr) {
      std::for_each(missions + count, missions + i, [](STOMissionDob* mission) { delete mission; });
      return false;
    }
  }
  count = n;
  return true;
}

bool SMissionList::SetCount(int32_t n) {
  if (n < 0 || n > kMaxMissions) {
    return false;
  }
  if (n > count) {
    return (n <= capacity || SetCapacity(n)) && AppendNew(n);
  }
  std::for_each(missions + n, missions + count, [](STOMissionDob* mission) { delete mission; });
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
  if (n > kMaxMissions) {
    return false;
  }
  const int32_t step = std::clamp(n / 8, 4, 1024);
  return (n <= capacity || SetCapacity((n + step - 1) / step * step)) && AppendNew(n);
}

void SMissionList::Clear() {
  SetCount(kMissionCount);
  for (int32_t i = 0; i < count; ++i) {
    missions[i]->Clear();
  }
}

void SMissionList::Serialize(IDobArchive& archive) {
  uint16_t n = static_cast<uint16_t>(count);
  archive.PushSection("Missions");
  archive.TransferUShort("Count", n);
  if (archive.IsReading()) {
    Read(archive, n);
  } else {
    for (int32_t i = 0; i < count; ++i) {
      TransferMission(archive, i, *missions[i]);
    }
  }
  archive.PopSection();
}

void SMissionList::TransferMission(IDobArchive& archive, int32_t index, STOMissionDob& mission) {
  archive.PushKeyNumber(static_cast<uint16_t>(index));
  mission.Serialize(archive);
  archive.PopKey();
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
    TransferMission(archive, i, i < count ? *missions[i] : past);
    if (text == nullptr && archive.HasError()) {
      return;
    }
    misses = text != nullptr && text->GetKeysFound() == found ? misses + 1 : 0;
  }
}

void SMissionList::SetDirty(bool value) {
  for (int32_t i = 0; i < count; ++i) {
    missions[i]->SetDirty(value);
  }
}

bool SMissionList::IsDirty() const {
  return std::any_of(missions, missions + count, [](const auto* m) { return m->IsDirty(); });
}

SDateTime SMissionList::GetModified() const {
  SDateTime highest = SDateTime::None();
  for (int32_t i = 0; i < count; ++i) {
    Raise(highest, missions[i]->GetModified());
  }
  return highest;
}

bool SMissionList::HasDifferences() const {
  return std::any_of(missions, missions + count, [](const auto* m) { return m->HasDifferences(); });
}

bool SMissionList::IsEqual(const SMissionList& other) const {
  return std::equal(missions, missions + count, other.missions, other.missions + other.count,
                    [](const auto* a, const auto* b) { return a->IsEqual(*b); });
}

void SMissionList::Copy(const SMissionList& other) {
  SetCount(other.count);
  for (int32_t i = 0; i < std::min(count, other.count); ++i) {
    missions[i]->Copy(*other.missions[i]);
  }
}

void SMissionList::Merge(const SMissionList& other) {
  const int32_t common = std::min(count, other.count);
  for (int32_t i = 0; i < common; ++i) {
    missions[i]->Merge(*other.missions[i]);
  }
  if (!Grow(other.count)) {
    return;
  }
  for (int32_t i = common; i < other.count; ++i) {
    missions[i]->Copy(*other.missions[i]);
  }
}

void SMissionList::MarkDifferences(const SMissionList& other) {
  for (int32_t i = 0; i < std::min(count, other.count); ++i) {
    missions[i]->MarkDifferences(*other.missions[i]);
  }
}

void SMissionList::ClearStamps() {
  for (int32_t i = 0; i < count; ++i) {
    missions[i]->ClearStamps();
  }
}

}  // namespace kivstore
