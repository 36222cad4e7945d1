#include "store/list/long_name.h"

#include "archive/binary_stream.h"
#include "archive/stream_file.h"
#include "store/place/store_names.h"

namespace kivstore {

bool WriteLongName(const SFileSpec& folder, const SString& first, const SString& last) {
  SFileSpec file(folder);
  file.Down(CachedText<kTextLongNameFile>());
  if (!file.Exists()) {
    file.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
  }
  SFile target;
  if (!target.OpenPatiently(file)) {
    return false;
  }
  SComposedFile contents;
  ComposeLongName(contents, first, last);
  return contents.WriteMarkedTo(target);
}

void ComposeLongName(SComposedFile& contents, const SString& first, const SString& last) {
  contents.Stream().WriteText(first);
  contents.Stream().WriteText(last);
}

bool ReadLongName(const SFileSpec& file, SString& first, SString& last) {
  SStreamSrcFile source(file);
  SBinaryStream stream(SBinaryStream::kRead, &source, false);
  if (stream.HasError()) {
    return false;
  }
  stream.ReadText(first);
  stream.ReadText(last);
  return source.BytesLeft() == 0;
}

}  // namespace kivstore
