// Facts about the workstation from Win32.
#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

constexpr const char* kProcessorKey = "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
constexpr UINT kGetFontSmoothing = 0x4A;
constexpr UINT kSetFontSmoothing = 0x4B;

class WindowsFacts final : public SProcessorInstructions {
 public:
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  uint32_t Version() override {
    return GetVersion();
  }
#pragma GCC diagnostic pop

  uint64_t PhysicalMemory() override {
    MEMORYSTATUS status{};
    status.dwLength = sizeof status;
    GlobalMemoryStatus(&status);
    return status.dwTotalPhys;
  }

  ProcessorFacts Processor() override {
    SYSTEM_INFO info{};
    GetSystemInfo(&info);
    // 64-bit Intel answers 9; it is Intel all the same.
    const bool intel = info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
    return {
        intel ? static_cast<uint16_t>(ProcessorArchitecture::kIntel) : info.wProcessorArchitecture,
        info.wProcessorLevel, info.dwProcessorType};
  }

  bool StatedMhz(uint32_t& mhz) override {
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kProcessorKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
      return false;
    }
    DWORD type = 0;
    DWORD value = 0;
    DWORD size = sizeof value;
    const LONG status =
        RegQueryValueExA(key, "~Mhz", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof value) {
      return false;
    }
    mhz = value;
    return true;
  }

  bool PerformanceCounter(int64_t& count) override {
    LARGE_INTEGER value;
    if (!QueryPerformanceCounter(&value)) {
      return false;
    }
    count = value.QuadPart;
    return true;
  }

  bool PerformanceFrequency(int64_t& perSecond) override {
    LARGE_INTEGER value;
    if (!QueryPerformanceFrequency(&value)) {
      return false;
    }
    perSecond = value.QuadPart;
    return true;
  }

  int32_t ThreadPriority() override {
    return GetThreadPriority(GetCurrentThread());
  }
  void SetThreadPriority(int32_t priority) override {
    ::SetThreadPriority(GetCurrentThread(), priority);
  }

  uint64_t AffinityMask() override {
    DWORD_PTR process = 0;
    DWORD_PTR system = 0;
    return GetProcessAffinityMask(GetCurrentProcess(), &process, &system) ? process : 0;
  }

  int32_t DeviceCapability(int32_t index) override {
    const HDC context = CreateCompatibleDC(nullptr);
    if (context == nullptr) {
      return 0;
    }
    const int value = GetDeviceCaps(context, index);
    DeleteDC(context);
    return value;
  }

  bool FontSmoothing(bool& on) override {
    BOOL value = FALSE;
    if (!SystemParametersInfoA(kGetFontSmoothing, 0, &value, 0)) {
      return false;
    }
    on = value != FALSE;
    return true;
  }
  bool SetFontSmoothing(bool on) override {
    return SystemParametersInfoA(kSetFontSmoothing, on, nullptr, 0) != FALSE;
  }

  void ShowMessage(const char* text, const char* title) override {
    MessageBoxA(nullptr, text, title, MB_OK);
  }
};

constinit NeverDestroyed<WindowsFacts> gSystemFacts;

}  // namespace

ISystem& WindowsSystem() {
  return gSystemFacts.object;
}

}  // namespace kivstore
