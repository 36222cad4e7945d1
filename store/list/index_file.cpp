#include "store/list/index_file.h"

#include <algorithm>
#include <new>

#include "archive/binary_stream.h"
#include "archive/stream_file.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

constexpr int32_t kMostEntries = 32767;  // lists are walked with 16-bit counters
constexpr int32_t kLeastRecord = 3;      // three empty texts

void ReadEntry(SBinaryStream& stream, SLoginNameObj& login) {
  stream.ReadText(login.folderName);
  stream.ReadText(login.firstName);
  stream.ReadText(login.lastName);
}

void ReadEntry(SBinaryStream& stream, SOurFileObj& file) {
  stream.ReadText(file.fileName);
  stream.ReadText(file.longName);
  stream.ReadText(file.extension);
}

void WriteEntry(SBinaryStream& stream, const SLoginNameObj& login) {
  stream.WriteText(login.folderName);
  stream.WriteText(login.firstName);
  stream.WriteText(login.lastName);
}

void WriteEntry(SBinaryStream& stream, const SOurFileObj& file) {
  stream.WriteText(file.fileName);
  stream.WriteText(file.longName);
  stream.WriteText(file.extension);
}

// Of what the file counts no more than its remaining bytes can hold, and one record that is torn.
int32_t ReadCount(SBinaryStream& stream) {
  int32_t count = 0;
  stream.ReadLong(count);
  const int32_t rest = stream.Source().GetLength() - stream.Source().GetPosition();
  return std::clamp(count, 0, std::max(rest, 0) / kLeastRecord + 1);
}

void SkipRecords(SBinaryStream& stream, int32_t count) {
  SOurFileObj dropped;
  for (int32_t i = 0; i < count; ++i) {
    ReadEntry(stream, dropped);
  }
}

// False if not all of them found room.
template <class Entry>
bool ReadEntries(SBinaryStream& stream, int32_t count, SPtrArray& list) {
  int32_t at = list.GetSize();
  const int32_t end = at + std::min(count, std::max(kMostEntries - at, 0));
  const bool fitsAll = end - at == count;
  const int32_t skipped = count - (end - at);
  list.SetSize(end);
  for (; at < list.GetSize(); ++at) {
    Entry* const entry = new (std::nothrow) Entry;
    if (entry == nullptr) {
      break;
    }
    list[at] = entry;
    ReadEntry(stream, *entry);
  }
  list.SetSize(at);
  SkipRecords(stream, skipped);
  return fitsAll && at == end;
}

void ReadHalves(SBinaryStream& stream, SIndexObj& index) {
  const int32_t loginCount = stream.Source().GetLength() < 1 ? 0 : ReadCount(stream);
  if (index.logins == nullptr || !index.readLogins) {
    SkipRecords(stream, loginCount);
  } else if (!ReadEntries<SLoginNameObj>(stream, loginCount, *index.logins)) {
    index.incomplete = true;
  }
  if (index.files == nullptr || !index.readFiles) {
    return;
  }
  const int32_t fileCount = ReadCount(stream);
  if (!stream.HasError() && !ReadEntries<SOurFileObj>(stream, fileCount, *index.files)) {
    index.incomplete = true;
  }
}

bool ReadIndexFile(const SFileSpec& spec, SIndexObj& index) {
  if (!spec.IsExistingFile()) {
    return false;
  }
  SStreamSrcFile source(spec);
  SBinaryStream stream(SBinaryStream::kRead, &source, false);
  if (stream.HasError()) {
    index.incomplete |= source.GetOpenError() != SFile::kNotFound;
    return false;
  }
  ReadHalves(stream, index);
  index.incomplete |= source.HasError() && source.GetPosition() < source.GetLength();
  return true;
}

// Reads the halves that the index lacks.
void TakeMissingHalves(SFileSpec file, SIndexObj& index) {
  const bool lacksLogins = index.logins == nullptr;
  const bool lacksFiles = index.files == nullptr;
  if (!lacksLogins && !lacksFiles) {
    return;
  }
  if (lacksLogins) {
    index.NeedLogins();
  }
  if (lacksFiles) {
    index.NeedFiles();
  }
  index.readLogins = lacksLogins;
  index.readFiles = lacksFiles;
  ReadIndex(file, &index);
  index.readLogins = index.readFiles = true;
}

template <class Entry>
void WriteHalf(SBinaryStream& stream, const SPtrArray* half) {
  const int32_t count = half != nullptr ? half->GetSize() : 0;
  stream.WriteLong(count);
  for (int32_t i = 0; i < count; ++i) {
    WriteEntry(stream, *static_cast<const Entry*>((*half)[i]));
  }
}

bool WriteIndexFile(const SFileSpec& file, const SIndexObj& index) {
  SStreamSrcFile source(file);
  SBinaryStream stream(SBinaryStream::kWrite, &source, false);
  if (stream.HasError()) {
    return true;
  }
  WriteHalf<SLoginNameObj>(stream, index.logins);
  WriteHalf<SOurFileObj>(stream, index.files);
  stream.FinishWriting(false);
  return !stream.HasError();
}

}  // namespace

bool ReadIndex(SFileSpec& spec, SIndexObj* index) {
  const bool read = index != nullptr && ReadIndexFile(spec, *index);
  spec.Up();
  return read;
}

bool WriteIndex(const SFileSpec& spec, SIndexObj& index) {
  SFileSpec file(spec);
  file.Down(CachedText<kTextIndexFile>());
  if (file.Exists()) {
    TakeMissingHalves(file, index);
  } else {
    file.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
  }
  return index.incomplete || WriteIndexFile(file, index);
}

int32_t ReadIndexCount(const SFileSpec& spec) {
  SFileSpec indexSpec(spec);
  SFile file;
  unsigned char bytes[4];
  if (!indexSpec.DownAssumed(CachedText<kTextIndexFile>().GetText()) ||
      !file.Open(SFile::kRead, indexSpec) || file.Read(sizeof bytes, bytes) != sizeof bytes) {
    return 0;
  }
  const uint64_t packed = PackBytes(reinterpret_cast<const char*>(bytes), sizeof bytes);
  return std::max(static_cast<int32_t>(packed >> 32), 0);
}

}  // namespace kivstore
