// The words for what went wrong with a file. The system has no screen: a text is composed where the
// failure is, exactly as an interface would need it, and then dropped.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int16_t kFailSave = 1000;
inline constexpr int16_t kFailOpen = 1001;
inline constexpr int16_t kFailDelete = 1002;
inline constexpr int16_t kFailRename = 1003;
inline constexpr int16_t kFailRead = 1004;
inline constexpr int16_t kFailWrite = 1005;

// Whether the options say that the data lies on a disk of this machine.
bool UsesLocalDisk();

// False for an unknown code.
bool ReportFileFailure(int16_t code);

// Where every composed text ends. Does nothing; a test puts a listener in its place.
using DropMessageHook = void (*)(const SString& message);
extern DropMessageHook gDropMessage;
inline void DropMessage(const SString& message) {
  gDropMessage(message);
}

}  // namespace kivstore
