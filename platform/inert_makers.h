// The three operations that would make something, as the library has them: they touch nothing.
//
// This is a property of the library, not a gap: it reads a store and rewrites files that exist, and
// no program that loads it can be made to create a file or folder. Each platform's services derive
// from this class.
#pragma once

#include "platform/file_services.h"

namespace kivstore {

class SInertMakers : public IFileServices {
 public:
  bool MakeFile(const char* path, SystemError& error) override;
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override;
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override;
};

}  // namespace kivstore
