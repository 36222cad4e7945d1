#include "kivstore/general_proc.h"

#include <cstddef>

#include "app/commands.h"
#include "app/general_call.h"
#include "platform/caller_lock.h"

// Hosts in other languages lay the block out by these numbers.
static_assert(offsetof(SGeneralParams, command) == 0x00);
static_assert(offsetof(SGeneralParams, mode) == 0x04);
static_assert(offsetof(SGeneralParams, result) == 0x05);
static_assert(offsetof(SGeneralParams, dataPath) == 0x08);
static_assert(offsetof(SGeneralParams, topCount) == 0x10);
static_assert(offsetof(SGeneralParams, teacherListIndex) == 0x14);
static_assert(offsetof(SGeneralParams, teacherName) == 0x18);
static_assert(sizeof(SGeneralParams::teacherName) == 52);
static_assert(offsetof(SGeneralParams, teacherNameSize) == 0x4C);
static_assert(offsetof(SGeneralParams, teacherIndex) == 0x50);
static_assert(offsetof(SGeneralParams, classCount) == 0x54);
static_assert(offsetof(SGeneralParams, classListIndex) == 0x58);
static_assert(offsetof(SGeneralParams, classIndex) == 0x5C);
static_assert(offsetof(SGeneralParams, className) == 0x60);
static_assert(sizeof(SGeneralParams::className) == 52);
static_assert(offsetof(SGeneralParams, classNameSize) == 0x94);
static_assert(offsetof(SGeneralParams, studentCount) == 0x98);
static_assert(offsetof(SGeneralParams, studentListIndex) == 0x9C);
static_assert(offsetof(SGeneralParams, studentIndex) == 0xA0);
static_assert(offsetof(SGeneralParams, currentMission) == 0xA4);
static_assert(offsetof(SGeneralParams, previousMission) == 0xA8);
static_assert(offsetof(SGeneralParams, vocabLevel) == 0xAC);
static_assert(offsetof(SGeneralParams, studentName) == 0xB0);
static_assert(sizeof(SGeneralParams::studentName) == 52);
static_assert(offsetof(SGeneralParams, studentNameSize) == 0xE4);
static_assert(offsetof(SGeneralParams, productGeneration) == 0xE8);
static_assert(offsetof(SGeneralParams, productId) == 0xEA);
static_assert(sizeof(SGeneralParams::productId) == 10);
static_assert(offsetof(SGeneralParams, productIdSize) == 0xF4);
static_assert(offsetof(SGeneralParams, gapF6) == 0xF6);
static_assert(sizeof(SGeneralParams) == 0xF8);

namespace kivstore {
namespace {

bool Run(SGeneralParams& params) {
  const SCallerLock alone;
  const commands::KnownCommand* const known = commands::FindCommand(params.command);
  SGeneralCall call(params, known != nullptr && known->usesFiles);
  return call.GetApp() != nullptr && known != nullptr && known->command(call, params);
}

}  // namespace
}  // namespace kivstore

// Nothing of the system throws; what its runtime might is kept from the host.
extern "C" void GeneralProc(SGeneralParams* params) {
  if (params == nullptr) {
    return;
  }
  bool succeeded = false;
  try {
    succeeded = kivstore::Run(*params);
  } catch (...) {
    succeeded = false;
  }
  params->result = succeeded ? 1 : 0;
}
