#include "hosts/common/counted.h"

namespace kivhost {

std::string Counted(size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many.empty() ? one + 's' : many);
}

}  // namespace kivhost
