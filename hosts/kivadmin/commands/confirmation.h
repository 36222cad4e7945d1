// Asking before something is done that cannot easily be undone.
#pragma once

#include <string>

namespace kivadmin {

// "Delete student "Ann Lee"? [y/N]" on standard error for "delete student "Ann Lee"". Throws
// HostError unless the answer is yes; where nobody can be asked, without `yes`, as wrong usage.
void Confirm(const std::string& what, bool yes);

}  // namespace kivadmin
