#include "store/list/index_object.h"

#include <utility>

namespace kivstore {
namespace {

template <class List>
void MoveTo(std::optional<List>& half, List& list) {
  if (half) {
    list = std::move(*half);
  }
}

}  // namespace

void SIndexObj::MoveLoginsTo(SLoginList& list) {
  MoveTo(logins, list);
}

void SIndexObj::MoveFilesTo(SFileList& list) {
  MoveTo(files, list);
}

int32_t SIndexObj::CountFilesOf(const SString& extension) const {
  int32_t count = 0;
  if (files) {
    for (const SOurFileObj& file : *files) {
      count += HasExtension(file, extension) ? 1 : 0;
    }
  }
  return count;
}

void SIndexObj::MoveFilesOf(SFileList& list, const SString& extension) {
  if (!files) {
    return;
  }
  if (!extension.IsEmpty()) {
    files->RemoveIf([&](const SOurFileObj& file) { return !HasExtension(file, extension); });
  }
  list.Append(std::move(*files));
}

void SIndexObj::RemoveFilesOf(const SString& extension) {
  if (files && !extension.IsEmpty()) {
    files->RemoveIf([&](const SOurFileObj& file) { return HasExtension(file, extension); });
  }
}

}  // namespace kivstore
