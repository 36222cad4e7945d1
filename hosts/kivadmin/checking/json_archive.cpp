#include "hosts/kivadmin/checking/json_archive.h"

#include <cstring>
#include <utility>

#include "hosts/kivadmin/options/option_text.h"

namespace kivadmin {
namespace {

constexpr const char* kCountKey = "Count";

nlohmann::ordered_json TimeJson(kivstore::SDateTime time) {
  const std::string text = IsoTime(time);
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

}  // namespace

JsonArchive::JsonArchive(kivstore::SDobBinaryArchive& source, const kivhost::Charset& charset)
    : source(source), charset(charset) {
  levels.push_back({"", false});
}

JsonArchive::Json JsonArchive::TakeJson() {
  while (levels.size() > 1) {
    PopKey();
  }
  return Close(std::exchange(levels.front(), {"", false}));
}

void JsonArchive::PushKeyNumber(uint16_t) {
  levels.push_back({"", true});
}

void JsonArchive::PushKey(const char* name) {
  levels.push_back({name, false});
}

JsonArchive::Json JsonArchive::Close(Level level) {
  return level.isList ? std::move(level.elements) : std::move(level.fields);
}

// A level that nothing was read into stands behind the fault, and is not there.
void JsonArchive::PopKey() {
  Level level = std::move(levels.back());
  levels.pop_back();
  Level& parent = levels.back();
  if (HasError() && !level.isList && level.fields.empty()) {
    return;
  }
  if (level.isElement) {
    parent.elements.push_back(Close(std::move(level)));
  } else {
    parent.fields[level.name] = Close(level);
  }
}

bool JsonArchive::Note(const char* name, bool read, Json value) {
  Level& level = levels.back();
  if (!read) {
    return false;
  }
  if (name == nullptr) {
    level.elements.push_back(std::move(value));
  } else if (std::strcmp(name, kCountKey) == 0) {
    level.isList = true;
  } else {
    level.fields[name] = std::move(value);
  }
  return true;
}

// No record holds a blob or a shape; they are read past.
bool JsonArchive::TransferBlob(const char* name, kivstore::MemoryHandle& handle, int32_t& length) {
  return source.TransferBlob(name, handle, length);
}

bool JsonArchive::TransferRect(const char* name, kivstore::SRect& value) {
  return source.TransferRect(name, value);
}

bool JsonArchive::TransferSize(const char* name, kivstore::SSize& value) {
  return source.TransferSize(name, value);
}

bool JsonArchive::TransferPoint(const char* name, kivstore::SPoint& value) {
  return source.TransferPoint(name, value);
}

bool JsonArchive::TransferDateTime(const char* name, kivstore::SDateTime& value) {
  const bool read = source.TransferDateTime(name, value);
  return Note(name, read, TimeJson(value));
}

bool JsonArchive::TransferString(const char* name, kivstore::SString& value) {
  const bool read = source.TransferString(name, value);
  return Note(name, read, charset.ToUtf8(value.View()));
}

bool JsonArchive::TransferDouble(const char* name, double& value) {
  const bool read = source.TransferDouble(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferULong(const char* name, uint32_t& value) {
  const bool read = source.TransferULong(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferLong(const char* name, int32_t& value) {
  const bool read = source.TransferLong(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferUShort(const char* name, uint16_t& value) {
  const bool read = source.TransferUShort(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferShort(const char* name, int16_t& value) {
  const bool read = source.TransferShort(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferUChar(const char* name, uint8_t& value) {
  const bool read = source.TransferUChar(name, value);
  return Note(name, read, value);
}

bool JsonArchive::TransferChar(const char* name, char& value) {
  const bool read = source.TransferChar(name, value);
  return Note(name, read, static_cast<int>(value));
}

bool JsonArchive::TransferBool(const char* name, bool& value) {
  const bool read = source.TransferBool(name, value);
  return Note(name, read, value);
}

// The stamp belongs to the value that came just before under the same name.
bool JsonArchive::TransferTimeStamp(const char* name, kivstore::SDateTime& stamp) {
  stamp = kivstore::SDateTime::None();
  if (!source.TransferTimeStamp(name, stamp)) {
    return false;
  }
  Json& field = levels.back().fields[name];
  field = {{"value", std::move(field)}, {"changed", TimeJson(stamp)}};
  return true;
}

}  // namespace kivadmin
