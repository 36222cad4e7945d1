// A record to bytes and back, in memory and without a file's header.
#pragma once

#include <string>

#include "archive/binary_stream.h"
#include "archive/dob.h"
#include "archive/dob_binary_archive.h"
#include "archive/stream_memory.h"
#include "tests/support/record_bytes.h"

namespace kivtest {

// The value of the fresh mark in BytesOf is the time of the call.
inline std::string BytesOf(kivstore::SDob& record) {
  std::string bytes(1 << 17, '\0');
  kivstore::SStreamSrcMemory source(bytes.data(), static_cast<int32_t>(bytes.size()));
  kivstore::SBinaryStream stream(kivstore::SBinaryStream::kWrite, &source, false);
  kivstore::SDobBinaryArchive archive(kivstore::SDobBinaryArchive::kWrite, &stream);
  record.Serialize(archive);
  bytes.resize(static_cast<size_t>(source.GetPosition()));
  return bytes;
}

// False if the bytes end early.
inline bool Fill(kivstore::SDob& record, std::string bytes) {
  kivstore::SStreamSrcMemory source(bytes.data(), static_cast<int32_t>(bytes.size()));
  kivstore::SBinaryStream stream(kivstore::SBinaryStream::kRead, &source, false);
  kivstore::SDobBinaryArchive archive(kivstore::SDobBinaryArchive::kRead, &stream);
  record.Serialize(archive);
  return !archive.HasError();
}

}  // namespace kivtest
