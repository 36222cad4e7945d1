// The missions of the teacher options: an owned, growing list of mission records. 25 at default; a
// file may hold any count up to 32,767.
//
// It has a record's operations, so that the options treat it as a child. In a file: 2 bytes of
// count, then the missions, 60 bytes each.
#pragma once

#include "foundation/memory/memory_block.h"
#include "records/mission_dob.h"

namespace kivstore {

class SMissionList {
 public:
  static constexpr int32_t kMaxMissions = 32767;

  SMissionList() = default;
  SMissionList(const SMissionList&) = delete;
  SMissionList& operator=(const SMissionList&) = delete;
  ~SMissionList() { SetCount(0); }

  int32_t GetCount() const { return count; }
  // An index within the count. Missions may move when the list grows.
  STOMissionDob& At(int32_t index) { return missions[index]; }
  const STOMissionDob& At(int32_t index) const { return missions[index]; }

  // New places get default missions, missions past the end are destroyed, 0 frees the block. False,
  // with the list at its length, without memory and for an n outside 0 to 32,767.
  bool SetCount(int32_t n);
  // At least n missions, with room for more: the block grows in steps of n / 8, 4 to 1,024.
  bool Grow(int32_t n);

  void Clear();  // exactly 25 default missions
  void Serialize(IDobArchive& archive);
  // As of a record (field_record.h).
  bool Measure(std::string_view bytes, int64_t& length) const;
  void Take(const uint8_t*& from);
  void SetDirty(bool value);
  bool IsDirty() const;
  SDateTime GetModified() const;
  bool HasDifferences() const;
  bool IsEqual(const SMissionList& other) const;
  void Copy(const SMissionList& other);
  // The common length mission by mission; what the other has in excess is appended as copies.
  void Merge(const SMissionList& other);
  void MarkDifferences(const SMissionList& other);
  void ClearStamps();

 private:
  STOMissionDob* begin() const { return missions; }
  STOMissionDob* end() const { return missions + count; }

  bool SetCapacity(int32_t n);
  void AppendNew(int32_t n);
  void Read(IDobArchive& archive, uint16_t claimed);
  static void TransferMission(IDobArchive& archive, int32_t index, STOMissionDob& mission);

  int32_t count = 0;
  int32_t capacity = 0;
  MemoryHandle handle = nullptr;
  STOMissionDob* missions = nullptr;  // in the block, which stays locked
};

}  // namespace kivstore
