// One teacher, class or student of the roster.
#pragma once

#include <new>

#include "foundation/text/string.h"
#include "platform/base/small_blocks.h"

namespace kivstore {

struct SLoginNameObj {
  SLoginNameObj() = default;
  SLoginNameObj(const SString& first, const SString& last, const SString& folder)
      : firstName(first), lastName(last), folderName(folder) {}
  virtual ~SLoginNameObj() = default;
  SLoginNameObj(const SLoginNameObj&) = default;
  SLoginNameObj& operator=(const SLoginNameObj&) = default;

  // A list makes and frees one for every entry. Null when there is no memory.
  static void* operator new(size_t size) noexcept { return AllocateSmall(size); }
  static void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return AllocateSmall(size);
  }
  static void operator delete(void* object, size_t size) noexcept { FreeSmall(object, size); }

  SString firstName;   // the whole name of a teacher or class
  SString lastName;    // empty for teachers and classes, and it may be for a student
  SString folderName;  // its folder in the list's folder
};

}  // namespace kivstore
