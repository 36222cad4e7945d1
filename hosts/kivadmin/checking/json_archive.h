// Reads a record's bytes and notes every field it meets as JSON: a dump shows the file as it is,
// field by field in its own order, and a torn one up to where it is torn.
//
// A field with a stamp becomes {"value": ..., "changed": time or null}; a count and its elements a
// list.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "archive/dob_archive.h"
#include "archive/dob_binary_archive.h"
#include "hosts/common/charset.h"

namespace kivadmin {

class JsonArchive final : public kivstore::IDobArchive {
 public:
  using Json = nlohmann::ordered_json;

  // Reads from `source`, both stay the caller's.
  JsonArchive(kivstore::SDobBinaryArchive& source, const kivhost::Charset& charset);

  // What was read; closes the levels that a fault has left open.
  Json TakeJson();

  bool IsReading() const override { return true; }
  bool IsWriting() const override { return false; }
  bool IsDeleting() const override { return false; }
  bool HasError() const override { return source.HasError(); }
  bool WriteBytes(const void*, int16_t) override { return false; }
  bool WriteTag(uint32_t) override { return false; }
  bool CheckBytes(const void* data, int16_t length) override {
    return source.CheckBytes(data, length);
  }
  bool CheckTag(uint32_t tag) override { return source.CheckTag(tag); }
  void PushSectionNumber(uint16_t n) override { PushKeyNumber(n); }
  void PushSection(const char* name) override { PushKey(name); }
  void PopSection() override { PopKey(); }
  const char* GetSection() const override { return nullptr; }
  void PushKeyNumber(uint16_t n) override;
  void PushKey(const char* name) override;
  void PopKey() override;
  const char* GetKey() const override { return nullptr; }
  void Finish() override { source.Finish(); }
  bool TransferBlob(const char* name, kivstore::MemoryHandle& handle, int32_t& length) override;
  bool TransferDateTime(const char* name, kivstore::SDateTime& value) override;
  bool TransferRect(const char* name, kivstore::SRect& value) override;
  bool TransferSize(const char* name, kivstore::SSize& value) override;
  bool TransferPoint(const char* name, kivstore::SPoint& value) override;
  bool TransferString(const char* name, kivstore::SString& value) override;
  bool TransferDouble(const char* name, double& value) override;
  bool TransferULong(const char* name, uint32_t& value) override;
  bool TransferLong(const char* name, int32_t& value) override;
  bool TransferUShort(const char* name, uint16_t& value) override;
  bool TransferShort(const char* name, int16_t& value) override;
  bool TransferUChar(const char* name, uint8_t& value) override;
  bool TransferChar(const char* name, char& value) override;
  bool TransferBool(const char* name, bool& value) override;
  bool TransferTimeStamp(const char* name, kivstore::SDateTime& stamp) override;

 private:
  struct Level {
    std::string name;
    bool isElement;  // of a list, without a name
    Json fields = Json::object();
    Json elements = Json::array();
    bool isList = false;
  };

  bool Note(const char* name, bool read, Json value);
  static Json Close(Level level);

  kivstore::SDobBinaryArchive& source;
  const kivhost::Charset& charset;
  std::vector<Level> levels;
};

}  // namespace kivadmin
