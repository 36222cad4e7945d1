// Records as a flat, big-endian byte sequence: exactly the fields that Serialize lists, in that
// order, with no tags, lengths or type marks. A reader cannot skip what it does not know, which is
// why version words must match exactly.
//
//   bool, char       1      as it stands; any byte but 0 reads as true
//   short            2      big-endian
//   long             4      big-endian
//   double           8      IEEE 754, big-endian
//   text             n + 1  its bytes and one NUL; 32,766 characters at most
//   point, size      8      x, y / cx, cy
//   rectangle        16     left, top, right, bottom
//   date, stamp      8      high word (0xFFFFFFFF for the fresh mark, else 0), low word: seconds
//   blob             4 + n  length, then the bytes
#pragma once

#include <optional>

#include "archive/binary_stream.h"
#include "archive/dob_transfers.h"
#include "archive/stream_file.h"
#include "foundation/files/file_spec.h"

namespace kivstore {

class SDobBinaryArchive final : public SDobTransfers<SDobBinaryArchive> {
 public:
  static constexpr int32_t kRead = 0;
  static constexpr int32_t kWrite = 1;

  SDobBinaryArchive(int32_t mode, const SFileSpec& spec);
  SDobBinaryArchive(int32_t mode, SBinaryStream* stream);  // the caller's stream, may be null
  ~SDobBinaryArchive() = default;
  SDobBinaryArchive(const SDobBinaryArchive&) = delete;
  SDobBinaryArchive& operator=(const SDobBinaryArchive&) = delete;

  bool IsReading() const override { return mode != kWrite; }
  bool IsWriting() const override { return mode == kWrite; }
  bool IsDeleting() const override { return false; }
  bool HasError() const override { return stream == nullptr || stream->HasError(); }
  bool WriteBytes(const void* data, int16_t length) override;
  bool WriteTag(uint32_t tag) override;
  bool CheckBytes(const void* data, int16_t length) override;
  bool CheckTag(uint32_t tag) override;
  void PushSectionNumber(uint16_t) override {}
  void PushSection(const char*) override {}
  void PopSection() override {}
  const char* GetSection() const override { return nullptr; }
  void PushKeyNumber(uint16_t) override {}
  void PushKey(const char*) override {}
  void PopKey() override {}
  const char* GetKey() const override { return nullptr; }
  void Finish() override;
  bool TransferBlob(const char* name, MemoryHandle& handle, int32_t& length) override;

  std::string_view PeekReady() const override {
    return IsReading() && stream != nullptr ? stream->PeekReady() : std::string_view();
  }
  const uint8_t* TakeReady(int32_t count) override {
    return IsReading() && stream != nullptr && count >= 0 ? stream->TakeReady(count) : nullptr;
  }

 private:
  friend SDobTransfers;
  template <class T>
  bool TransferField(const char* name, T& value);
  bool WriteBlob(MemoryHandle handle, int32_t length);
  bool ReadBlob(MemoryHandle& handle, int32_t& length);

  struct FileStream {
    FileStream(int32_t mode, const SFileSpec& spec) : source(spec), stream(mode, &source, false) {}
    SStreamSrcFile source;
    SBinaryStream stream;
  };

  int32_t mode;
  std::optional<FileStream> own;
  SBinaryStream* stream;
};

extern template class SDobTransfers<SDobBinaryArchive>;

}  // namespace kivstore
