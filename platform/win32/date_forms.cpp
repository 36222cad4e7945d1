// Dates as the system reads them in the user's locale.
#include <windows.h>
// clang-format off
#include <oleauto.h>
// clang-format on

#include <memory>
#include <new>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

constexpr LCID kUserLocale = 0x400;
constexpr ULONG kDateOnly = 2;

using WideText = std::unique_ptr<wchar_t[]>;

// By the system's ANSI code page; null when it fails.
WideText Widened(const char* text) {
  const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  if (size <= 0) {
    return nullptr;
  }
  WideText wide(new (std::nothrow) wchar_t[static_cast<size_t>(size)]);
  if (wide != nullptr && MultiByteToWideChar(CP_ACP, 0, text, -1, wide.get(), size) != size) {
    return nullptr;
  }
  return wide;
}

class DateForms final : public IDates {
 public:
  bool Parse(const char* text, bool dateOnly, double& date) override {
    date = 0.0;
    const WideText wide = text != nullptr ? Widened(text) : nullptr;
    if (wide == nullptr) {
      return false;
    }
    const HRESULT result = VarDateFromStr(wide.get(), kUserLocale, dateOnly ? kDateOnly : 0, &date);
    if (FAILED(result)) {
      date = 0.0;
      return false;
    }
    return true;
  }
};

constinit NeverDestroyed<DateForms> gDateForms;

}  // namespace

IDates& WindowsDates() {
  return gDateForms.object;
}

}  // namespace kivstore
