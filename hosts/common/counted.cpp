#include "hosts/common/counted.h"

namespace kivhost {

std::string Grouped(size_t count) {
  std::string digits = std::to_string(count);
  for (size_t at = digits.size(); at > 3;) {
    at -= 3;
    digits.insert(at, ",");
  }
  return digits;
}

std::string Counted(size_t count, const std::string& one, const std::string& many) {
  return Grouped(count) + ' ' + (count == 1 ? one : many.empty() ? one + 's' : many);
}

}  // namespace kivhost
