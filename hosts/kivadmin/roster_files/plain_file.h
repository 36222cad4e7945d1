// Files that a user names and a program could be made to wait at.
#pragma once

#include <cstddef>
#include <string>

namespace kivadmin {

// For messages: the path, or "standard input" for "-".
std::string NameOfFile(const std::string& path);

// All bytes of it, or of standard input for "-". Throws wrong usage for a pipe, a socket or a
// device, and for what is too long; `kind` is what that is not: "a roster".
std::string ReadPlainFile(const std::string& path, const char* kind);

// Throws wrong usage for more than that many bytes.
std::string ReadStandardInput(size_t most, const char* kind);

}  // namespace kivadmin
