#include "platform/posix/wildcard.h"

#include "platform/base/bytes.h"

namespace kivstore {
namespace {

bool MatchesOne(char c, char maskCharacter) {
  return maskCharacter == '?' || FoldLower(static_cast<unsigned char>(c)) ==
                                     FoldLower(static_cast<unsigned char>(maskCharacter));
}

}  // namespace

// Only the last "*" is ever taken back, which keeps the time within name times mask.
bool MatchesWildcard(std::string_view name, std::string_view mask) {
  size_t n = 0;
  size_t m = 0;
  size_t afterStar = std::string_view::npos;
  size_t starTakes = 0;
  while (n < name.size()) {
    if (m < mask.size() && mask[m] == '*') {
      afterStar = ++m;
      starTakes = n;
    } else if (m < mask.size() && MatchesOne(name[n], mask[m])) {
      ++n;
      ++m;
    } else if (afterStar != std::string_view::npos) {
      n = ++starTakes;
      m = afterStar;
    } else {
      return false;
    }
  }
  return mask.find_first_not_of('*', m) == std::string_view::npos;
}

}  // namespace kivstore
