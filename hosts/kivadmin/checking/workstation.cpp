#include "hosts/kivadmin/checking/workstation.h"

#include <cstdio>
#include <string>
#include <utility>

#include "platform/platform.h"
#include "probes/processor.h"
#include "probes/processor_speed.h"
#include "probes/system_info.h"

namespace kivadmin {
namespace {

using Json = nlohmann::ordered_json;
using kivstore::SSystemInfo;

Json Known(bool isKnown, Json value) {
  return isKnown ? std::move(value) : Json();
}

// Of numbers that nothing real has as 0.
Json UnlessZero(int64_t value) {
  return Known(value != 0, value);
}

Json StatedMhz() {
  uint32_t mhz = 0;
  const bool isStated = kivstore::Platform().system->StatedMhz(mhz);
  return Known(isStated && mhz != 0, mhz);
}

std::string HexWord(uint32_t word) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(word));
  return text;
}

// Without CPUID the flags tell of processors older than any that runs this, so the family is none.
FactGroup StatedFacts() {
  const bool hasVersion = SSystemInfo::osVersion != 0;
  const std::string processor = SSystemInfo::processorName.GetText();
  const uint32_t features = kivstore::ProcessorFeatures();
  const int16_t family = kivstore::HasCpuid() ? kivstore::ProcessorFamily() : int16_t{-1};
  return {"stated",
          {
              {"System, as the tutor counts it", "osName",
               Known(hasVersion, SSystemInfo::osName.GetText())},
              {"Version", "osVersion", Known(hasVersion, SSystemInfo::osVersionText.GetText())},
              {"NT family", "isNtFamily", Known(hasVersion, SSystemInfo::isNtFamily)},
              {"Memory", "memoryMegabytes", UnlessZero(SSystemInfo::memoryMegabytes), "MB"},
              {"Processor", "processorName", Known(processor != "???", processor)},
              {"CPUID", "hasCpuid", kivstore::HasCpuid()},
              {"Processor family", "processorFamily", Known(family >= 0, family)},
              {"Processor features", "processorFeatures", Known(features != 0, HexWord(features))},
              {"Processors in use", "processorCount", UnlessZero(kivstore::ProcessorCount())},
              {"Speed", "processorMhz", StatedMhz(), "MHz"},
              {"Colors", "colorDepth", UnlessZero(kivstore::ColorDepth()), "bits"},
              {"Font smoothing", "fontSmoothing",
               Known(SSystemInfo::fontSmoothingKnown, kivstore::FontSmoothing())},
          }};
}

FactGroup MeasuredFacts() {
  const kivstore::SSpeedResult speed = kivstore::MeasureSpeed();
  return {"measured",
          {
              {"Speed", "processorMhz", UnlessZero(speed.roundedMhz), "MHz"},
              {"Speed, as processors are sold", "soldMhz",
               UnlessZero(kivstore::RoundMhz(speed.roundedMhz, false)), "MHz"},
              {"Cycles counted", "cycles", UnlessZero(speed.cycles)},
              {"Time taken", "microseconds", UnlessZero(speed.microseconds), "us"},
          }};
}

}  // namespace

std::vector<FactGroup> ProbeWorkstation() {
  SSystemInfo::Probe();
  return {StatedFacts(), MeasuredFacts()};
}

}  // namespace kivadmin
