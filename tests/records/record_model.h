// Records held against tables of their fields (record_bytes.h), which share no code with them: a
// table is changed, merged and written on its own, and the record must come to the same.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "archive/binary_stream.h"
#include "archive/dob.h"
#include "archive/dob_binary_archive.h"
#include "archive/stream_memory.h"
#include "foundation/files/file_spec.h"
#include "tests/support/draw.h"
#include "tests/support/record_bytes.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

namespace kivtest {

inline constexpr uint32_t kFresh = 0xFFFFFFFF;

// To or from a block of bytes without a file's header; false if they end early.
inline bool Transfer(kivstore::SDob& record, std::string& bytes, int32_t mode) {
  kivstore::SStreamSrcMemory source(bytes.data(), static_cast<int32_t>(bytes.size()));
  kivstore::SBinaryStream stream(mode, &source, false);
  kivstore::SDobBinaryArchive archive(mode, &stream);
  record.Serialize(archive);
  bytes.resize(static_cast<size_t>(source.GetPosition()));
  return !archive.HasError();
}

// A fresh mark goes out as the clock's time.
inline std::string BytesOf(kivstore::SDob& record) {
  std::string bytes(1 << 17, '\0');
  Transfer(record, bytes, kivstore::SBinaryStream::kWrite);
  return bytes;
}

inline bool Fill(kivstore::SDob& record, std::string bytes) {
  return Transfer(record, bytes, kivstore::SBinaryStream::kRead);
}

// Says how many of something else follow.
inline bool IsStructure(const FieldBytes& field) {
  return field.type == 'u';
}

inline int64_t RandomValue(Draw& draw, char type) {
  const int32_t bits = draw.Between(INT32_MIN, INT32_MAX);
  return type == 'b'   ? bits & 1
         : type == 's' ? static_cast<int16_t>(bits)
         : type == 'L' ? static_cast<int64_t>(static_cast<uint32_t>(bits))
                       : bits;
}

// Few different stamps, so that ties are many.
inline void Randomize(FieldBytes& field, Draw& draw, bool withLength) {
  constexpr uint32_t kStamps[] = {0, 1, 0x7FFFFFFF, 0x80000000, kFresh};
  if (IsStructure(field)) {
    return;
  }
  if (field.isArray && withLength) {
    field.values.resize(static_cast<size_t>(draw.Below(60)));
  }
  for (int64_t& value : field.values) {
    value = RandomValue(draw, field.type);
  }
  field.text = field.type == 't' ? draw.Text(8, "mn") : "";
  field.stamp = field.isStamped ? kStamps[draw.Below(5)] : 0;
}

// All fields, or one in `some`.
inline RecordFields Randomized(RecordFields fields, Draw& draw, bool withLengths, int some = 1) {
  for (FieldBytes& field : fields) {
    if (draw.OneIn(some)) {
      Randomize(field, draw, withLengths);
    }
  }
  return fields;
}

// As a file has them: fresh marks as the time.
inline RecordFields Stored(RecordFields fields) {
  for (FieldBytes& field : fields) {
    field.stamp = field.stamp == kFresh ? kivstore::SDateTime().Raw() : field.stamp;
  }
  return fields;
}

// The first field that the record does not hold as a file of the table would, or nothing.
inline std::string Differing(kivstore::SDob& record, const RecordFields& fields) {
  std::string bytes = BytesOf(record);
  for (const FieldBytes& field : Stored(fields)) {
    const std::string wanted = field.Bytes();
    if (!bytes.starts_with(wanted)) {
      return field.section + " " + field.key;
    }
    bytes.erase(0, wanted.size());
  }
  return bytes.empty() ? "" : "more than the table";
}

// Every field by the newest stamp, a tie and what has no stamp from `there`; of two lists the
// longer one's excess stays.
inline RecordFields Merged(const RecordFields& here, const RecordFields& there) {
  RecordFields merged = here.size() > there.size() ? here : there;
  for (FieldBytes& field : merged) {
    const auto isSame = [&](const FieldBytes& other) {
      return other.section == field.section && other.key == field.key;
    };
    const auto ours = std::find_if(here.begin(), here.end(), isSame);
    const auto theirs = std::find_if(there.begin(), there.end(), isSame);
    if (!IsStructure(field) && ours != here.end() && theirs != there.end()) {
      field = ours->isStamped && ours->stamp > theirs->stamp ? *ours : *theirs;
    }
  }
  return merged;
}

// The lines that a field has in a preference file.
inline std::string LinesOf(const FieldBytes& field) {
  std::string lines;
  const auto add = [&](const std::string& end, int64_t value) {
    lines += field.key + end + "=" + std::to_string(value) + "\r\n";
  };
  field.isArray ? add("_Count", std::ssize(field.values)) : void();
  for (size_t i = 0; i < field.values.size(); ++i) {
    add(field.isArray ? "_" + std::to_string(i) : "", field.values[i]);
  }
  lines += field.type == 't' ? field.key + "=" + field.text + "\r\n" : "";
  field.isStamped ? add("_ts_high", 0), add("_ts_low", field.stamp) : void();
  return lines;
}

// All that a preference file has of a record in its section and those below.
inline std::string TextOf(const RecordFields& fields, const std::string& section) {
  std::vector<std::pair<std::string, std::string>> sections;
  for (const FieldBytes& field : fields) {
    const std::string head = "[" + section + field.section + "]\r\n";
    const auto isHere = [&](const auto& other) { return other.first == head; };
    auto place = std::find_if(sections.begin(), sections.end(), isHere);
    place = place != sections.end() ? place : sections.insert(place, {head, ""});
    place->second += LinesOf(field);
  }
  std::string text;
  for (const auto& [head, lines] : sections) {
    text += head + lines;
  }
  return text;
}

class PrefFile {
 public:
  kivstore::SFileSpec Write(const std::string& text) const {
    folder.WriteFile("tutor.ini", text);
    return kivstore::SFileSpec(folder.Path("tutor.ini").c_str());
  }
  std::string Text() const { return folder.ReadFile("tutor.ini"); }

 private:
  TempFolder folder;
};

}  // namespace kivtest
