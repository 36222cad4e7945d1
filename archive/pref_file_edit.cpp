// How a preference text is changed in its block.
#include <algorithm>
#include <cstring>

#include "archive/pref_file.h"
#include "archive/pref_scanner.h"

namespace kivstore {
namespace {

constexpr int32_t kStep = 4096;

}  // namespace

SPrefScanner SPrefFile::ScannerAt(char* place) const {
  return {place, end};
}

bool SPrefFile::FindSection(const char* section) {
  SPrefScanner scanner = ScannerAt(text);
  const bool found = scanner.FindSection(section) != nullptr;
  cursor = scanner.cursor;
  return found;
}

bool SPrefFile::FindKey(const char* section, const char* key) {
  if (!FindSection(section)) {
    return false;
  }
  SPrefScanner scanner = ScannerAt(cursor);
  const bool found = scanner.FindKey(key);
  cursor = scanner.cursor;
  return found;
}

// A missing section goes to the end of the text.
bool SPrefFile::NeedSection(const char* section) {
  if (FindSection(section)) {
    return true;
  }
  if (!IsSectionName(section)) {
    return false;
  }
  const size_t nameLength = std::strlen(section);
  if (!Reserve(static_cast<int64_t>(nameLength) + 6)) {
    return false;
  }
  if (length > 0 && static_cast<signed char>(end[-1]) > 0x1F) {
    Append("\r\n", 2);
  }
  Append("[", 1);
  Append(section, nameLength);
  Append("]\r\n", 3);
  cursor = end;
  return true;
}

// A missing key goes directly behind the last line of the section at the cursor, ahead of the blank
// lines in front of the next header.
bool SPrefFile::NeedKey(const char* key) {
  SPrefScanner scanner = ScannerAt(cursor);
  const bool found = scanner.FindKey(key);
  cursor = scanner.cursor;
  if (found) {
    return true;
  }
  const size_t nameLength = std::strlen(key);
  if (!Reserve(static_cast<int64_t>(nameLength) + 3)) {
    return false;
  }
  StepBackOverBreaks();
  OpenGap(static_cast<int32_t>(nameLength) + 3);
  std::memcpy(cursor, "\r\n", 2);
  std::memcpy(cursor + 2, key, nameLength);
  cursor[2 + nameLength] = '=';
  cursor += nameLength + 3;
  return true;
}

void SPrefFile::StepBackOverBreaks() {
  // The blanks of an indented header belong to its line.
  while (cursor < end && cursor > text && (cursor[-1] == ' ' || cursor[-1] == '\t')) {
    --cursor;
  }
  while (cursor > text && IsLineBreak(cursor[-1])) {
    --cursor;
  }
}

void SPrefFile::ReadValue(SString& value) {
  SPrefScanner scanner = ScannerAt(cursor);
  const auto count = std::min<ptrdiff_t>(scanner.LineEnd() - cursor, SString::kMaxLength);
  value.Assign(static_cast<int>(count), cursor);
  scanner.SkipLine();
  cursor = scanner.cursor;
}

bool SPrefFile::WriteValue(const SString& value) {
  const char* const bytes = value.GetText();
  const auto count =
      static_cast<int32_t>(std::find_if(bytes, bytes + value.GetLength(), IsLineBreak) - bytes);
  const auto old = static_cast<int32_t>(ScannerAt(cursor).LineEnd() - cursor);
  if (count > old) {
    if (!Reserve(count - old)) {
      return false;
    }
    OpenGap(count - old);
  }
  std::copy(bytes, bytes + count, cursor);
  cursor += count;
  if (count < old) {
    CutTo(cursor + (old - count));
  }
  return true;
}

// Room for n bytes more. Beyond a shortfall of one step the rule of growth gives no room, and the
// operation that asked fails.
bool SPrefFile::Reserve(int64_t n) {
  const int64_t room = int64_t{capacity} - length - n;
  if (room >= 0) {
    return true;
  }
  const int64_t growth = (room / kStep + 1) * kStep;
  if (growth + room < 0 || capacity + growth > INT32_MAX) {
    return false;
  }
  const ptrdiff_t place = cursor - text;
  const bool grown = ResizeBlock(handle, capacity + growth);
  text = static_cast<char*>(LockBlock(handle));
  cursor = text + place;
  end = text + length;
  if (grown) {
    capacity += static_cast<int32_t>(growth);
  }
  return grown;
}

void SPrefFile::Append(const char* bytes, size_t count) {
  std::memcpy(end, bytes, count);
  length += static_cast<int32_t>(count);
  end += count;
}

void SPrefFile::OpenGap(int32_t n) {
  std::memmove(cursor + n, cursor, static_cast<size_t>(end - cursor));
  length += n;
  end += n;
}

void SPrefFile::CutTo(const char* from) {
  std::memmove(cursor, from, static_cast<size_t>(end - from));
  length -= static_cast<int32_t>(from - cursor);
  end = text + length;
}

void SPrefFile::TakeBack(char* from, int32_t n) {
  cursor = from;
  CutTo(from + n);
}

}  // namespace kivstore
