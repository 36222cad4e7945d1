// The last error of Win32, as far as a caller of the file services tells errors apart.
#pragma once

#include "platform/file_services.h"

namespace kivstore {

SystemError LastSystemError();

// The answer of a call: true sets kNone, false the last error.
bool Report(bool succeeded, SystemError& error);

}  // namespace kivstore
