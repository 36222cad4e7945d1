// The head of a game file: the file type's code and the data version (kiv_game_dob.h). Each
// transfer answers whether it succeeded and, when reading, whether what it met is right.
#pragma once

#include "archive/dob_archive.h"

namespace kivstore {

bool CheckGameTag(IDobArchive& archive);
bool CheckGameVersion(IDobArchive& archive);
bool WriteGameVersion(IDobArchive& archive);

}  // namespace kivstore
