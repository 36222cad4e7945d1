// Small texts that the programs keep in a store beside what is the store's own: read and written
// whole through its file services, so that no link leads them elsewhere.
#pragma once

#include <cstddef>
#include <string>

#include "foundation/files/file_spec.h"

namespace kivhost {

// Both throw HostError with the reason. `kind` is what a larger file than `most` is not.
std::string ReadStoreText(const kivstore::SFileSpec& spec, size_t most, const char* kind);
void WriteStoreText(kivstore::SFileSpec spec, const std::string& text);

}  // namespace kivhost
