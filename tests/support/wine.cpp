#include "tests/support/wine.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace kivtest {

bool RunsUnderWine() {
#ifdef _WIN32
  const HMODULE system = GetModuleHandleA("ntdll.dll");
  return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

}  // namespace kivtest
