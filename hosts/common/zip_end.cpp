#include "hosts/common/zip_end.h"

#include <string>

namespace kivhost {
namespace {

void AppendNumber(std::string& bytes, uint64_t value, int width) {
  for (int i = 0; i < width; ++i) {
    bytes += static_cast<char>(value >> (8 * i));
  }
}

}  // namespace

bool FitsPlainEnd(uint64_t count) {
  return count <= 0xFFFF;
}

void WriteLargeEnd(ZipStream& stream, uint64_t count) {
  constexpr int kEnd = 22;
  const int64_t place = stream.Size() - kEnd;
  const std::string end = stream.ReadAt(place, kEnd);
  const auto number = [&](size_t at) {
    uint64_t value = 0;
    for (size_t i = 4; i > 0; --i) {
      value = value << 8 | static_cast<unsigned char>(end[at + i - 1]);
    }
    return value;
  };
  constexpr uint64_t kElsewhere = 0xFFFFFFFF;
  if (end.size() < kEnd || number(16) == kElsewhere) {
    return;
  }
  std::string large = "PK\6\6";
  AppendNumber(large, 44, 8);  // what follows
  AppendNumber(large, 45, 2);  // the version of the format that made it, and that reads it
  AppendNumber(large, 45, 2);
  AppendNumber(large, 0, 8);  // of the disks
  AppendNumber(large, count, 8);
  AppendNumber(large, count, 8);
  AppendNumber(large, number(12), 8);  // the size of the list, and its place
  AppendNumber(large, number(16), 8);
  large += "PK\6\7";
  AppendNumber(large, 0, 4);
  AppendNumber(large, static_cast<uint64_t>(place), 8);
  AppendNumber(large, 1, 4);
  stream.WriteAt(place, large + end);
}

}  // namespace kivhost
