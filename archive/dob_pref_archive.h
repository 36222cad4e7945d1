// Records as text in a preference file: one key for each field, built from the record's own names.
//
//   a field "Speed" of a child pushed as "LessonDob", saved under section "Student"
//       [Student_LessonDob]   Speed=10
//   its stamp                 Speed_ts_high=0  Speed_ts_low=3061000000
//   a point "Origin"          Origin_x=3  Origin_y=4
//   an array "Graph"          Graph_Count=2  Graph_0=5  Graph_1=7
//
// Deleting is a third direction: the same walk removes each key, and empty sections stay behind as
// headers. Fields outside any section are in "_Default". A section path may have 32 levels, a key
// path 16, both 240 characters; a longer path and a 33rd section set the error, a 17th key is
// dropped and its PopKey takes a level too many.
//
// A key that is missing, or on reading one whose value does not fit, leaves the variable as it was
// and sets the error; the fields behind it are transferred all the same. A double has six decimals.
// Blobs have no text form. Of what is written or deleted nothing comes to the file if there is an
// error at the end, for a value that no line can hold among others: no section is left behind half.
#pragma once

#include <initializer_list>

#include "archive/dob_transfers.h"
#include "archive/pref_file.h"
#include "archive/pref_path.h"

namespace kivstore {

class SDobPrefArchive final : public SDobTransfers<SDobPrefArchive>, public SPrefFile {
 public:
  static constexpr int32_t kRead = 0;
  static constexpr int32_t kWrite = 1;
  static constexpr int32_t kDelete = 2;

  // Opens the file; the error tells if that failed.
  SDobPrefArchive(int32_t mode, const SFileSpec& spec);
  ~SDobPrefArchive() override { SDobPrefArchive::Finish(); }

  bool IsReading() const override { return mode != kWrite && mode != kDelete; }
  bool IsWriting() const override { return mode == kWrite; }
  bool IsDeleting() const override { return mode == kDelete; }
  bool HasError() const override { return error; }
  bool WriteBytes(const void*, int16_t) override { return true; }
  bool WriteTag(uint32_t) override { return true; }
  bool CheckBytes(const void*, int16_t) override { return true; }
  bool CheckTag(uint32_t) override { return true; }
  void PushSectionNumber(uint16_t n) override;
  void PushSection(const char* name) override;
  void PopSection() override;
  const char* GetSection() const override { return section.text; }
  void PushKeyNumber(uint16_t n) override;
  void PushKey(const char* name) override;
  void PopKey() override;
  const char* GetKey() const override { return key.text; }
  void Finish() override;
  bool TransferBlob(const char*, MemoryHandle&, int32_t&) override { return false; }

  // How many keys were read so far that the file has, whatever they hold.
  int64_t GetKeysFound() const { return keysFound; }

 private:
  friend SDobTransfers;
  template <class T>
  bool TransferField(const char* name, T& value);
  template <class T>
  bool TransferHere(T& value);
  struct Part {
    const char* name;
    int32_t& value;
  };
  bool TransferParts(const char* name, std::initializer_list<Part> parts);
  void UseDefaultSection();

  int32_t mode;
  SPrefPath<32> section;
  SPrefPath<16> key;
  bool error;
  int64_t keysFound = 0;
};

extern template class SDobTransfers<SDobPrefArchive>;

}  // namespace kivstore
