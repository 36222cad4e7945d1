#include "store/change/last_file.h"

#include "archive/binary_stream.h"
#include "archive/composed_file.h"
#include "archive/stream_file.h"
#include "foundation/containers/string_array.h"
#include "platform/base/bytes.h"
#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/list/file_extension.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool PlaceLastFile(SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                   const SLoginNameObj* student) {
  PrepareClassList(site);
  EntryFolder(site, spec, classEntry, student);
  return spec.Down(CachedText<kTextLastFile>());
}

// The names that are longer than the extension; false if the file cannot be opened or read.
bool ReadNames(const SFileSpec& file, const SString& extension, SStringArray& names) {
  SStreamSrcFile source(file);
  SBinaryStream stream(SBinaryStream::kRead, &source, false);
  if (stream.HasError()) {
    return false;
  }
  int32_t count = 0;
  if (source.GetLength() > 0) {
    stream.ReadLong(count);
  }
  SString name;
  for (uint32_t i = 0; i < static_cast<uint32_t>(count) && stream.ReadText(name); ++i) {
    if (name.GetLength() > extension.GetLength() && names.GetSize() < kMostEntries) {
      names.Add(name);
    }
  }
  return !source.HasError() || source.GetPosition() >= source.GetLength();
}

int32_t FindOfType(const SStringArray& names, const SString& extension) {
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    if (HasExtension(names[i].View(), extension.View())) {
      return i;
    }
  }
  return -1;
}

// Whether the list is to be written.
bool PutName(SStringArray& names, const SString& fileName, const SString& extension) {
  if (names.GetSize() == 0) {
    names.Add(fileName);
    return true;
  }
  const int32_t index = FindOfType(names, extension);
  if (index < 0 || EqualBytesNoCase(names[index].View(), fileName.View())) {
    return false;
  }
  names[index] = fileName;
  return true;
}

void WriteNames(SFileSpec& spec, const SStringArray& names) {
  if (!spec.Exists()) {
    spec.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
  }
  SFile target;
  if (!target.OpenPatiently(spec)) {
    return;
  }
  SComposedFile contents;
  contents.Stream().WriteLong(names.GetSize());
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    contents.Stream().WriteText(names[i]);
  }
  contents.WriteTo(target);
}

}  // namespace

void RecordLastFile(SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                    const SString& fileName, const SString& extension) {
  SFileSpec spec;
  SStringArray names;
  if (!PlaceLastFile(site, spec, classEntry, student)) {
    return;
  }
  // A list that is there and cannot be read is not written over.
  if (!IsKnownMissing(spec) && !ReadNames(spec, extension, names)) {
    return;
  }
  if (PutName(names, fileName, extension)) {
    WriteNames(spec, names);
  }
}

bool FindLastFile(SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student, const SString& extension, bool removable) {
  SStringArray names;
  if (!PlaceLastFile(site, spec, classEntry, student) || !ReadNames(spec, extension, names)) {
    return false;
  }
  const int32_t index = FindOfType(names, extension);
  if (index < 0 || !IsSafeName(names[index])) {
    return false;
  }
  spec.Up();
  if (removable) {
    EntryFolder(site, spec, classEntry, student, true);
  }
  spec.Down(names[index]);
  return true;
}

}  // namespace kivstore
