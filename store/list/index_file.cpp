#include "store/list/index_file.h"

#include <algorithm>
#include <memory>

#include "archive/binary_stream.h"
#include "archive/composed_file.h"
#include "archive/stream_file.h"
#include "foundation/text/text_block.h"
#include "platform/base/bytes.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int32_t kLeastRecord = 3;  // three empty texts

// Reads entries, as many as may come. Short texts lie together and are taken straight from what the
// stream has ready; the others it reads as ever.
class EntryReader {
 public:
  explicit EntryReader(SBinaryStream& stream) : stream(stream) { Look(); }
  ~EntryReader() { Consume(); }
  EntryReader(const EntryReader&) = delete;
  EntryReader& operator=(const EntryReader&) = delete;

  void Read(SLoginNameObj& login) {
    Read(login.folderName);
    Read(login.firstName);
    Read(login.lastName);
  }
  void Read(SOurFileObj& file) {
    Read(file.fileName);
    Read(file.longName);
    Read(file.extension);
  }

 private:
  void Read(SString& text) {
    const char* const behind = texts.Read(next, end, text);
    if (behind != nullptr) {
      next = behind;
    } else {
      ReadByStream(text);
    }
  }

  void ReadByStream(SString& text) {
    Consume();
    stream.ReadText(text);
    Look();
  }

  void Look() {
    const std::string_view ready = stream.PeekReady();
    start = next = ready.data();
    end = start + ready.size();
  }

  void Consume() { stream.TakeReady(static_cast<int32_t>(next - start)); }

  SBinaryStream& stream;
  STextBlock texts;
  const char* start = nullptr;  // of what lay ready at the last look
  const char* next = nullptr;
  const char* end = nullptr;
};

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
int32_t ReadCount(SBinaryStream& stream, SIndexObj& index) {
  int32_t count = 0;
  stream.ReadLong(count);
  const int32_t most = stream.Source().BytesLeft() / kLeastRecord;
  index.torn |= count < 0 || count > most;
  return std::clamp(count, 0, most + 1);
}

void SkipRecords(SBinaryStream& stream, int32_t count) {
  EntryReader reader(stream);
  SOurFileObj dropped;
  for (int32_t i = 0; i < count; ++i) {
    reader.Read(dropped);
  }
}

// False if not all of them found room.
template <class Entry>
bool ReadEntries(SBinaryStream& stream, int32_t count, SOwningList<Entry>& list) {
  const int32_t room = std::max(kMostEntries - list.GetSize(), 0);
  const int32_t wanted = std::min(count, room);
  EntryReader reader(stream);
  int32_t taken = 0;
  if (list.Reserve(list.GetSize() + wanted)) {
    for (; taken < wanted; ++taken) {
      std::unique_ptr<Entry> entry(new (std::nothrow) Entry);
      if (entry == nullptr) {
        break;
      }
      reader.Read(*entry);
      list.Add(std::move(entry));
    }
  }
  SkipRecords(stream, count - taken);
  return taken == count;
}

bool HasNameless(const SLoginList& logins) {
  return std::any_of(logins.begin(), logins.end(),
                     [](const SLoginNameObj& login) { return login.folderName.IsEmpty(); });
}

void ReadHalves(SBinaryStream& stream, SIndexObj& index) {
  const int32_t loginCount = ReadCount(stream, index);
  if (!index.logins || !index.readLogins) {
    SkipRecords(stream, loginCount);
  } else {
    index.incomplete |= !ReadEntries(stream, loginCount, *index.logins);
    index.torn |= HasNameless(*index.logins);
  }
  const int32_t fileCount = ReadCount(stream, index);
  if (!index.files || !index.readFiles) {
    SkipRecords(stream, fileCount);
  } else if (!stream.HasError()) {
    index.incomplete |= !ReadEntries(stream, fileCount, *index.files);
  }
  index.torn |= stream.HasError() || stream.Source().BytesLeft() > 0;
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
  if (source.GetLength() > 0) {
    ReadHalves(stream, index);
  }
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
  SFile target;
  if (!target.OpenPatiently(file)) {
    return true;
  }
  SComposedFile contents;
  WriteHalf(contents.Stream(), index.logins);
  WriteHalf(contents.Stream(), index.files);
  return contents.WriteMarkedTo(target, index.torn);
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
