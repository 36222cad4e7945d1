#include "hosts/common/zip_file.h"

// clang-format off
#include <minizip/zip.h>
#include <minizip/unzip.h>
#include <zlib.h>
// clang-format on

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include "hosts/common/charset.h"
#include "hosts/common/console.h"
#include "hosts/common/unicode.h"
#include "hosts/common/whole_file.h"
#include "hosts/common/zip_end.h"
#include "hosts/common/zip_stream.h"

namespace kivhost {
namespace {

namespace fs = std::filesystem;
using kivstore::FileAccess;
using kivstore::SystemError;

// Marks of an entry.
constexpr uLong kEncrypted = 1;
constexpr uLong kNameIsUtf8 = 1U << 11;

// Of the deflate format; nothing else is written, and little else is found.
bool IsKnownMethod(uLong method) {
  return method == 0 || method == Z_DEFLATED;
}

bool IsEncrypted(const unz_file_info64& info) {
  return (info.flag & kEncrypted) != 0;
}

// Before there was a mark for UTF-8 names were in the code page of the first PCs.
std::string Utf8NameOf(const std::string& name, bool isMarked) {
  if (IsUtf8(name)) {
    return name;
  }
  const auto charset = Charset::Open(isMarked ? "UTF-8" : "CP437");
  return charset != nullptr ? charset->ToUtf8(name) : name;
}

bool IsStep(std::string_view part) {
  return !part.empty() && part != "." && part != "..";
}

// Backslashes and colons lead somewhere on one system or another.
bool LeadsOut(std::string_view name) {
  const auto isOdd = [](char c) {
    return static_cast<unsigned char>(c) < ' ' || c == 0x7F || c == '\\' || c == ':';
  };
  if (name.empty() || std::any_of(name.begin(), name.end(), isOdd)) {
    return true;
  }
  if (name.ends_with('/')) {
    name.remove_suffix(1);
  }
  for (size_t slash; (slash = name.find('/')) != name.npos; name.remove_prefix(slash + 1)) {
    if (!IsStep(name.substr(0, slash))) {
      return true;
    }
  }
  return !IsStep(name);
}

HostError IsThere(const std::string& path) {
  return {kWrongUsage, path + ": is there already; --force replaces it"};
}

void NeedPlainFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(fs::path(path), error);
  if (fs::is_directory(status)) {
    throw HostError(kWrongUsage, path + ": is a folder");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw HostError(kWrongUsage, path + ": is no plain file");
  }
}

// Why minizip does not take it.
std::string WhatIsWrongWith(ZipStream& stream) {
  const std::string begin = stream.ReadAt(0, 4);
  return begin == "PK\5\6"         ? ": is an empty zip file"
         : begin.starts_with("PK") ? ": is torn: the end of the zip file is missing"
                                   : ": is no zip file";
}

uint32_t CrcOf(std::string_view bytes, uint32_t before = 0) {
  const auto* const data = reinterpret_cast<const Bytef*>(bytes.data());
  return static_cast<uint32_t>(crc32_z(before, data, bytes.size()));
}

// The format tells no time before its first year.
zip_fileinfo TimedInfo(std::time_t when) {
  constexpr int kFirstYear = 1980;
  zip_fileinfo info{};
  const std::tm* const local = std::localtime(&when);
  if (local == nullptr || local->tm_year + 1900 < kFirstYear) {
    info.tmz_date = {0, 0, 0, 1, 0, kFirstYear};
    return info;
  }
  const auto part = [](int value) { return static_cast<uInt>(value); };
  info.tmz_date = {part(local->tm_sec),  part(local->tm_min), part(local->tm_hour),
                   part(local->tm_mday), part(local->tm_mon), part(local->tm_year + 1900)};
  return info;
}

}  // namespace

uint32_t ChecksumOf(const std::vector<ZipEntry>& entries) {
  uint32_t checksum = 0;
  for (const ZipEntry& entry : entries) {
    const std::string line =
        entry.name + '\0' + std::to_string(entry.size) + ' ' + std::to_string(entry.crc) + '\n';
    checksum = CrcOf(line, checksum);
  }
  return checksum;
}

struct ZipReader::State {
  explicit State(const std::string& path) : stream(path, FileAccess::kRead) {
    zlib_filefunc64_def functions = stream.Functions();
    zip = unzOpen2_64(path.c_str(), &functions);
  }
  ~State() {
    if (zip != nullptr) {
      unzClose(zip);
    }
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  ZipStream stream;
  unzFile zip = nullptr;
};

ZipReader::ZipReader(const std::string& path) : path(path) {
  NeedPlainFile(path);
  state = std::make_unique<State>(path);
  if (state->zip == nullptr) {
    throw HostError(kWrongUsage, path + WhatIsWrongWith(state->stream));
  }
  List();
  CheckNames();
}

ZipReader::~ZipReader() = default;

void ZipReader::List() {
  unz_global_info64 about;
  int result = unzGetGlobalInfo64(state->zip, &about);
  if (result == UNZ_OK && about.number_entry == 0) {
    return;
  }
  for (result = unzGoToFirstFile(state->zip); result == UNZ_OK;
       result = unzGoToNextFile(state->zip)) {
    entries.push_back(ReadListed());
  }
  if (result != UNZ_END_OF_LIST_OF_FILE || entries.size() != about.number_entry) {
    throw HostError(kWrongUsage, path + ": is torn: not all that it holds is listed");
  }
}

ZipEntry ZipReader::ReadListed() const {
  unz_file_info64 info;
  unz64_file_pos place;
  std::string name;
  const auto ask = [&] {
    return unzGetCurrentFileInfo64(state->zip, &info, name.data(), static_cast<uLong>(name.size()),
                                   nullptr, 0, nullptr, 0) == UNZ_OK;
  };
  const bool isSized = ask();
  name.resize(isSized ? info.size_filename : 0);
  if (!isSized || !ask() || unzGetFilePos64(state->zip, &place) != UNZ_OK) {
    throw HostError(kWrongUsage, path + ": is torn: not all that it holds is listed");
  }
  return {Utf8NameOf(name, (info.flag & kNameIsUtf8) != 0), info.uncompressed_size,
          static_cast<uint32_t>(info.crc), place.pos_in_zip_directory, place.num_of_file};
}

void ZipReader::CheckNames() const {
  std::vector<std::string_view> names;
  for (const ZipEntry& entry : entries) {
    if (LeadsOut(entry.name)) {
      throw HostError(kWrongUsage, path + ": holds a name that leads out of it: " + entry.name);
    }
    names.push_back(entry.name);
  }
  std::sort(names.begin(), names.end());
  const auto twice = std::adjacent_find(names.begin(), names.end());
  if (twice != names.end()) {
    throw HostError(kWrongUsage, path + ": holds " + std::string(*twice) + " twice");
  }
}

const ZipEntry* ZipReader::Find(std::string_view name) const {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const ZipEntry& entry) { return entry.name == name; });
  return found != entries.end() ? &*found : nullptr;
}

HostError ZipReader::Refuse(const ZipEntry& entry, const std::string& what) const {
  return {kWrongUsage, path + ": " + entry.name + " in it " + what};
}

std::string ZipReader::Read(const ZipEntry& entry, size_t most) const {
  if (entry.size > most) {
    throw Refuse(entry, "is too large");
  }
  std::string bytes;
  Read(entry, [&](std::string_view piece) { bytes += piece; });
  return bytes;
}

void ZipReader::Open(const ZipEntry& entry) const {
  const unz64_file_pos place{entry.listed, entry.number};
  unz_file_info64 info;
  if (unzGoToFilePos64(state->zip, &place) != UNZ_OK ||
      unzGetCurrentFileInfo64(state->zip, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
    throw Refuse(entry, "is torn");
  }
  if (IsEncrypted(info)) {
    throw Refuse(entry, "is encrypted; pack it without a password");
  }
  if (!IsKnownMethod(info.compression_method)) {
    throw Refuse(entry, "is compressed in a way that is not read here (method " +
                            std::to_string(info.compression_method) + "); pack it as plain zip");
  }
  if (unzOpenCurrentFile(state->zip) != UNZ_OK) {
    throw Refuse(entry, "is torn");
  }
}

void ZipReader::Read(const ZipEntry& entry, const TakePiece& take) const {
  Open(entry);
  char buffer[1 << 14];
  uint64_t size = 0;
  int count;
  while ((count = unzReadCurrentFile(state->zip, buffer, sizeof buffer)) > 0) {
    size += static_cast<uint64_t>(count);
    take(std::string_view(buffer, static_cast<size_t>(count)));
  }
  const int closed = unzCloseCurrentFile(state->zip);
  if (state->stream.GetError() != SystemError::kNone) {
    throw ZipTrouble(path, state->stream.GetError());
  }
  if (count < 0 || size != entry.size || closed != UNZ_OK) {
    throw Refuse(entry, "is torn: its bytes do not fit its checksum");
  }
}

struct ZipWriter::State {
  explicit State(const std::string& path) : stream(path, FileAccess::kReadWrite) {
    zlib_filefunc64_def functions = stream.Functions();
    zip = zipOpen2_64(path.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
  }
  ~State() {
    if (zip != nullptr) {
      zipClose(zip, nullptr);
    }
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  ZipStream stream;
  zipFile zip = nullptr;
};

ZipWriter::ZipWriter(const std::string& path, bool mayReplace)
    : path(path), making(path + ".new"), mayReplace(mayReplace) {
  if (path == "-") {
    throw HostError(kWrongUsage, "-: a zip file is not written to standard output");
  }
  NeedTarget(path, mayReplace);
  NeedPlainFile(path);
  NeedPlainFile(making);
  const std::string place = ToLibraryPath(making);
  SystemError error;
  // A link that bears the name goes, not what it leads to.
  if (!ZipFiles().Delete(place.c_str(), error) && error != SystemError::kFileNotFound) {
    throw ZipTrouble(error == SystemError::kPathNotFound ? path : making, error);
  }
  if (!ZipFiles().MakeFile(place.c_str(), error)) {
    throw ZipTrouble(path, error);
  }
  state = std::make_unique<State>(making);
  isMade = true;
  NeedDone(state->zip != nullptr ? ZIP_OK : ZIP_ERRNO);
}

ZipWriter::~ZipWriter() {
  state.reset();
  SystemError ignored;
  if (isMade) {
    ZipFiles().Delete(ToLibraryPath(making).c_str(), ignored);
  }
}

void ZipWriter::NeedDone(int result) const {
  if (state->stream.GetError() != SystemError::kNone) {
    throw ZipTrouble(path, state->stream.GetError());
  }
  if (result != ZIP_OK) {
    throw HostError(kNoStore, path + ": could not be written");
  }
}

void ZipWriter::WriteEntry(std::string_view bytes) const {
  constexpr size_t kPiece = 1 << 20;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
    const size_t count = std::min(kPiece, bytes.size());
    NeedDone(zipWriteInFileInZip(state->zip, bytes.data(), static_cast<unsigned>(count)));
  }
  NeedDone(zipCloseFileInZip(state->zip));
}

bool ZipWriter::Takes(std::string_view name) {
  return !LeadsOut(name) && name.size() <= std::numeric_limits<uint16_t>::max();
}

void ZipWriter::Add(const std::string& name, std::string_view bytes, std::time_t when) {
  const zip_fileinfo info = TimedInfo(when);
  const bool isEmpty = bytes.empty();
  if (!Takes(name) || bytes.size() > std::numeric_limits<uint32_t>::max()) {
    throw HostError(kNoStore, path + ": no zip file can hold " + name);
  }
  NeedDone(zipOpenNewFileInZip4_64(state->zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                   isEmpty ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS,
                                   MAX_MEM_LEVEL - 1, Z_DEFAULT_STRATEGY, nullptr, 0, 0,
                                   kNameIsUtf8, 0));
  WriteEntry(bytes);
  written.push_back({name, bytes.size(), CrcOf(bytes), 0, 0});
}

void ZipWriter::Finish() {
  Close();
  Verify();
  Name();
  isMade = false;
}

void ZipWriter::Close() {
  const int result = zipClose(std::exchange(state->zip, nullptr), nullptr);
  if (result == ZIP_OK && !FitsPlainEnd(written.size())) {
    WriteLargeEnd(state->stream, written.size());
  }
  state->stream.Flush();
  NeedDone(result);
  state.reset();
}

void ZipWriter::Verify() const {
  const ZipReader reader(making);
  const auto isSame = [](const ZipEntry& a, const ZipEntry& b) {
    return a.name == b.name && a.size == b.size && a.crc == b.crc;
  };
  if (!std::equal(written.begin(), written.end(), reader.GetEntries().begin(),
                  reader.GetEntries().end(), isSame)) {
    throw HostError(kNoStore, path + ": does not read back as it was written");
  }
  for (const ZipEntry& entry : reader.GetEntries()) {
    reader.Read(entry, [](std::string_view) {});
  }
}

// Moving takes no name that is there; renaming takes its place in one step.
void ZipWriter::Name() const {
  std::error_code refused;
  SystemError error = SystemError::kNone;
  if (mayReplace) {
    fs::rename(fs::path(making), fs::path(path), refused);
  } else if (!ZipFiles().Move(ToLibraryPath(making).c_str(), ToLibraryPath(path).c_str(), error)) {
    throw error == SystemError::kAlreadyExists ? IsThere(path) : ZipTrouble(path, error);
  }
  if (refused) {
    throw HostError(kNoStore, path + ": " + refused.message());
  }
}

}  // namespace kivhost
