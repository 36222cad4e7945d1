// Small texts that the programs keep in a store beside what is the store's own: read and written
// whole through its file services, so that no link leads them elsewhere.
#pragma once

#include <cstddef>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/file_spec.h"

namespace kivhost {

// Opens it to read. Whoever writes it just now is waited for, as long as for a lock. False with the
// reason as the last file failure.
bool OpenToRead(kivstore::SFile& file, const kivstore::SFileSpec& spec);

// Both throw HostError with the reason. `kind` is what a larger file than `most` is not.
std::string ReadStoreText(const kivstore::SFileSpec& spec, size_t most, const char* kind);
void WriteStoreText(kivstore::SFileSpec spec, const std::string& text);

}  // namespace kivhost
