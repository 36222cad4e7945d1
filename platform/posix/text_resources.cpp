// The string table, compiled in.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "platform/base/never_destroyed.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

struct TableText {
  int id;
  std::string_view text;
};

constexpr TableText kTexts[] = {
#define KIV_TEXT(number, name, text) {number, text},
#include "platform/string_table.def"
#undef KIV_TEXT
};

constexpr bool IsBefore(const TableText& a, const TableText& b) {
  return a.id < b.id;
}
static_assert(std::is_sorted(std::begin(kTexts), std::end(kTexts), IsBefore));

class TextResources final : public IResources {
 public:
  int LoadText(ModuleHandle, int id, char* buffer, int size) override {
    const auto* const found =
        std::lower_bound(std::begin(kTexts), std::end(kTexts), TableText{id, {}}, IsBefore);
    if (found == std::end(kTexts) || found->id != id || size < 1) {
      return 0;
    }
    const size_t length = std::min(found->text.size(), static_cast<size_t>(size - 1));
    std::memcpy(buffer, found->text.data(), length);
    buffer[length] = '\0';
    return static_cast<int>(length);
  }
};

constinit NeverDestroyed<TextResources> gTextResources;

}  // namespace

IResources& PosixResources() {
  return gTextResources.object;
}

}  // namespace kivstore
