// The file services of a command that changes a store, which note whether it did: what changed
// nothing is not worth a line in the log.
#pragma once

#include "platform/file_services.h"

namespace kivadmin {

class NotingServices final : public kivstore::SForwardingFileServices {
 public:
  using SForwardingFileServices::SForwardingFileServices;
  using Error = kivstore::SystemError;

  bool HasChanged() const { return changed; }
  void Forget() { changed = false; }

  int32_t Write(kivstore::FileHandle file, const void* buffer, int32_t count) override {
    return Note(inner.Write(file, buffer, count));
  }
  bool SetEnd(kivstore::FileHandle file) override { return Note(inner.SetEnd(file)); }
  bool SetAttributes(const char* path, const kivstore::FileAttributes& attributes,
                     Error& error) override {
    return Note(inner.SetAttributes(path, attributes, error));
  }
  bool Delete(const char* path, Error& error) override { return Note(inner.Delete(path, error)); }
  bool RemoveFolder(const char* path, Error& error) override {
    return Note(inner.RemoveFolder(path, error));
  }
  bool Move(const char* from, const char* to, Error& error) override {
    return Note(inner.Move(from, to, error));
  }
  bool MakeFile(const char* path, Error& error) override {
    return Note(inner.MakeFile(path, error));
  }
  bool MakeFolder(const char* path, uint32_t mode, Error& error) override {
    return Note(inner.MakeFolder(path, mode, error));
  }
  bool MakeWhole(const char* making, const char* place, const kivstore::NewFile* files, int count,
                 Error& error) override {
    return Note(inner.MakeWhole(making, place, files, count, error));
  }
  bool CopyFileTo(const char* from, const char* to, Error& error) override {
    return Note(inner.CopyFileTo(from, to, error));
  }

 private:
  template <class Answer>
  Answer Note(Answer answer) {
    changed = changed || answer;
    return answer;
  }

  bool changed = false;
};

}  // namespace kivadmin
