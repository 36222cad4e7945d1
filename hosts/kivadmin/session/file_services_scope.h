// Other file services for a while.
#pragma once

#include "platform/platform.h"

namespace kivadmin {

class FileServicesScope {
 public:
  explicit FileServicesScope(kivstore::IFileServices& files) : before(kivstore::Platform().files) {
    kivstore::Platform().files = &files;
  }
  ~FileServicesScope() { kivstore::Platform().files = before; }
  FileServicesScope(const FileServicesScope&) = delete;
  FileServicesScope& operator=(const FileServicesScope&) = delete;

 private:
  kivstore::IFileServices* before;
};

}  // namespace kivadmin
