// Facts about the workstation from uname, sysconf, /proc and CPUID. A display, its fonts and a
// thread's priority in the Windows sense are not told here, so those operations answer that they
// cannot tell.
#include <fcntl.h>
#include <sched.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/base/never_destroyed.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

// Ten a microsecond: an interval of some hundred ticks then spans enough processor cycles to
// measure.
constexpr int64_t kTicksPerSecond = 10'000'000;
constexpr int64_t kNanosecondsPerTick = 100;

constexpr int32_t kPriorityUnknown = 0x7FFFFFFF;
constexpr uint32_t kPentiumType = 586;

#if defined(__mips__)
constexpr ProcessorArchitecture kArchitecture = ProcessorArchitecture::kMips;
#elif defined(__alpha__)
constexpr ProcessorArchitecture kArchitecture = ProcessorArchitecture::kAlpha;
#elif defined(__powerpc__)
constexpr ProcessorArchitecture kArchitecture = ProcessorArchitecture::kPowerPc;
#else
constexpr ProcessorArchitecture kArchitecture = ProcessorArchitecture::kIntel;
#endif

// The first "cpu MHz" line of /proc/cpuinfo, which the first kilobytes hold; 0 without one.
double ReadStatedMhz() {
  char text[4096];
  const int file = open("/proc/cpuinfo", O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return 0;
  }
  const ssize_t count = read(file, text, sizeof text - 1);
  close(file);
  text[count > 0 ? count : 0] = '\0';
  const char* line = std::strstr(text, "cpu MHz");
  const char* value = line != nullptr ? std::strchr(line, ':') : nullptr;
  return value != nullptr ? std::strtod(value + 1, nullptr) : 0;
}

class SystemFacts final : public SProcessorInstructions {
 public:
  // The kernel's release, with the top bit clear: it is no relative of the systems that set it.
  uint32_t Version() override {
    utsname names;
    if (uname(&names) != 0) {
      return 0;
    }
    char* behindMajor = nullptr;
    const auto major = static_cast<uint32_t>(std::strtoul(names.release, &behindMajor, 10));
    const auto minor =
        *behindMajor == '.' ? static_cast<uint32_t>(std::strtoul(behindMajor + 1, nullptr, 10)) : 0;
    return (major & 0xFF) | (minor & 0xFF) << 8;
  }

  uint64_t PhysicalMemory() override {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0
               ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize)
               : 0;
  }

  ProcessorFacts Processor() override {
    CpuidResult result;
    const uint32_t family = Cpuid(1, result) ? result.eax >> 8 & 0xF : 0;
    return {static_cast<uint16_t>(kArchitecture), static_cast<uint16_t>(family), kPentiumType};
  }

  bool StatedMhz(uint32_t& mhz) override {
    const double stated = ReadStatedMhz();
    if (!(stated >= 1 && stated < 1e6)) {
      return false;
    }
    mhz = static_cast<uint32_t>(stated + 0.5);
    return true;
  }

  bool PerformanceCounter(int64_t& count) override {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) {
      return false;
    }
    count = int64_t{now.tv_sec} * kTicksPerSecond + now.tv_nsec / kNanosecondsPerTick;
    return true;
  }

  bool PerformanceFrequency(int64_t& perSecond) override {
    perSecond = kTicksPerSecond;
    return true;
  }

  int32_t ThreadPriority() override { return kPriorityUnknown; }
  void SetThreadPriority(int32_t) override {}

  uint64_t AffinityMask() override {
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) != 0) {
      return 0;
    }
    uint64_t mask = 0;
    for (int processor = 0; processor < 64; ++processor) {
      mask |= uint64_t{CPU_ISSET(processor, &set) != 0} << processor;
    }
    return mask;
  }

  int32_t DeviceCapability(int32_t) override { return 0; }
  bool FontSmoothing(bool&) override { return false; }
  bool SetFontSmoothing(bool) override { return false; }

  void ShowMessage(const char* text, const char* title) override {
    std::fprintf(stderr, "%s: %s\n", title, text);
  }
};

constinit NeverDestroyed<SystemFacts> gSystemFacts;

}  // namespace

ISystem& PosixSystem() {
  return gSystemFacts.object;
}

}  // namespace kivstore
