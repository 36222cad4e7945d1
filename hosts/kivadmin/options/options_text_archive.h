// Brings the options record and its text (options_text.h) together, line by line: writing notes
// what the level has, reading takes what the file gives and elsewhere what was noted. The key paths
// are those of a preference file (archive/dob_pref_archive.h); unlike there a bool is 1 or 0 and
// nothing else, a number is within its option's limits, and every fault is told with its line.
#pragma once

#include <string>
#include <vector>

#include "archive/dob_archive.h"
#include "hosts/kivadmin/options/options_text.h"

namespace kivadmin {

class OptionsTextArchive final : public kivstore::IDobArchive {
 public:
  // The text stays the caller's.
  OptionsTextArchive(OptionsText& text, bool reading) : text(text), reading(reading) {}

  bool IsReading() const override { return reading; }
  bool IsWriting() const override { return !reading; }
  bool IsDeleting() const override { return false; }
  bool HasError() const override { return text.IsRefused(); }
  bool WriteBytes(const void*, int16_t) override { return true; }
  bool WriteTag(uint32_t) override { return true; }
  bool CheckBytes(const void*, int16_t) override { return true; }
  bool CheckTag(uint32_t) override { return true; }
  void PushSectionNumber(uint16_t n) override { section.Push(std::to_string(n)); }
  void PushSection(const char* name) override { section.Push(name != nullptr ? name : ""); }
  void PopSection() override { section.Pop(); }
  const char* GetSection() const override { return section.text.c_str(); }
  void PushKeyNumber(uint16_t n) override { key.Push(std::to_string(n)); }
  void PushKey(const char* name) override { key.Push(name != nullptr ? name : ""); }
  void PopKey() override { key.Pop(); }
  const char* GetKey() const override { return key.text.c_str(); }
  void Finish() override {}
  bool TransferUShort(const char* name, uint16_t& value) override;
  bool TransferShort(const char* name, int16_t& value) override;
  bool TransferBool(const char* name, bool& value) override;
  bool TransferTimeStamp(const char* name, kivstore::SDateTime& stamp) override;

  // Options hold nothing of these kinds.
  bool TransferBlob(const char*, kivstore::MemoryHandle&, int32_t&) override { return false; }
  bool TransferDateTime(const char*, kivstore::SDateTime&) override { return false; }
  bool TransferRect(const char*, kivstore::SRect&) override { return false; }
  bool TransferSize(const char*, kivstore::SSize&) override { return false; }
  bool TransferPoint(const char*, kivstore::SPoint&) override { return false; }
  bool TransferString(const char*, kivstore::SString&) override { return false; }
  bool TransferDouble(const char*, double&) override { return false; }
  bool TransferULong(const char*, uint32_t&) override { return false; }
  bool TransferLong(const char*, int32_t&) override { return false; }
  bool TransferUChar(const char*, uint8_t&) override { return false; }
  bool TransferChar(const char*, char&) override { return false; }

 private:
  struct Path {
    void Push(const std::string& name);
    void Pop();

    std::string text;
    std::vector<size_t> lengths;  // of the text at each level
  };

  // `parse` takes a line's value, or answers what is wanted instead.
  template <class Parse>
  bool TransferText(const char* name, const std::string& own, Parse parse);
  template <class Parse>
  bool Take(const OptionsText::Line& line, Parse parse);
  template <class Number>
  bool TransferNumber(const char* name, Number& value, uint32_t highest);

  OptionsText& text;
  bool reading;
  Path section;
  Path key;
};

}  // namespace kivadmin
