#include "archive/dob_pref_archive.h"

#include <cstdio>
#include <limits>
#include <type_traits>

namespace kivstore {
namespace {

constexpr int kDecimals = 6;

struct NumberName {
  explicit NumberName(uint16_t n) {
    std::snprintf(text, sizeof text, "%lu", static_cast<unsigned long>(n));
  }
  char text[8];
};

SString TextOf(const SString& value) {
  return value;
}
SString TextOf(double value) {
  SString text;
  text.FromDouble(value, kDecimals);
  return text;
}
SString TextOf(bool value) {
  return SString(value ? "1" : "0");
}
SString TextOf(char value) {
  SString text;
  text = value;
  return text;
}
template <class Number>
SString TextOf(Number value) {
  SString text;
  if constexpr (std::is_signed_v<Number>) {
    text.FromLong(value);
  } else {
    text.FromULong(value);
  }
  return text;
}

// Each answers whether the text fits; the value stays as it was if it does not.
bool Parse(const SString& text, SString& value) {
  value = text;
  return true;
}
bool Parse(const SString& text, double& value) {
  double parsed = 0;
  const bool fits = text.ToDouble(parsed);
  value = fits ? parsed : value;
  return fits;
}
bool Parse(const SString& text, bool& value) {
  value = text.IsEmpty() ? value : text == "1";
  return !text.IsEmpty();
}
bool Parse(const SString& text, char& value) {
  value = text.IsEmpty() ? value : text.GetAt(0);
  return !text.IsEmpty();
}
// A value that is no number counts as success, with what digits it has.
bool Parse(const SString& text, int32_t& value) {
  if (!text.IsEmpty()) {
    text.ToLong(value);
  }
  return !text.IsEmpty();
}
template <class Number>
bool Parse(const SString& text, Number& value) {
  using Limits = std::numeric_limits<Number>;
  std::conditional_t<Limits::is_signed, int32_t, uint32_t> parsed = 0;
  bool fits = false;
  if constexpr (Limits::is_signed) {
    fits = text.ToLong(parsed) && parsed >= Limits::min() && parsed <= Limits::max();
  } else {
    fits = text.ToULong(parsed) && parsed <= Limits::max();
  }
  value = fits ? static_cast<Number>(parsed) : value;
  return fits;
}

}  // namespace

SDobPrefArchive::SDobPrefArchive(int32_t mode, const SFileSpec& spec)
    : SDobTransfers(SDateTime()), SPrefFile(spec), mode(mode) {
  UseDefaultSection();
  error = !Open(IsReading() ? SPrefFile::kRead : SPrefFile::kWrite);
}

void SDobPrefArchive::Finish() {
  if (error) {
    DropChanges();
  }
  Close();
}

void SDobPrefArchive::UseDefaultSection() {
  std::strcpy(section.text, "_Default");
}

void SDobPrefArchive::PushSectionNumber(uint16_t n) {
  PushSection(NumberName(n).text);
}

void SDobPrefArchive::PushSection(const char* name) {
  if (section.IsFull() || !section.Push(name)) {
    error = true;
  }
}

void SDobPrefArchive::PopSection() {
  if (!section.Pop()) {
    error = true;
  } else if (section.text[0] == '\0') {
    UseDefaultSection();
  }
}

void SDobPrefArchive::PushKeyNumber(uint16_t n) {
  PushKey(NumberName(n).text);
}

void SDobPrefArchive::PushKey(const char* name) {
  if (!key.IsFull() && !key.Push(name)) {
    error = true;
  }
}

void SDobPrefArchive::PopKey() {
  if (!key.Pop()) {
    error = true;
  }
}

// The frame of every scalar.
template <class T>
bool SDobPrefArchive::TransferField(const char* name, T& value) {
  PushKey(name);
  const bool transferred = TransferHere(value);
  PopKey();
  if (!transferred) {
    error = true;
  }
  return transferred;
}

template <class T>
bool SDobPrefArchive::TransferHere(T& value) {
  if (IsWriting()) {
    return SetValue(GetSection(), GetKey(), TextOf(value));
  }
  if (IsDeleting()) {
    DeleteKey(GetSection(), GetKey());
    return true;
  }
  SString text;
  const bool found = GetValue(GetSection(), GetKey(), text);
  keysFound += found ? 1 : 0;
  return found && Parse(text, value);
}

bool SDobPrefArchive::TransferParts(const char* name, std::initializer_list<Part> parts) {
  PushKey(name);
  for (const Part& part : parts) {
    TransferField(part.name, part.value);
  }
  PopKey();
  return !error;
}

template <>
bool SDobPrefArchive::TransferField(const char* name, SPoint& value) {
  return TransferParts(name, {{"x", value.x}, {"y", value.y}});
}

template <>
bool SDobPrefArchive::TransferField(const char* name, SSize& value) {
  return TransferParts(name, {{"cx", value.cx}, {"cy", value.cy}});
}

template <>
bool SDobPrefArchive::TransferField(const char* name, SRect& value) {
  return TransferParts(
      name,
      {{"left", value.left}, {"top", value.top}, {"right", value.right}, {"bottom", value.bottom}});
}

template <>
bool SDobPrefArchive::TransferField(const char* name, SDateTime& value) {
  uint32_t high = value.IsFresh() ? SDateTime::kFresh : 0;  // dropped on reading
  uint32_t low = value.Raw();
  PushKey(name);
  TransferField("high", high);
  TransferField("low", low);
  PopKey();
  if (IsReading()) {
    value.SetRaw(low);
  }
  return !error;
}

template class SDobTransfers<SDobPrefArchive>;

}  // namespace kivstore
