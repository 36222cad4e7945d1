#include "hosts/common/empty_file.h"

#include "foundation/files/file.h"

namespace kivhost {

bool IsEmptyFile(const kivstore::SFileSpec& spec) {
  kivstore::SFile file;
  return spec.IsExistingFile() && file.Open(kivstore::SFile::kRead, spec) && file.Size() == 0;
}

}  // namespace kivhost
