// The library's entry. The system's types are spelt out, so that the system's header stays where it
// belongs.
#include "app/library_entry.h"
#include "kivstore/general_proc.h"

#if defined(__i386__) || defined(_M_IX86)
#define KIVSTORE_STDCALL __stdcall
#else
#define KIVSTORE_STDCALL
#endif

namespace {

// Nothing else in the library calls the one function it exists for: this brings it in.
[[gnu::used]] void (*const gExported)(SGeneralParams*) = &GeneralProc;

}  // namespace

extern "C" int KIVSTORE_STDCALL DllMain(void* module, unsigned long reason, void* /*reserved*/) {
  return kivstore::LibraryEntry(module, static_cast<uint32_t>(reason)) ? 1 : 0;
}
