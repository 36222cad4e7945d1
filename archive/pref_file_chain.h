// Several preference files as one: reads fall through from the newest link to the oldest, with the
// chain's own file last; a change goes to the first that takes it.
//
// Of a chain opened for writing only the first file of that walk is writable. So a value lands
// there, whichever file it was read from.
#pragma once

#include "archive/pref_file.h"
#include "foundation/containers/ptr_list.h"

namespace kivstore {

class SPrefFileChain : public SPrefFile {
 public:
  SPrefFileChain() = default;
  explicit SPrefFileChain(const SFileSpec& spec) : SPrefFile(spec) {}
  SPrefFileChain(MemoryHandle handle, int32_t size, bool owns) : SPrefFile(handle, size, owns) {}
  ~SPrefFileChain() override;

  // The first valid spec is the chain's own; each further one makes a link. Ignored while open.
  void SetFile(const SFileSpec& newSpec) override;
  // All of them or none.
  bool Open(int32_t newAccessMode) override;
  void Close() override;
  // On a closed chain GetValue opens it for the call; the others let each file open itself.
  bool GetValue(const char* section, const char* key, SString& value) override;
  bool SetValue(const char* section, const char* key, const SString& value) override;
  bool DeleteSection(const char* section) override;
  bool DeleteKey(const char* section, const char* key) override;
  // The same, without dispatch.
  bool DeleteSectionInChain(const char* section);
  bool DeleteKeyInChain(const char* section, const char* key);

 private:
  void CloseLinks();
  template <class Operation>
  bool FirstOf(Operation operation);

  SPtrList links{10};  // SPrefFile objects, owned, newest first
};

}  // namespace kivstore
