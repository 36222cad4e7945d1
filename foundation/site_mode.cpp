#include "foundation/site_mode.h"

#include <new>

#include "foundation/application.h"

namespace kivstore {
namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Up to two digits as nibbles; moves behind them.
constexpr uint32_t TakePair(const char*& at) {
  uint32_t pair = 0;
  for (int taken = 0; taken < 2 && IsDigit(*at); ++taken, ++at) {
    pair = pair << 4 | static_cast<uint32_t>(*at - '0');
  }
  return pair;
}

constexpr uint32_t Pack(const char* at) {
  while (IsWhiteSpace(*at)) {
    ++at;
  }
  if (!IsDigit(*at)) {
    return 0;
  }
  const uint32_t major = TakePair(at);
  const uint32_t minor = *at == '.' ? TakePair(++at) : 0;
  return major << 24 | minor << 16;
}

int PlainNumber(uint32_t pair) {
  return static_cast<int>((pair >> 4 & 0xF) * 10 + (pair & 0xF));
}

}  // namespace

int32_t gSiteMode = 0;
uint8_t gTeacherTier = 0;
SLoginNameObj* gCurrentTeacher = nullptr;
SString gDataPathOverride;
bool gStoreFailed = false;
constinit uint32_t gFileVersion = Pack("0.01");
SZEPApp* gApp = nullptr;

uint32_t PackVersion(const char* text) {
  return text != nullptr ? Pack(text) : 0;
}

int VersionMajor(uint32_t version) {
  return PlainNumber(version >> 24);
}

int VersionMinor(uint32_t version) {
  return PlainNumber(version >> 16 & 0xFF);
}

void SelectTeacher(const SLoginNameObj* entry) {
  if (entry == nullptr) {
    delete gCurrentTeacher;
    gCurrentTeacher = nullptr;
    return;
  }
  if (gCurrentTeacher == nullptr) {
    gCurrentTeacher = new (std::nothrow) SLoginNameObj;
  }
  if (gCurrentTeacher != nullptr) {
    *gCurrentTeacher = *entry;
  }
}

}  // namespace kivstore
