// Files that a user names, read and written whole. Throws HostError with the path and the code.
#pragma once

#include <cstddef>
#include <string>

#include "hosts/common/host_error.h"

namespace kivhost {

// `kind` is what a larger file than `most` is not: "a file of a store".
std::string ReadWholeFile(const std::string& path, size_t most, const char* kind,
                          ExitCode exitCode);
void WriteWholeFile(const std::string& path, const std::string& bytes);

}  // namespace kivhost
