// Facts about the workstation, gathered once and kept: which system it runs, its memory, its
// processor and speed, its display.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"

namespace kivstore {

struct SSystemInfo {
  static SString processorName;  // "386", "486", "Pentium", "MIPS", "Alpha", "PPC"; "???" not known
  static SString osName;  // "Windows" with a suffix, on every platform; "???" before the probe
  static SString osVersionText;  // digits and a dot: "4.1", "3.51"; "?.?" before the probe
  static uint16_t osVersion;     // major and minor as two BCD bytes: 3.51 is 0x0351
  static bool fontSmoothingKnown;
  static uint32_t processorMhz;
  static uint32_t memoryMegabytes;  // physical memory, rounded up
  static bool atLeastVersion4;
  static bool isNtFamily;

  // Fills the values and answers true. A system below 3.51 is told so in a message box, and the
  // probe goes on.
  static bool Probe();
};

// Planes times bits per pixel; 0 without a display.
int32_t ColorDepth();
// False if the system did not answer the question when it was probed.
bool FontSmoothing();
bool SetFontSmoothing();
// Processors that this process may run on.
int ProcessorCount();

// Takes out of a name what a file name cannot hold.
void SanitizeName(SString& name);

}  // namespace kivstore
