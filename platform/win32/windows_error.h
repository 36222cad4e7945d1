// The last error of Win32, as far as a caller of the file services tells errors apart.
#pragma once

#include "platform/file_services.h"

namespace kivstore {

// Set as the last error where a link is not followed.
inline constexpr unsigned long kForeignLinkError =
    static_cast<unsigned long>(SystemError::kForeignLink);

SystemError LastSystemError();

// The answer of a call: true sets kNone, false the last error.
bool Report(bool succeeded, SystemError& error);

}  // namespace kivstore
