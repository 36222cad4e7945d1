// The end of a zip file of many entries: it names in two bytes how many there are. For more a
// second form of it stands ahead, with a locator behind that one, which minizip writes only where
// the file is beyond 4 GB.
#pragma once

#include <cstdint>

#include "hosts/common/zip_stream.h"

namespace kivhost {

// Whether so many entries need no second form.
bool FitsPlainEnd(uint64_t count);
// Puts it into a file that is whole but for it.
void WriteLargeEnd(ZipStream& stream, uint64_t count);

}  // namespace kivhost
