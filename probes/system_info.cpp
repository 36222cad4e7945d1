#include "probes/system_info.h"

#include <bit>

#include "platform/platform.h"
#include "probes/processor_speed.h"

namespace kivstore {
namespace {

constexpr int kTextNeedsWindows = 5999;
constexpr uint16_t kVersion351 = 0x0351;
constexpr uint16_t kBelowVersion4 = 0x03FF;
constexpr int32_t kCapabilityBitsPixel = 12;
constexpr int32_t kCapabilityPlanes = 14;

uint16_t ToBcd(uint32_t number) {
  number %= 100;
  return static_cast<uint16_t>(number / 10 << 4 | number % 10);
}

const char* IntelName(uint16_t level) {
  if (level < 3) {
    return "???";
  }
  if (level == 3) {
    return "386";
  }
  return level == 4 ? "486" : "Pentium";
}

const char* NameOnNt(const ProcessorFacts& facts) {
  switch (static_cast<ProcessorArchitecture>(facts.architecture)) {
    case ProcessorArchitecture::kIntel:
      return IntelName(facts.level);
    case ProcessorArchitecture::kMips:
      return "MIPS";
    case ProcessorArchitecture::kAlpha:
      return "Alpha";
    case ProcessorArchitecture::kPowerPc:
      return "PPC";
  }
  return "???";
}

const char* NameByType(uint32_t type) {
  switch (type) {
    case 0x182:
      return "386";
    case 0x1E6:
      return "486";
    case 0x24A:
      return "Pentium";
    default:
      return "???";
  }
}

const char* NtSuffix(uint32_t major, uint32_t minor) {
  if (major < 5) {
    return " NT";
  }
  if (major == 5 && minor == 0) {
    return " 2000";
  }
  return major == 5 && minor == 1 ? " XP" : "";
}

// The minors are compared with the number itself, which on real systems is 10 and 90 for the two
// later releases: those get no suffix, and that is how it stands.
const char* Version4Suffix(uint32_t minor) {
  switch (minor) {
    case 0:
      return " 95";
    case 1:
      return " 98";
    case 9:
      return " Me";
    default:
      return "";
  }
}

SString VersionText(uint16_t version) {
  const auto digit = [version](int shift) {
    return static_cast<char>('0' + (version >> shift & 0xF));
  };
  SString text;
  if (digit(12) != '0') {
    text += digit(12);
  }
  text += digit(8);
  text += '.';
  text += digit(4);
  if (digit(0) != '0') {
    text += digit(0);
  }
  return text;
}

void ProbeVersion(uint32_t version) {
  const uint32_t major = version & 0xFF;
  const uint32_t minor = version >> 8 & 0xFF;
  SSystemInfo::osVersion = static_cast<uint16_t>(ToBcd(major) << 8 | ToBcd(minor));
  SSystemInfo::atLeastVersion4 = SSystemInfo::osVersion > kBelowVersion4;
  SSystemInfo::isNtFamily = (version & 0x80000000) == 0;
  SSystemInfo::osVersionText = VersionText(SSystemInfo::osVersion);
  SSystemInfo::osName = "Windows";
  if (SSystemInfo::isNtFamily) {
    SSystemInfo::osName += NtSuffix(major, minor);
  } else if (major == 4) {
    SSystemInfo::osName += Version4Suffix(minor);
  }
}

void ProbeProcessor(ISystem& system) {
  const ProcessorFacts facts = system.Processor();
  SSystemInfo::processorName = SSystemInfo::isNtFamily ? NameOnNt(facts) : NameByType(facts.type);
  uint32_t mhz = 0;
  if (!system.StatedMhz(mhz) || mhz == 0) {
    mhz = ProcessorSpeed();
  }
  SSystemInfo::processorMhz = RoundMhz(mhz, true);
}

}  // namespace

SString SSystemInfo::processorName = "???";
SString SSystemInfo::osName = "???";
SString SSystemInfo::osVersionText = "?.?";
uint16_t SSystemInfo::osVersion = 0;
bool SSystemInfo::fontSmoothingKnown = false;
uint32_t SSystemInfo::processorMhz = 0;
uint32_t SSystemInfo::memoryMegabytes = 0;
bool SSystemInfo::atLeastVersion4 = false;
bool SSystemInfo::isNtFamily = false;

bool SSystemInfo::Probe() {
  ISystem& system = *Platform().system;
  ProbeVersion(system.Version());
  bool smoothing = false;
  fontSmoothingKnown = atLeastVersion4 && system.FontSmoothing(smoothing);
  memoryMegabytes = static_cast<uint32_t>((system.PhysicalMemory() + 0xFFFFF) >> 20);
  ProbeProcessor(system);
  if (osVersion < kVersion351) {
    system.ShowMessage(SString::FromResource(kTextNeedsWindows).GetText(), "Error!");
  }
  return true;
}

int32_t ColorDepth() {
  ISystem& system = *Platform().system;
  return system.DeviceCapability(kCapabilityPlanes) * system.DeviceCapability(kCapabilityBitsPixel);
}

bool FontSmoothing() {
  bool on = false;
  return SSystemInfo::fontSmoothingKnown && Platform().system->FontSmoothing(on) && on;
}

bool SetFontSmoothing() {
  return Platform().system->SetFontSmoothing(true);
}

int ProcessorCount() {
  return std::popcount(Platform().system->AffinityMask());
}

void SanitizeName(SString& name) {
  static constexpr const char* kPairs[][2] = {{":", ";"},  {"<", "["}, {">", "]"}, {"\"", "'"},
                                              {"\\", "_"}, {"/", "_"}, {"|", "!"}};
  for (const auto& [unwanted, instead] : kPairs) {
    name.Replace(unwanted, instead);
  }
}

}  // namespace kivstore
