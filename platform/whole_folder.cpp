// IFileServices::MakeWhole by the other operations, for services that have no shorter way.
#include <string>

#include "platform/file_services.h"

namespace kivstore {
namespace {

bool MakeOne(IFileServices& services, const std::string& path, const NewFile& file,
             SystemError& error) {
  if (!services.MakeFile(path.c_str(), error)) {
    return false;
  }
  if (file.count == 0) {
    return true;
  }
  const FileHandle opened = services.Open(path.c_str(), FileAccess::kReadWrite, error);
  if (opened == nullptr) {
    return false;
  }
  const bool isWritten =
      services.Write(opened, file.bytes, file.count) == file.count && services.Flush(opened);
  if (!isWritten) {
    error = services.TransferError();
  }
  services.Close(opened);
  return isWritten;
}

}  // namespace

bool IFileServices::MakeWhole(const char* making, const char* place, const NewFile* files,
                              int count, SystemError& error) {
  if (!MakeFolder(making, 0, error)) {
    return false;
  }
  const std::string inside = std::string(making) + '\\';
  int made = 0;
  while (made < count && MakeOne(*this, inside + files[made].name, files[made], error)) {
    ++made;
  }
  if (made == count && Move(making, place, error)) {
    return true;
  }
  SystemError ignored;
  for (int i = 0; i < count && i <= made; ++i) {
    Delete((inside + files[i].name).c_str(), ignored);
  }
  RemoveFolder(making, ignored);
  return false;
}

}  // namespace kivstore
