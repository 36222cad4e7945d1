#include "archive/pref_text.h"

#include <algorithm>

#include "archive/pref_scanner.h"

namespace kivstore {

bool SPrefText::CanHold(const char* section, const char* key, std::string_view value) {
  return IsSectionName(section) && IsKeyName(key) && IsValue(value);
}

bool SPrefText::Hold(MemoryHandle block, int32_t length, int32_t capacity) {
  return bytes.Hold(block, length, capacity);
}

void SPrefText::LetGo() {
  index.Drop();
  hasNoIndex = false;
  bytes.LetGo();
}

char* SPrefText::Whole() {
  MoveGap(bytes.GetLength());
  return bytes.Whole();
}

void SPrefText::MoveGap(int32_t position) {
  index.FollowGap(position);
  bytes.MoveGap(position);
}

SPrefText::Found SPrefText::Find(const char* section, const char* key) {
  if (!IsSectionName(section) || !IsKeyName(key)) {
    return {};
  }
  return SPrefIndex::Knows(section, key) && NeedIndex() ? FindInIndex(section, key)
                                                        : Scan(section, key);
}

bool SPrefText::NeedIndex() {
  if (!index.IsBuilt() && !hasNoIndex) {
    Whole();
    hasNoIndex = !index.Build();
  }
  return !hasNoIndex;
}

SPrefText::Found SPrefText::FindInIndex(std::string_view section, std::string_view key) const {
  Found found;
  found.section = index.FindSection(section);
  found.hasSection = found.section != SPrefIndex::kNone;
  if (!found.hasSection) {
    return found;
  }
  found.line = index.FindKey(found.section, key);
  found.hasKey = found.line != SPrefIndex::kNone;
  if (found.hasKey) {
    found.value = index.PlaceOf(found.line) + static_cast<int32_t>(key.size()) + 1;
  } else {
    found.endOfSection = index.EndOfSection(found.section);
  }
  return found;
}

SPrefText::Found SPrefText::Scan(const char* section, const char* key) {
  char* const start = Whole();
  SPrefScanner scanner{start, start + bytes.GetLength()};
  Found found;
  found.hasSection = scanner.FindSection(section) != nullptr;
  found.hasKey = found.hasSection && scanner.FindKey(key);
  found.value = found.endOfSection = static_cast<int32_t>(scanner.cursor - start);
  return found;
}

int32_t SPrefText::LengthOfLine(int32_t place) const {
  const std::string_view rest = bytes.From(place);
  return static_cast<int32_t>(std::find_if(rest.begin(), rest.end(), IsLineBreak) - rest.begin());
}

bool SPrefText::GetValue(const char* section, const char* key, SString& value) {
  const Found found = Find(section, key);
  if (found.hasKey) {
    const int32_t length = std::min(LengthOfLine(found.value), int32_t{SString::kMaxLength});
    value.Assign(length, bytes.From(found.value).data());
  }
  return found.hasKey;
}

bool SPrefText::SetValue(const char* section, const char* key, std::string_view value) {
  Found found = Find(section, key);
  if (!ReserveFor(found, section, key, value)) {
    return false;
  }
  if (!found.hasSection) {
    AddSection(found, section);
  }
  if (!found.hasKey) {
    AddKey(found, key);
  }
  Replace(found.value, value);
  if (!SPrefIndex::Knows(section, key)) {
    index.Drop();
  }
  return true;
}

// Section, key and value each ask for their room behind what is to come in front of them: the rule
// of growth answers each on its own.
bool SPrefText::ReserveFor(const Found& found, std::string_view section, std::string_view key,
                           std::string_view value) {
  int64_t coming = 0;
  if (!found.hasSection) {
    if (!Reserve(std::ssize(section) + 6)) {
      return false;
    }
    coming = std::ssize(section) + (NeedsBreakAtEnd() ? 6 : 4);
  }
  if (!found.hasKey) {
    coming += std::ssize(key) + 3;
    if (!Reserve(coming)) {
      return false;
    }
  }
  const int32_t old = found.hasKey ? LengthOfLine(found.value) : 0;
  return Reserve(coming + std::max<int64_t>(std::ssize(value) - old, 0));
}

// Nor does a text grow beyond what opens again.
bool SPrefText::Reserve(int64_t n) {
  return (n == 0 || bytes.GetLength() + n <= kLongest) && bytes.Reserve(n);
}

bool SPrefText::NeedsBreakAtEnd() const {
  const int32_t length = bytes.GetLength();
  return length > 0 && static_cast<signed char>(bytes.At(length - 1)) > 0x1F;
}

// To the end of the text. Behind a last line that ends in a sign which gets no line break the
// header is part of that line, and only the scanner can tell.
void SPrefText::AddSection(Found& found, std::string_view name) {
  const int32_t length = bytes.GetLength();
  const bool needsBreak = NeedsBreakAtEnd();
  const bool isHeader = needsBreak || length == 0 || IsLineBreak(bytes.At(length - 1));
  MoveGap(length);
  bytes.Insert(needsBreak ? "\r\n" : "");
  const int32_t place = bytes.GetGap();
  bytes.Insert("[");
  bytes.Insert(name);
  bytes.Insert("]\r\n");
  found.endOfSection = bytes.GetLength();
  if (!isHeader) {
    index.Drop();
  }
  if (index.IsBuilt()) {
    index.Add(SPrefIndex::kNone, place, name);
    found.section = index.IsBuilt() ? index.FindSection(name) : SPrefIndex::kNone;
  }
}

// Directly behind the last line of the section, ahead of the blank lines in front of the next
// header.
void SPrefText::AddKey(Found& found, std::string_view name) {
  MoveGap(EndOfLastLine(found.endOfSection));
  bytes.Insert("\r\n");
  const int32_t place = bytes.GetGap();
  bytes.Insert(name);
  bytes.Insert("=");
  found.value = bytes.GetGap();
  index.Add(found.section, place, name);
}

int32_t SPrefText::EndOfLastLine(int32_t endOfSection) const {
  int32_t end = endOfSection;
  // The blanks of an indented header belong to its line.
  while (end < bytes.GetLength() && end > 0 && IsBlank(bytes.At(end - 1))) {
    --end;
  }
  while (end > 0 && IsLineBreak(bytes.At(end - 1))) {
    --end;
  }
  return end;
}

// What stands from the place to its line's end. There must be room.
void SPrefText::Replace(int32_t place, std::string_view value) {
  const int32_t old = LengthOfLine(place);
  if (std::ssize(value) == old) {
    return bytes.Overwrite(place, value);
  }
  MoveGap(place + old);
  bytes.Cut(old);
  bytes.Insert(value);
}

bool SPrefText::DeleteSection(const char* section) {
  char* const start = Whole();
  SPrefScanner scanner{start, start + bytes.GetLength()};
  const char* const header = scanner.FindSection(section);
  if (header == nullptr) {
    return false;
  }
  index.Drop();
  const char* const end = std::find(scanner.cursor, scanner.end, '[');
  MoveGap(static_cast<int32_t>(end - start));
  bytes.Cut(static_cast<int32_t>(end - header));
  return true;
}

bool SPrefText::DeleteKey(const char* section, const char* key) {
  const Found found = Find(section, key);
  if (!found.hasKey) {
    return false;
  }
  if (!SPrefIndex::Knows(section, key)) {
    index.Drop();
  }
  const int32_t lineEnd = found.value + LengthOfLine(found.value);
  const auto isBreak = [&](int32_t place, char c) {
    return place < bytes.GetLength() && bytes.At(place) == c;
  };
  const int32_t returns = isBreak(lineEnd, '\r') ? 1 : 0;
  const int32_t end = lineEnd + returns + (isBreak(lineEnd + returns, '\n') ? 1 : 0);
  const int32_t place = found.value - static_cast<int32_t>(std::string_view(key).size()) - 1;
  MoveGap(end);
  bytes.Cut(end - place);
  index.Remove(found.line);
  return true;
}

}  // namespace kivstore
