#include "archive/pref_file_chain.h"

#include <new>

namespace kivstore {
namespace {

SPrefFile& LinkOf(const SPtrList::Node& node) {
  return *static_cast<SPrefFile*>(node.data);
}

}  // namespace

SPrefFileChain::~SPrefFileChain() {
  while (!links.IsEmpty()) {
    delete static_cast<SPrefFile*>(links.RemoveHead());
  }
}

void SPrefFileChain::SetFile(const SFileSpec& newSpec) {
  if (IsOpen()) {
    return;
  }
  if (!spec.IsValid()) {
    SPrefFile::SetFile(newSpec);
    return;
  }
  if (!newSpec.IsValid()) {
    return;
  }
  auto* const link = new (std::nothrow) SPrefFile(newSpec);
  if (link != nullptr && links.AddHead(link) == nullptr) {
    delete link;
  }
}

bool SPrefFileChain::Open(int32_t newAccessMode) {
  if (IsOpen()) {
    return false;
  }
  int32_t mode = newAccessMode;
  bool opened = true;
  for (auto* node = links.GetHead(); opened && node != nullptr; node = node->next) {
    opened = LinkOf(*node).Open(mode);
    mode = mode == kWrite ? kRead : mode;
  }
  opened = opened && SPrefFile::Open(mode);
  if (!opened) {
    CloseLinks();
  }
  return opened;
}

void SPrefFileChain::Close() {
  if (IsOpen()) {
    CloseLinks();
    SPrefFile::Close();
  }
}

void SPrefFileChain::CloseLinks() {
  for (auto* node = links.GetHead(); node != nullptr; node = node->next) {
    LinkOf(*node).Close();
  }
}

template <class Operation>
bool SPrefFileChain::FirstOf(Operation operation) {
  for (auto* node = links.GetHead(); node != nullptr; node = node->next) {
    if (operation(LinkOf(*node))) {
      return true;
    }
  }
  return operation(*this);
}

// A link is a plain file, so the qualified calls below are its own, and the chain's own file is
// reached by them without the links.

bool SPrefFileChain::GetValue(const char* section, const char* key, SString& value) {
  const bool wasOpen = IsOpen();
  if (!wasOpen && !Open(kRead)) {
    return false;
  }
  const bool found =
      FirstOf([&](SPrefFile& file) { return file.SPrefFile::GetValue(section, key, value); });
  if (!wasOpen) {
    Close();
  }
  return found;
}

bool SPrefFileChain::SetValue(const char* section, const char* key, const SString& value) {
  return FirstOf([&](SPrefFile& file) { return file.SPrefFile::SetValue(section, key, value); });
}

bool SPrefFileChain::DeleteSection(const char* section) {
  return DeleteSectionInChain(section);
}

bool SPrefFileChain::DeleteKey(const char* section, const char* key) {
  return DeleteKeyInChain(section, key);
}

bool SPrefFileChain::DeleteSectionInChain(const char* section) {
  return FirstOf([&](SPrefFile& file) { return file.SPrefFile::DeleteSection(section); });
}

bool SPrefFileChain::DeleteKeyInChain(const char* section, const char* key) {
  return FirstOf([&](SPrefFile& file) { return file.SPrefFile::DeleteKey(section, key); });
}

}  // namespace kivstore
