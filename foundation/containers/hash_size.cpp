#include "foundation/containers/hash_size.h"

#include <algorithm>
#include <iterator>

namespace kivstore {
namespace {

constexpr uint32_t kPrimes[] = {
    17,  23,  43,  67,  89,  109, 131, 151, 173, 193, 223, 251, 271, 293, 313,
    337, 359, 379, 401, 421, 443, 463, 487, 509, 541, 563, 587, 607, 631, 653,
    673, 701, 727, 751, 773, 797, 821, 853, 877, 907, 929, 953, 977, 997,
};
static_assert(std::size(kPrimes) == 44);

}  // namespace

uint32_t SuggestHashSize(uint32_t count) {
  const uint64_t wanted = static_cast<uint64_t>(count) + count / 5;
  const uint32_t* const prime = std::upper_bound(std::begin(kPrimes), std::end(kPrimes), wanted);
  return prime != std::end(kPrimes) ? *prime : 997;
}

}  // namespace kivstore
