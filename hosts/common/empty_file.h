// A file of no bytes is what a death between making a file and writing it leaves.
#pragma once

#include "foundation/files/file_spec.h"

namespace kivhost {

// False for a file that is not there or cannot be opened.
bool IsEmptyFile(const kivstore::SFileSpec& spec);

}  // namespace kivhost
