#include "hosts/kivadmin/checking/store_file.h"

#include <cstdio>

#include "archive/stream_memory.h"
#include "game/game_dob.h"
#include "hosts/kivadmin/checking/json_archive.h"
#include "records/tutor_options_dob.h"

namespace kivadmin {
namespace {

using namespace std::string_literals;
using Json = nlohmann::ordered_json;

const std::string kRecordHead = "BIN\x01"s;
const std::string kGameHead = "Game"s;
constexpr int32_t kHeadLength = 4;
constexpr size_t kMostEntries = 32767;  // what any reader of the store keeps of a list

std::string VersionText(uint32_t version) {
  char text[16];
  std::snprintf(text, sizeof text, "%x.%02x", version >> 24, version >> 16 & 0xFF);
  return text;
}

// The bytes of one file, read through the same archive as the store's own records.
class FileReader {
 public:
  FileReader(const std::string& bytes, const kivhost::Charset& charset)
      : charset(charset),
        copy(bytes),
        memory(copy.data(), static_cast<int32_t>(copy.size())),
        stream(kivstore::SBinaryStream::kRead, &memory, false),
        archive(kivstore::SDobBinaryArchive::kRead, &stream) {}

  StoreFileDump Record(const char* kind, const std::string& head, kivstore::SDob& record);
  StoreFileDump Index();
  StoreFileDump LongName();
  StoreFileDump LastFiles();

 private:
  bool Text(Json& into, const char* key);
  int32_t Count();
  Json Entries(std::initializer_list<const char*> keys);
  StoreFileDump Finish(Json json);

  const kivhost::Charset& charset;
  std::string copy;
  kivstore::SStreamSrcMemory memory;
  kivstore::SBinaryStream stream;
  kivstore::SDobBinaryArchive archive;
};

StoreFileDump FileReader::Finish(Json json) {
  const int32_t length = static_cast<int32_t>(copy.size());
  if (archive.HasError()) {
    return {std::move(json), "the file ends in the middle, after " + std::to_string(length) +
                                 " bytes; what could be read is shown"};
  }
  if (memory.GetPosition() < length) {
    json["bytes_behind"] = length - memory.GetPosition();
  }
  return {std::move(json), ""};
}

// A file of another version has other fields: of it only the head is told.
StoreFileDump FileReader::Record(const char* kind, const std::string& head,
                                 kivstore::SDob& record) {
  Json json{{"kind", kind}};
  uint32_t version = 0;
  if (!archive.CheckBytes(head.data(), kHeadLength)) {
    return {std::move(json), "the file does not begin as such a file does"};
  }
  if (!archive.TransferULong(nullptr, version)) {
    return Finish(std::move(json));
  }
  json["version"] = VersionText(version);
  if (version != record.GetVersion()) {
    return {std::move(json), "the file is of another version, " + VersionText(version)};
  }
  JsonArchive reader(archive, charset);
  record.Serialize(reader);
  json["fields"] = reader.TakeJson();
  return Finish(std::move(json));
}

bool FileReader::Text(Json& into, const char* key) {
  kivstore::SString text;
  const bool read = archive.TransferString(nullptr, text);
  if (read || !text.IsEmpty()) {
    into[key] = charset.ToUtf8(text.View());
  }
  return read;
}

int32_t FileReader::Count() {
  int32_t count = 0;
  archive.TransferLong(nullptr, count);
  return count;
}

Json FileReader::Entries(std::initializer_list<const char*> keys) {
  Json list = Json::array();
  const int32_t count = Count();
  for (int32_t i = 0; i < count && !archive.HasError(); ++i) {
    Json entry = Json::object();
    for (const char* const key : keys) {
      Text(entry, key);
    }
    if (!entry.empty() && list.size() < kMostEntries) {
      list.push_back(std::move(entry));
    }
  }
  return list;
}

// An index without a byte is one that has just been made: it holds nobody.
StoreFileDump FileReader::Index() {
  Json json{{"kind", "index"}, {"logins", Json::array()}, {"files", Json::array()}};
  if (copy.empty()) {
    return {std::move(json), ""};
  }
  json["logins"] = Entries({"folder", "first_name", "last_name"});
  json["files"] = Entries({"file", "long_name", "extension"});
  return Finish(std::move(json));
}

StoreFileDump FileReader::LongName() {
  Json json{{"kind", "longname"}};
  Text(json, "first_name");
  Text(json, "last_name");
  return Finish(std::move(json));
}

StoreFileDump FileReader::LastFiles() {
  Json json{{"kind", "last"}, {"files", Json::array()}};
  const int32_t count = copy.empty() ? 0 : Count();
  for (uint32_t i = 0; i < static_cast<uint32_t>(count) && !archive.HasError(); ++i) {
    Json entry = Json::object();
    if (Text(entry, "file") && json["files"].size() < kMostEntries) {
      json["files"].push_back(entry["file"]);
    }
  }
  return Finish(std::move(json));
}

StoreFileDump DumpGame(const std::string& bytes, const kivhost::Charset& charset) {
  kivstore::SGameDob game;
  return FileReader(bytes, charset).Record("game", kGameHead, game);
}

StoreFileDump DumpOptions(const std::string& bytes, const kivhost::Charset& charset) {
  kivstore::STeacherOptionsDob options;
  return FileReader(bytes, charset).Record("options", kRecordHead, options);
}

// Files whose bytes are not the store's to read.
StoreFileDump DumpOpaque(const char* kind, const std::string& bytes) {
  return {Json{{"kind", kind}, {"bytes", bytes.size()}}, ""};
}

bool HasEnd(const std::string& name, const std::string& end) {
  return name.size() >= end.size() &&
         kivhost::EqualNoCase(std::string_view(name).substr(name.size() - end.size()), end);
}

}  // namespace

StoreFileDump DumpStoreFile(const std::string& name, const std::string& bytes,
                            const kivhost::Charset& charset) {
  const auto named = [&](const char* other) { return kivhost::EqualNoCase(name, other); };
  if (named("index.kiv")) {
    return FileReader(bytes, charset).Index();
  }
  if (named("longname.kiv")) {
    return FileReader(bytes, charset).LongName();
  }
  if (named("last.kiv")) {
    return FileReader(bytes, charset).LastFiles();
  }
  if (HasEnd(name, ".lok") || named("topScore.kiv")) {
    return DumpOpaque(HasEnd(name, ".lok") ? "lock" : "topscore", bytes);
  }
  if (named("options.kiv") || bytes.starts_with(kRecordHead)) {
    return DumpOptions(bytes, charset);
  }
  if (HasEnd(name, ".zep") || bytes.starts_with(kGameHead)) {
    return DumpGame(bytes, charset);
  }
  return {DumpOpaque("unknown", bytes).json, "no name and no head of a file of a store"};
}

}  // namespace kivadmin
