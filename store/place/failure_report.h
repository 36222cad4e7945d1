// The words for what went wrong with a file or with the store. The system has no screen: a text is
// composed where the failure is, exactly as an interface would need it, and stays with the noted
// reason. No question is asked: what would ask whether to try again takes the answer that stops.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "store/place/site.h"

namespace kivstore {

inline constexpr int16_t kFailSave = 1000;
inline constexpr int16_t kFailOpen = 1001;
inline constexpr int16_t kFailDelete = 1002;
inline constexpr int16_t kFailRename = 1003;
inline constexpr int16_t kFailRead = 1004;
inline constexpr int16_t kFailWrite = 1005;

// Whether the options say that the data lies on a disk of this machine.
bool UsesLocalDisk(const SSite& site);

// False for an unknown code.
bool ReportFileFailure(SSite& site, int16_t code);

// A list that `spec` should stand on is not there and could not be made. Told once in the library's
// life; with `removable` each time, and it asks for a disk.
void ReportStoreFailure(SSite& site, const SFileSpec& spec, ListKind list, bool removable = false);

}  // namespace kivstore
