// The operations of a record for whole files of the binary form.
#include "archive/composed_file.h"
#include "archive/dob.h"
#include "archive/dob_binary_archive.h"
#include "archive/dob_merging.h"
#include "archive/stream_file.h"
#include "foundation/files/file_type.h"

namespace kivstore {
namespace {

constexpr uint8_t kMagic[] = {'B', 'I', 'N', 1};

int32_t CheckHead(IDobArchive& archive, uint32_t version) {
  uint32_t stored = 0;
  if (!archive.CheckBytes(kMagic, sizeof kMagic)) {
    return SDob::kWrongMagic;
  }
  if (!archive.TransferULong(nullptr, stored)) {
    return SDob::kVersionUnreadable;
  }
  return stored == version  ? SDob::kVersionEqual
         : stored < version ? SDob::kFileOlder
                            : SDob::kFileNewer;
}

}  // namespace

bool SDob::SaveToFile(SFileSpec& spec) {
  if (!(spec.IsValid() && spec.Exists()) &&
      !spec.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0)) {
    return false;
  }
  SFile file;
  SComposedFile contents;
  return file.Open(SFile::kWrite, spec) && SaveToStream(contents.Stream()) &&
         contents.WriteTo(file);
}

bool SDob::LoadFromFile(const SFileSpec& spec) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, spec);
  return ReadFromArchive(archive);
}

bool SDob::SaveToStream(SBinaryStream& stream) {
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, &stream);
  return WriteToArchive(archive);
}

bool SDob::LoadFromStream(SBinaryStream& stream) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, &stream);
  return ReadFromArchive(archive);
}

bool SDob::WriteToArchive(IDobArchive& archive) {
  if (archive.HasError()) {
    return false;
  }
  uint32_t version = GetVersion();
  archive.WriteBytes(kMagic, sizeof kMagic);
  archive.TransferULong(nullptr, version);
  Serialize(archive);
  archive.Finish();
  return !archive.HasError();
}

bool SDob::ReadFromArchive(IDobArchive& archive) {
  if (archive.HasError() || !archive.CheckBytes(kMagic, sizeof kMagic)) {
    return false;
  }
  uint32_t version = 0;
  if (!archive.TransferULong(nullptr, version) || version != GetVersion()) {
    return false;
  }
  Serialize(archive);
  archive.Finish();
  return !archive.HasError();
}

bool SDob::CheckFileVersion(int32_t& status, const SFileSpec& spec, uint32_t version) {
  SStreamSrcFile source(spec);
  SBinaryStream stream(SBinaryStream::kRead, &source, false);
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, &stream);
  status = archive.HasError() ? kCannotOpen : CheckHead(archive, version);
  if (source.HasError() && source.BytesLeft() > 0) {
    status = kCannotOpen;
  }
  return status == kVersionEqual;
}

bool SDob::SaveMergedToFile(SFileSpec& spec) {
  return SaveMerged(
      *this, std::unique_ptr<SDob>(CreateNew()),
      [&](SDob& record) { return record.LoadFromFile(spec); },
      [&](SDob& record) { return record.SaveToFile(spec); });
}

bool SDob::MergeFromFile(const SFileSpec& spec) {
  return MergeStored(*this, std::unique_ptr<SDob>(CreateNew()),
                     [&](SDob& record) { return record.LoadFromFile(spec); });
}

bool SDob::MergeFromFile(const SFileSpec& spec, SDob& stored) {
  return MergeStored(*this, stored, [&](SDob& record) { return record.LoadFromFile(spec); });
}

}  // namespace kivstore
