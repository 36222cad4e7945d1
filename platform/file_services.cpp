#include "platform/file_services.h"

namespace kivstore {

void SForwardingFileServices::KeepDataRoot(const char* path) {
  inner.KeepDataRoot(path);
}

bool SForwardingFileServices::IsShared() {
  return inner.IsShared();
}

ForeignLink SForwardingFileServices::LastForeignLink() {
  return inner.LastForeignLink();
}

FileHandle SForwardingFileServices::Open(const char* path, FileAccess access, SystemError& error) {
  return inner.Open(path, access, error);
}

void SForwardingFileServices::Close(FileHandle file) {
  inner.Close(file);
}

int32_t SForwardingFileServices::Read(FileHandle file, void* buffer, int32_t count) {
  return inner.Read(file, buffer, count);
}

int32_t SForwardingFileServices::Write(FileHandle file, const void* buffer, int32_t count) {
  return inner.Write(file, buffer, count);
}

bool SForwardingFileServices::Seek(FileHandle file, SeekOrigin origin, int64_t offset) {
  return inner.Seek(file, origin, offset);
}

int64_t SForwardingFileServices::Tell(FileHandle file) {
  return inner.Tell(file);
}

int64_t SForwardingFileServices::Size(FileHandle file) {
  return inner.Size(file);
}

bool SForwardingFileServices::SetEnd(FileHandle file) {
  return inner.SetEnd(file);
}

bool SForwardingFileServices::Flush(FileHandle file) {
  return inner.Flush(file);
}

SystemError SForwardingFileServices::Exposure(FileHandle file) {
  return inner.Exposure(file);
}

bool SForwardingFileServices::LeadsTo(const char* path, FileHandle file) {
  return inner.LeadsTo(path, file);
}

SystemError SForwardingFileServices::TransferError() {
  return inner.TransferError();
}

bool SForwardingFileServices::Attributes(const char* path, FileAttributes& attributes,
                                         SystemError& error) {
  return inner.Attributes(path, attributes, error);
}

bool SForwardingFileServices::FullAttributes(const char* path, FileAttributes& attributes,
                                             SystemError& error) {
  return inner.FullAttributes(path, attributes, error);
}

bool SForwardingFileServices::SetAttributes(const char* path, const FileAttributes& attributes,
                                            SystemError& error) {
  return inner.SetAttributes(path, attributes, error);
}

bool SForwardingFileServices::Delete(const char* path, SystemError& error) {
  return inner.Delete(path, error);
}

bool SForwardingFileServices::RemoveFolder(const char* path, SystemError& error) {
  return inner.RemoveFolder(path, error);
}

bool SForwardingFileServices::Move(const char* from, const char* to, SystemError& error) {
  return inner.Move(from, to, error);
}

const char* SForwardingFileServices::BlockingFile() {
  return inner.BlockingFile();
}

std::unique_ptr<IFolderWalk> SForwardingFileServices::Walk(const char* folder, const char* mask,
                                                           SystemError& error) {
  return inner.Walk(folder, mask, error);
}

bool SForwardingFileServices::DiskSpace(const char* root, uint64_t& total, uint64_t& free,
                                        uint32_t& cluster) {
  return inner.DiskSpace(root, total, free, cluster);
}

bool SForwardingFileServices::CurrentFolder(char* buffer, int size) {
  return inner.CurrentFolder(buffer, size);
}

bool SForwardingFileServices::SetCurrentFolder(const char* path) {
  return inner.SetCurrentFolder(path);
}

bool SForwardingFileServices::MakeFile(const char* path, SystemError& error) {
  return inner.MakeFile(path, error);
}

bool SForwardingFileServices::MakeFolder(const char* path, uint32_t mode, SystemError& error) {
  return inner.MakeFolder(path, mode, error);
}

bool SForwardingFileServices::MakeWhole(const char* making, const char* place, const NewFile* files,
                                        int count, SystemError& error) {
  return inner.MakeWhole(making, place, files, count, error);
}

bool SForwardingFileServices::CopyFileTo(const char* from, const char* to, SystemError& error) {
  return inner.CopyFileTo(from, to, error);
}

}  // namespace kivstore
