// The library's entry where the system has no entry function of its own: a constructor.
#include "app/library_entry.h"
#include "kivstore/general_proc.h"

// The loaded module's own handle, as the runtime knows it.
extern "C" void* __dso_handle;

namespace {

// Nothing else in the library calls the one function it exists for: this brings it in.
[[gnu::used]] void (*const gExported)(SGeneralParams*) = &GeneralProc;

[[gnu::constructor]] void AttachLibrary() {
  kivstore::LibraryEntry(&__dso_handle, kivstore::kProcessAttach);
}

}  // namespace
