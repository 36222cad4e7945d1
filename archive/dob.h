// The base of all persistent records.
//
// A record transfers, compares, copies and merges itself field by field. A field that takes part in
// merging carries a stamp (stamped.h): 0 nobody decided it, a time, or the fresh mark for a change
// since the record was last stored. That is how two teachers' concurrent changes on a shared store
// are reconciled: the newest stamp wins, field by field.
//
// A stored record does not say what class it is; the reader must know. CreateNew is the only way to
// a sibling object, and a class token, good for comparing and nothing else, the only run-time type.
//
// The virtual operations stand in an order that programs built apart from this one call them by: it
// is never changed, and a new one goes behind the last.
//
// A record file ("options.kiv"):
//
//   0   4   the bytes 42 49 4E 01, "BIN" and a byte of 1
//   4   4   version word, big-endian, from GetVersion; a file of another version is not read
//   8       the fields in Serialize order, child records inline; the file ends where they end
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>

#include "foundation/time/date_time.h"

namespace kivstore {

class IDobArchive;
class SBinaryStream;
class SFileSpec;

class SDob {
 public:
  using ClassId = const void*;

  SDob() = default;
  virtual ~SDob() = default;
  SDob& operator=(const SDob&) = delete;

  virtual void Clear() {}  // every field to its default, then SetDirty(true)
  virtual void Serialize(IDobArchive& archive);
  // With false also: false to all children, all stamps to 0.
  virtual void SetDirty(bool value) { dirty = value; }
  virtual bool IsDirty() const { return dirty; }
  // The fresh mark if dirty; else the highest stamp here and in the children.
  virtual SDateTime GetModified() const { return DirtyMark(); }
  virtual bool HasDifferences() const { return false; }
  // Same class exactly and all content equal; dirty, stamps and difference flags do not count.
  virtual bool IsEqual(const SDob& other) const;
  virtual bool IsNotEqual(const SDob& other) const final { return !IsEqual(other); }
  // From an object of this class or one derived from it: all fields, dirty and stamps too. From
  // another: only what both share. Copying, merging or marking against itself does nothing.
  virtual void Copy(const SDob& other);
  virtual void Merge(const SDob& other);
  // Flags each field whose value differs; flags are never cleared here.
  virtual void MarkDifferences(const SDob&) {}
  virtual void ClearStamps() {}  // every stamp but the fresh mark becomes 0
  virtual ClassId GetClassId() const { return StaticClassId(); }
  // Whether `other` is of this class or one of its ancestors.
  virtual bool IsA(const SDob& other) const;
  virtual SDob* CreateNew() const;  // the caller's; null if out of memory
  virtual uint32_t GetVersion() const { return 0; }

  // Every class has one of its own:
  //   static ClassId StaticClassId() { static char token; return &token; }
  // and lists it with those of its ancestors, SDob's too, in IsA:
  //   return IsOneOf(other, {StaticClassId(), SDob::StaticClassId()});
  static ClassId StaticClassId();

  // Whole files; false if the file could not be opened, is of another kind or version, or was not
  // moved to its end. A failed load leaves the fields that it did not reach at their defaults; a
  // failed save may leave part of the new file. Neither changes whether the record is dirty but a
  // load that got behind the head, which makes it clean: after a save its owner says so. SaveToFile
  // makes a missing file if it can; see IFileServices for where it cannot. Nothing here takes a
  // lock: on a shared store the caller holds that of the file.
  bool SaveToFile(SFileSpec& spec);
  bool LoadFromFile(const SFileSpec& spec);
  bool SaveToStream(SBinaryStream& stream);
  bool LoadFromStream(SBinaryStream& stream);
  bool WriteToArchive(IDobArchive& archive);
  bool ReadFromArchive(IDobArchive& archive);

  // Stores only what changed here since the last store over what the file holds now. The record
  // itself stays as it is.
  bool SaveMergedToFile(SFileSpec& spec);
  // Merges the file's record into this one; false if it did not load. Does not touch the file.
  bool MergeFromFile(const SFileSpec& spec);
  // The same for who merges one file after the other: each is read into `stored`, a record of this
  // one's class.
  bool MergeFromFile(const SFileSpec& spec, SDob& stored);

  // Why a file would not be read. 4 is not used. A file that opens and whose bytes then cannot be
  // had counts as one that does not open: nothing is known of what it holds.
  static constexpr int32_t kVersionEqual = 0;
  static constexpr int32_t kCannotOpen = 1;
  static constexpr int32_t kWrongMagic = 2;
  static constexpr int32_t kVersionUnreadable = 3;
  static constexpr int32_t kFileOlder = 5;
  static constexpr int32_t kFileNewer = 6;
  static bool CheckFileVersion(int32_t& status, const SFileSpec& spec, uint32_t version);

  // The same in a section of a preference file; the record may hold no blob. Loading fails if the
  // section lacks a key, with the rest read all the same. Saving is refused whole, with the file as
  // it was, for a value with a line break or without room. Deleting leaves the section's header.
  bool SaveToPref(const SFileSpec& spec, const char* section);
  bool LoadFromPref(const SFileSpec& spec, const char* section);
  bool DeleteFromPref(const SFileSpec& spec, const char* section);
  bool SaveMergedToPref(const SFileSpec& spec, const char* section);
  bool MergeFromPref(const SFileSpec& spec, const char* section);
  // From a record file, or if it is none, from a preference file.
  bool LoadAny(const SFileSpec& spec, const char* section);
  bool MergeFromAny(const SFileSpec& spec, const char* section);

 protected:
  SDob(const SDob& other) = default;
  static bool IsOneOf(const SDob& record, std::initializer_list<ClassId> chain) {
    return std::find(chain.begin(), chain.end(), record.GetClassId()) != chain.end();
  }
  SDateTime DirtyMark() const { return dirty ? SDateTime::Fresh() : SDateTime::None(); }

  bool dirty = false;
};

}  // namespace kivstore
