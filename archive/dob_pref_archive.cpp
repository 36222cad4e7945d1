#include "archive/dob_pref_archive.h"

#include <cstdio>
#include <limits>

namespace kivstore {
namespace {

constexpr int kDecimals = 6;

struct NumberName {
  explicit NumberName(uint16_t n) {
    std::snprintf(text, sizeof text, "%lu", static_cast<unsigned long>(n));
  }
  char text[8];
};

}  // namespace

SDobPrefArchive::SDobPrefArchive(int32_t mode, const SFileSpec& spec)
    : SPrefFile(spec), mode(mode) {
  UseDefaultSection();
  error = !Open(IsReading() ? SPrefFile::kRead : SPrefFile::kWrite);
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

template <class Format, class Parse>
bool SDobPrefArchive::TransferText(const char* name, Format format, Parse parse) {
  PushKey(name);
  const bool transferred = TransferHere(format, parse);
  PopKey();
  if (!transferred) {
    error = true;
  }
  return transferred;
}

template <class Format, class Parse>
bool SDobPrefArchive::TransferHere(Format format, Parse parse) {
  SString text;
  if (IsWriting()) {
    format(text);
    return SetValue(GetSection(), GetKey(), text);
  }
  if (IsDeleting()) {
    DeleteKey(GetSection(), GetKey());
    return true;
  }
  return GetValue(GetSection(), GetKey(), text) && parse(text);
}

bool SDobPrefArchive::TransferString(const char* name, SString& value) {
  return TransferText(
      name, [&](SString& text) { text = value; },
      [&](const SString& text) {
        value = text;
        return true;
      });
}

bool SDobPrefArchive::TransferDouble(const char* name, double& value) {
  return TransferText(
      name, [&](SString& text) { text.FromDouble(value, kDecimals); },
      [&](const SString& text) {
        double parsed = 0;
        const bool fits = text.ToDouble(parsed);
        value = fits ? parsed : value;
        return fits;
      });
}

template <class Number>
bool SDobPrefArchive::TransferUnsigned(const char* name, Number& value) {
  return TransferText(
      name, [&](SString& text) { text.FromULong(value); },
      [&](const SString& text) {
        uint32_t parsed = 0;
        const bool fits = text.ToULong(parsed) && parsed <= std::numeric_limits<Number>::max();
        value = fits ? static_cast<Number>(parsed) : value;
        return fits;
      });
}

bool SDobPrefArchive::TransferULong(const char* name, uint32_t& value) {
  return TransferUnsigned(name, value);
}

// A value that is no number counts as success, with what digits it has.
bool SDobPrefArchive::TransferLong(const char* name, int32_t& value) {
  return TransferText(
      name, [&](SString& text) { text.FromLong(value); },
      [&](const SString& text) {
        if (!text.IsEmpty()) {
          text.ToLong(value);
        }
        return !text.IsEmpty();
      });
}

bool SDobPrefArchive::TransferUShort(const char* name, uint16_t& value) {
  return TransferUnsigned(name, value);
}

bool SDobPrefArchive::TransferShort(const char* name, int16_t& value) {
  return TransferText(
      name, [&](SString& text) { text.FromLong(value); },
      [&](const SString& text) {
        int32_t parsed = 0;
        const bool fits = text.ToLong(parsed) && parsed >= INT16_MIN && parsed <= INT16_MAX;
        value = fits ? static_cast<int16_t>(parsed) : value;
        return fits;
      });
}

bool SDobPrefArchive::TransferUChar(const char* name, uint8_t& value) {
  return TransferUnsigned(name, value);
}

bool SDobPrefArchive::TransferChar(const char* name, char& value) {
  return TransferText(
      name, [&](SString& text) { text = value; },
      [&](const SString& text) {
        value = text.IsEmpty() ? value : text.GetAt(0);
        return !text.IsEmpty();
      });
}

bool SDobPrefArchive::TransferBool(const char* name, bool& value) {
  return TransferText(
      name, [&](SString& text) { text = value ? '1' : '0'; },
      [&](const SString& text) {
        value = text.IsEmpty() ? value : text == "1";
        return !text.IsEmpty();
      });
}

bool SDobPrefArchive::TransferPoint(const char* name, SPoint& value) {
  PushKey(name);
  TransferLong("x", value.x);
  TransferLong("y", value.y);
  PopKey();
  return !error;
}

bool SDobPrefArchive::TransferSize(const char* name, SSize& value) {
  PushKey(name);
  TransferLong("cx", value.cx);
  TransferLong("cy", value.cy);
  PopKey();
  return !error;
}

bool SDobPrefArchive::TransferRect(const char* name, SRect& value) {
  PushKey(name);
  TransferLong("left", value.left);
  TransferLong("top", value.top);
  TransferLong("right", value.right);
  TransferLong("bottom", value.bottom);
  PopKey();
  return !error;
}

bool SDobPrefArchive::TransferDateTime(const char* name, SDateTime& value) {
  uint32_t high = value.IsFresh() ? SDateTime::kFresh : 0;  // dropped on reading
  uint32_t low = value.Raw();
  PushKey(name);
  TransferULong("high", high);
  TransferULong("low", low);
  PopKey();
  if (IsReading()) {
    value.SetRaw(low);
  }
  return !error;
}

// Reading into a stamp that holds the fresh mark leaves it: what the file says was overtaken here.
bool SDobPrefArchive::TransferTimeStamp(const char* name, SDateTime& stamp) {
  if (name != nullptr) {
    PushKey(name);
  }
  const bool transferred = TransferDateTime("ts", stamp.IsFresh() ? now : stamp);
  if (name != nullptr) {
    PopKey();
  }
  return transferred;
}

}  // namespace kivstore
