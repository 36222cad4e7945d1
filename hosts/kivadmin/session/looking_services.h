// File services for looking: locks can be taken and everything can be read, but whatever would
// change the disk is refused. With these in place a dry run goes the same way as the real one.
#pragma once

#include "platform/file_services.h"

namespace kivadmin {

class LookingServices final : public kivstore::SForwardingFileServices {
 public:
  using SForwardingFileServices::SForwardingFileServices;
  using Error = kivstore::SystemError;

  int32_t Write(kivstore::FileHandle, const void*, int32_t) override { return 0; }
  bool SetEnd(kivstore::FileHandle) override { return false; }
  bool SetAttributes(const char*, const kivstore::FileAttributes&, Error& error) override {
    return Refuse(error);
  }
  bool Delete(const char*, Error& error) override { return Refuse(error); }
  bool RemoveFolder(const char*, Error& error) override { return Refuse(error); }
  bool Move(const char*, const char*, Error& error) override { return Refuse(error); }
  bool MakeFile(const char*, Error& error) override { return Refuse(error); }
  bool MakeFolder(const char*, uint32_t, Error& error) override { return Refuse(error); }
  bool MakeWhole(const char*, const char*, const kivstore::NewFile*, int, Error& error) override {
    return Refuse(error);
  }
  bool CopyFileTo(const char*, const char*, Error& error) override { return Refuse(error); }

 private:
  static bool Refuse(Error& error) {
    error = Error::kAccessDenied;
    return false;
  }
};

}  // namespace kivadmin
