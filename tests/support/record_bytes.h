// The store's file formats written out by hand, for tests, the demo and the benchmarks. Shares no
// code with the library: layouts and defaults stand here a second time, so that a slip on either
// side shows.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kivtest {

// Big-endian bytes, one after the other.
class ByteWriter {
 public:
  ByteWriter& Byte(int64_t value) { return Raw(std::string(1, static_cast<char>(value))); }
  ByteWriter& Short(int64_t value) { return Byte(value >> 8).Byte(value); }
  ByteWriter& Long(int64_t value) { return Short(value >> 16).Short(value); }
  ByteWriter& Text(const std::string& text) { return Raw(text).Byte(0); }
  ByteWriter& Stamp(uint32_t seconds) { return Long(0).Long(seconds); }  // high word, low word
  ByteWriter& Raw(const std::string& more) {
    bytes += more;
    return *this;
  }
  const std::string& Bytes() const { return bytes; }

 private:
  std::string bytes;
};

struct IndexLine {
  std::string folder, first, last;
  bool operator==(const IndexLine&) const = default;
};
struct FileLine {
  std::string fileName, longName, extension;
  bool operator==(const FileLine&) const = default;
};
std::string IndexBytes(const std::vector<IndexLine>& logins,
                       const std::vector<FileLine>& files = {});
// The other way, as far as the bytes go.
struct IndexImage {
  std::vector<IndexLine> logins;
  std::vector<FileLine> files;
  bool isTorn = false;
  size_t length = 0;  // of what was read
};
IndexImage ReadIndexBytes(const std::string& bytes);
std::string LongNameBytes(const std::string& first, const std::string& last = "");

inline constexpr uint32_t kDataVersion = 0x00010000;

// A field of a record as its two stored forms have it. A test may change, merge and compare tables
// of these on its own, and hold a record against them.
struct FieldBytes {
  std::string section;  // below the record's own: "" or "_Missions"
  std::string key;      // with the levels above it: "TOGameDob_Accuracy", "26_Typeline"
  char type;            // b one byte, a bool; s, u two bytes, u without sign; l, L four; t a text
  bool isArray = false;
  bool isStamped = false;
  std::vector<int64_t> values = {};  // one, or an array's elements
  uint32_t stamp = 0;
  std::string text = {};

  std::string Bytes() const;
};
using RecordFields = std::vector<FieldBytes>;
std::string BytesOf(const RecordFields& fields);

// Stamps of a record's fields: one for all, and others by key.
struct Stamps {
  uint32_t all = 0;
  std::map<std::string, uint32_t> byKey;
  uint32_t Of(const std::string& key) const;
};

using Doneness = std::vector<bool>;  // element i belongs to mission i + 1

// The options of one game: 276 bytes at their defaults.
struct GameOptionsBytes {
  int CurrentMissionNumber = 1;
  Doneness LessonDone = Doneness(25);
  Doneness NotebookDone = Doneness(25);
  Stamps stamps;

  RecordFields Fields(const std::string& prefix = "") const;
};

// The activities of one mission: 60 bytes.
struct MissionBytes {
  int Typeline = 2;
  std::string builtAround = {};  // another activity

  RecordFields Fields(const Stamps& stamps, const std::string& prefix = "") const;
};

// An options.kiv with the tutor's defaults and the standard course.
struct OptionsBytes {
  OptionsBytes();
  // Any field of the record itself by its key, with the time of its decision; an unknown key
  // throws.
  OptionsBytes& Set(const std::string& key, int value, uint32_t stamp = 0);
  OptionsBytes& SetMission(int mission, uint32_t stamp = 0);  // CurrentMissionNumber
  OptionsBytes& SetLessonDone(int mission);

  uint32_t version = kDataVersion;
  std::map<std::string, int64_t> values;
  bool hasGameOptions = true;
  GameOptionsBytes game;
  std::vector<MissionBytes> missions;
  Stamps stamps;

  RecordFields Fields() const;
  std::string Bytes() const;
};

// A game file: 957 bytes with empty names and everything at its default.
struct GameBytes {
  uint32_t version = kDataVersion;
  std::string firstName, lastName, longFileName;
  bool publicFile = false;
  GameOptionsBytes options;
  std::vector<int32_t> keyTypedWrong = std::vector<int32_t>(48);
  int currentLessonNumber = 1;
  bool learnedNewKeys = false;

  RecordFields ErrorFields(const std::string& section = "") const;
  RecordFields LessonFields(const std::string& section = "") const;
  RecordFields Fields() const;
  std::string Bytes() const;
};

}  // namespace kivtest
