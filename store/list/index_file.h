// "index.kiv": the index of a list folder or of a folder of files.
//
//   4   login count N, signed, big-endian
//   N times: folderName, firstName, lastName, each its bytes and one NUL
//   4   file count M, signed, big-endian
//   M times: fileName, longName, extension, each its bytes and one NUL
//
// No header, no version. A teacher list, a class list and a student list have the same form; in a
// student's own folder N is 0. An empty index is eight zero bytes, and a file of length 0 reads as
// an empty login half. Example: one class "Room" in the folder "Rm", no files:
//
//   00 00 00 01 'R' 'm' 00 'R' 'o' 'o' 'm' 00 00 00 00 00 00
//
// A reader takes the records in the order they stand. When the file ends early the rest of the
// records counted is made with empty texts. A count below 0 is 0, and one above what the file's
// remaining bytes could hold (3 a record) is cut to that and the one record being torn. Of each
// half at most 32,767 entries are kept.
//
// While a file is written zeros stand behind it. Bytes left over, a count that the bytes do not
// back, an end within a record and a login without a folder tell that a writer has died on the way.
//
// Nothing here locks. Reading, changing and writing an index is safe only under its list's lock.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "store/list/index_object.h"

namespace kivstore {

// `spec` stands on the index.kiv; every way out leaves it on the folder. False if there is no file
// or it cannot be opened. A spec that only assumes its file (DownAssumed) does as well.
bool ReadIndex(SFileSpec& spec, SIndexObj& index);
// Both halves of the folder's index; they are empty where it has none.
void ReadWholeIndex(SFileSpec folder, SIndexObj& index);

// `spec` stands on the folder. A half that `index` lacks is taken from the disk first. False only
// for an error during writing: a file that cannot be opened stays as it was.
bool WriteIndex(const SFileSpec& spec, SIndexObj& index);

// The first count of the folder's index, 0 without one.
int32_t ReadIndexCount(const SFileSpec& spec);

}  // namespace kivstore
