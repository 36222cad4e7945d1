#include <algorithm>
#include <cstddef>
#include <cstring>

#include "app/commands.h"
#include "store/place/display_name.h"

namespace kivstore::commands {
namespace {

constexpr ptrdiff_t kBlockEnd = offsetof(SGeneralParams, gapF6);

}  // namespace

void ReturnText(SGeneralParams& params, char* field, int32_t size, const SString& text) {
  const char* const end = reinterpret_cast<const char*>(&params) + kBlockEnd;
  const ptrdiff_t room = std::min<ptrdiff_t>(size, end - field);
  if (room < 1) {
    return;
  }
  const ptrdiff_t length = std::min<ptrdiff_t>(text.GetLength(), room - 1);
  std::memcpy(field, text.GetText(), static_cast<size_t>(length));
  std::memset(field + length, 0, static_cast<size_t>(room - length));
}

void ReturnName(SGeneralParams& params, char* field, int32_t size, const SLoginNameObj& entry) {
  ReturnText(params, field, size, DisplayName(entry));
}

}  // namespace kivstore::commands
