// The transfer interface between records and their two storage forms.
//
// A record's Serialize names each field once; the archive stores the variable or fills it, by its
// direction. Every Transfer answers whether the archive has no error after it. In the binary form
// names cost nothing and the order of the calls is the file format; in the text form the name
// becomes the key, below the section and key levels that were pushed. A null name adds nothing to
// the key.
//
// The first failure stays: the transfers that follow do nothing, and whoever serializes looks once,
// at the end. The virtual operations stand in an order that programs built apart from this one call
// them by, like those of SDob.
//
// An array is no type of its own: a record transfers a count and then the elements.
#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/geometry/angles.h"
#include "foundation/memory/memory_block.h"
#include "foundation/text/string.h"
#include "foundation/time/date_time.h"

namespace kivstore {

class IDobArchive {
 public:
  virtual bool IsReading() const = 0;
  virtual bool IsWriting() const = 0;
  virtual bool IsDeleting() const = 0;  // removes keys; the text form only
  virtual bool HasError() const = 0;
  // The head of a file, which only the binary form has: the text form answers true. The checks
  // consume what they compare.
  virtual bool WriteBytes(const void* data, int16_t length) = 0;
  virtual bool WriteTag(uint32_t tag) = 0;
  virtual bool CheckBytes(const void* data, int16_t length) = 0;
  virtual bool CheckTag(uint32_t tag) = 0;
  // The levels that a name stands under. The binary form has none and answers null for them. Each
  // push has its pop, also after an error.
  virtual void PushSectionNumber(uint16_t n) = 0;
  virtual void PushSection(const char* name) = 0;
  virtual void PopSection() = 0;
  virtual const char* GetSection() const = 0;
  virtual void PushKeyNumber(uint16_t n) = 0;
  virtual void PushKey(const char* name) = 0;
  virtual void PopKey() = 0;
  virtual const char* GetKey() const = 0;
  // Writes out what is pending; nothing may be transferred behind it.
  virtual void Finish() = 0;
  // On reading the handle receives a new block, the caller's, or null for a length of 0.
  virtual bool TransferBlob(const char* name, MemoryHandle& handle, int32_t& length) = 0;
  virtual bool TransferDateTime(const char* name, SDateTime& value) = 0;
  virtual bool TransferRect(const char* name, SRect& value) = 0;
  virtual bool TransferSize(const char* name, SSize& value) = 0;
  virtual bool TransferPoint(const char* name, SPoint& value) = 0;
  virtual bool TransferString(const char* name, SString& value) = 0;
  virtual bool TransferDouble(const char* name, double& value) = 0;
  virtual bool TransferULong(const char* name, uint32_t& value) = 0;
  virtual bool TransferLong(const char* name, int32_t& value) = 0;
  virtual bool TransferUShort(const char* name, uint16_t& value) = 0;
  virtual bool TransferShort(const char* name, int16_t& value) = 0;
  virtual bool TransferUChar(const char* name, uint8_t& value) = 0;
  virtual bool TransferChar(const char* name, char& value) = 0;
  virtual bool TransferBool(const char* name, bool& value) = 0;
  // A field's stamp: the fresh mark goes out as the archive's own time of creation.
  virtual bool TransferTimeStamp(const char* name, SDateTime& stamp) = 0;
  // Of a form without names that is being read: its next bytes (stored_form.h) as far as they lie
  // ready, and so many of them, consumed; null, with nothing consumed, if they do not. A record
  // takes from there what it would transfer field by field.
  virtual std::string_view PeekReady() const { return {}; }
  virtual const uint8_t* TakeReady(int32_t /*count*/) { return nullptr; }

 protected:
  ~IDobArchive() = default;
};

// The one Transfer for a field's type: what lets a record list fields without naming their types.
inline bool Transfer(IDobArchive& a, const char* name, bool& v) {
  return a.TransferBool(name, v);
}
inline bool Transfer(IDobArchive& a, const char* name, int16_t& v) {
  return a.TransferShort(name, v);
}
inline bool Transfer(IDobArchive& a, const char* name, uint16_t& v) {
  return a.TransferUShort(name, v);
}
inline bool Transfer(IDobArchive& a, const char* name, int32_t& v) {
  return a.TransferLong(name, v);
}
inline bool Transfer(IDobArchive& a, const char* name, uint32_t& v) {
  return a.TransferULong(name, v);
}
inline bool Transfer(IDobArchive& a, const char* name, SString& v) {
  return a.TransferString(name, v);
}

}  // namespace kivstore
