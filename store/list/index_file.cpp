#include "store/list/index_file.h"

#include <algorithm>
#include <memory>

#include "archive/binary_stream.h"
#include "archive/stream_file.h"
#include "platform/base/bytes.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int32_t kLeastRecord = 3;  // three empty texts

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
bool ReadEntries(SBinaryStream& stream, int32_t count, SOwningList<Entry>& list) {
  const int32_t room = std::max(kMostEntries - list.GetSize(), 0);
  const int32_t wanted = std::min(count, room);
  int32_t taken = 0;
  if (list.Reserve(list.GetSize() + wanted)) {
    for (; taken < wanted; ++taken) {
      std::unique_ptr<Entry> entry(new (std::nothrow) Entry);
      if (entry == nullptr) {
        break;
      }
      ReadEntry(stream, *entry);
      list.Add(std::move(entry));
    }
  }
  SkipRecords(stream, count - taken);
  return taken == count;
}

void ReadHalves(SBinaryStream& stream, SIndexObj& index) {
  const int32_t loginCount = stream.Source().GetLength() < 1 ? 0 : ReadCount(stream);
  if (!index.logins || !index.readLogins) {
    SkipRecords(stream, loginCount);
  } else if (!ReadEntries(stream, loginCount, *index.logins)) {
    index.incomplete = true;
  }
  if (!index.files || !index.readFiles) {
    return;
  }
  const int32_t fileCount = ReadCount(stream);
  if (!stream.HasError() && !ReadEntries(stream, fileCount, *index.files)) {
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
  index.readLogins = !index.logins;
  index.readFiles = !index.files;
  if (index.readLogins) {
    index.NeedLogins();
  }
  if (index.readFiles) {
    index.NeedFiles();
  }
  if (index.readLogins || index.readFiles) {
    ReadIndex(file, index);
  }
  index.readLogins = index.readFiles = true;
}

template <class List>
void WriteHalf(SBinaryStream& stream, const std::optional<List>& half) {
  stream.WriteLong(half ? half->GetSize() : 0);
  if (half) {
    for (const auto& entry : *half) {
      WriteEntry(stream, entry);
    }
  }
}

bool WriteIndexFile(const SFileSpec& file, const SIndexObj& index) {
  SStreamSrcFile source(file);
  SBinaryStream stream(SBinaryStream::kWrite, &source, false);
  if (stream.HasError()) {
    return true;
  }
  WriteHalf(stream, index.logins);
  WriteHalf(stream, index.files);
  stream.FinishWriting(false);
  return !stream.HasError();
}

}  // namespace

bool ReadIndex(SFileSpec& spec, SIndexObj& index) {
  const bool read = ReadIndexFile(spec, index);
  spec.Up();
  return read;
}

void ReadWholeIndex(SFileSpec folder, SIndexObj& index) {
  index.NeedLogins();
  index.NeedFiles();
  if (folder.DownAssumed(CachedText<kTextIndexFile>().GetText())) {
    ReadIndex(folder, index);
  }
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
