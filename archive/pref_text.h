// The text of a preference file in its block, and the edits in it. What is found, and what an edit
// does, is as if the text were scanned from its start each time (pref_scanner.h tells the form);
// an index and a gap make the way there short, so that reading and writing a record grow with the
// text.
//
// Every failure is a false result, after which the text is as it was.
#pragma once

#include "archive/gap_text.h"
#include "archive/pref_index.h"
#include "foundation/text/string.h"

namespace kivstore {

class SPrefText {
 public:
  static constexpr int32_t kLongest = 0x4000000;  // 64 MiB; a longer file does not open

  // Whether lines can say it.
  static bool CanHold(const char* section, const char* key, std::string_view value);

  bool Hold(MemoryHandle block, int32_t length, int32_t capacity);
  void LetGo();
  int32_t GetLength() const { return bytes.GetLength(); }
  int32_t GetCapacity() const { return bytes.GetCapacity(); }
  // In one piece.
  char* Whole();

  bool GetValue(const char* section, const char* key, SString& value);
  // Makes the section and the key where they are missing. For what CanHold allows.
  bool SetValue(const char* section, const char* key, std::string_view value);
  // Up to the next "[", wherever in a line that stands.
  bool DeleteSection(const char* section);
  bool DeleteKey(const char* section, const char* key);

 private:
  struct Found {
    bool hasSection = false;
    bool hasKey = false;
    int32_t value = 0;         // the place of the key's value
    int32_t endOfSection = 0;  // where the key would have to be looked for no longer
    int32_t section = SPrefIndex::kNone;
    int32_t line = SPrefIndex::kNone;
  };

  Found Find(const char* section, const char* key);
  bool NeedIndex();
  Found FindInIndex(std::string_view section, std::string_view key) const;
  Found Scan(const char* section, const char* key);
  bool ReserveFor(const Found& found, std::string_view section, std::string_view key,
                  std::string_view value);
  bool Reserve(int64_t n);
  void AddSection(Found& found, std::string_view name);
  void AddKey(Found& found, std::string_view name);
  int32_t EndOfLastLine(int32_t endOfSection) const;
  void Replace(int32_t place, std::string_view value);
  bool NeedsBreakAtEnd() const;
  int32_t LengthOfLine(int32_t place) const;
  void MoveGap(int32_t position);

  SGapText bytes;
  SPrefIndex index{bytes};
  bool hasNoIndex = false;  // there was no memory for one
};

}  // namespace kivstore
