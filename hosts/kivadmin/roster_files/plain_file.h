// Files that a user names and a program could be made to wait at.
#pragma once

#include <string>

namespace kivadmin {

// All bytes of it, or of standard input for "-". Throws wrong usage for a pipe, a socket or a
// device, and for what is too long; `kind` is what that is not: "a roster".
std::string ReadPlainFile(const std::string& path, const char* kind);

}  // namespace kivadmin
