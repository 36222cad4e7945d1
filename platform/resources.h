// The string table. Its texts stand once, in platform/string_table.def, which feeds the
// Windows resource script and the POSIX table alike.
#pragma once

namespace kivstore {

using ModuleHandle = void*;

class IResources {
 public:
  virtual ~IResources() = default;
  // Copies the text of `id`, cut to size - 1 characters, and a NUL; returns its length, 0 for an id
  // that the table lacks.
  virtual int LoadText(ModuleHandle module, int id, char* buffer, int size) = 0;
};

// The module whose string table is read: stored by the library entry.
extern ModuleHandle gModuleHandle;

}  // namespace kivstore
