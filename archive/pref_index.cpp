#include "archive/pref_index.h"

#include <algorithm>

#include "archive/pref_scanner.h"
#include "platform/base/bytes.h"

namespace kivstore {
namespace {

constexpr int32_t kLeastRoom = 64;
constexpr int32_t kMostLines = 1 << 21;  // far beyond what a record has; the table stays bounded
constexpr int32_t kRemoved = -2;

uint32_t HashOf(int32_t section, std::string_view name) {
  constexpr uint32_t kPrime = 16777619;
  uint32_t hash = (2166136261 ^ static_cast<uint32_t>(section)) * kPrime;
  for (const char c : name) {
    hash = (hash ^ FoldUpper(static_cast<unsigned char>(c))) * kPrime;
  }
  return hash ^ hash >> 15;
}

}  // namespace

bool SPrefIndex::Knows(std::string_view section, std::string_view key) {
  return section.find(']') == section.npos && key.find('=') == key.npos;
}

bool SPrefIndex::Build() {
  Drop();
  const std::string_view whole = text.From(0);
  SPrefScanner scanner{const_cast<char*>(whole.data()),
                       const_cast<char*>(whole.data()) + whole.size()};
  int32_t section = kNone;
  for (scanner.SkipBlanks(); scanner.cursor < scanner.end; scanner.SkipLine()) {
    char* const start = scanner.cursor;
    scanner.cursor = scanner.LineEnd();
    if (!ReadLine(static_cast<int32_t>(start - whole.data()), {start, scanner.cursor}, section)) {
      Drop();
      return false;
    }
  }
  isBuilt = Spread();
  return isBuilt;
}

void SPrefIndex::Drop() {
  lines.Free();
  heads.Free();
  lineCount = lineRoom = 0;
  headCount = 0;
  freeLine = firstLine = lastBeforeGap = lastHeader = kNone;
  isBuilt = false;
}

// False without memory. What is neither header nor key is nobody's to find, as are keys in front of
// the first header; one without its "]" matches nothing and ends a section all the same.
bool SPrefIndex::ReadLine(int32_t place, std::string_view content, int32_t& section) {
  if (content.starts_with('[')) {
    section = Append(kNone, place, content.substr(1, content.find(']') - 1));
    return section != kNone;
  }
  const size_t equals = content.find('=');
  return section == kNone || equals == content.npos ||
         Append(section, place, content.substr(0, equals)) != kNone;
}

int32_t SPrefIndex::Append(int32_t section, int32_t place, std::string_view name) {
  if (!NeedRoom()) {
    return kNone;
  }
  const int32_t line = freeLine != kNone ? freeLine : lineCount++;
  freeLine = line == freeLine ? At(line).nextAlike : freeLine;
  int32_t& behindLast = lastBeforeGap != kNone ? At(lastBeforeGap).behind : firstLine;
  At(line) = {.place = place,
              .section = section,
              .hash = HashOf(section, name),
              .nextAlike = kNone,
              .before = lastBeforeGap,
              .behind = behindLast,
              .nextHeader = kNone};
  behindLast = line;
  if (At(line).behind != kNone) {
    At(At(line).behind).before = line;
  }
  lastBeforeGap = line;
  if (section == kNone) {
    if (lastHeader != kNone) {
      At(lastHeader).nextHeader = line;
    }
    lastHeader = line;
  }
  return line;
}

bool SPrefIndex::NeedRoom() {
  if (freeLine != kNone || lineCount < lineRoom) {
    return true;
  }
  const int32_t room = std::max(kLeastRoom, 2 * lineRoom);
  if (room > kMostLines || !lines.Reserve(room, lineCount)) {
    return false;
  }
  lineRoom = room;
  return true;
}

// Makes the table anew, a head for every line that there is room for. The last line is linked
// first, so that of those with one name the text's first is found.
bool SPrefIndex::Spread() {
  const int32_t wanted = std::max(kLeastRoom, lineRoom);
  if (!heads.Reserve(wanted, 0)) {
    return false;
  }
  headCount = static_cast<uint32_t>(wanted);
  std::fill_n(heads.Data(), wanted, kNone);
  for (int32_t line = lineCount; line-- > 0;) {
    if (At(line).section != kRemoved) {
      Link(line);
    }
  }
  return true;
}

void SPrefIndex::Link(int32_t line) {
  int32_t& head = HeadOf(At(line).hash);
  At(line).nextAlike = head;
  head = line;
}

int32_t SPrefIndex::Find(int32_t section, std::string_view name) const {
  const uint32_t hash = HashOf(section, name);
  int32_t line = HeadOf(hash);
  while (line != kNone &&
         !(At(line).hash == hash && At(line).section == section && Matches(At(line), name))) {
    line = At(line).nextAlike;
  }
  return line;
}

bool SPrefIndex::Matches(const Line& line, std::string_view name) const {
  const bool isHeader = line.section == kNone;
  std::string_view content = text.From(line.place < 0 ? text.GetLength() + line.place : line.place);
  content.remove_prefix(isHeader ? 1 : 0);
  return content.size() > name.size() && content[name.size()] == (isHeader ? ']' : '=') &&
         EqualBytesNoCase(content.substr(0, name.size()), name);
}

int32_t SPrefIndex::PlaceOf(int32_t line) const {
  const int32_t place = At(line).place;
  return place < 0 ? text.GetLength() + place : place;
}

int32_t SPrefIndex::EndOfSection(int32_t section) const {
  const int32_t next = At(section).nextHeader;
  return next != kNone ? PlaceOf(next) : text.GetLength();
}

void SPrefIndex::FollowGap(int32_t position) {
  if (!isBuilt) {
    return;
  }
  const int32_t length = text.GetLength();
  while (lastBeforeGap != kNone && At(lastBeforeGap).place >= position) {
    At(lastBeforeGap).place -= length;
    lastBeforeGap = At(lastBeforeGap).before;
  }
  int32_t next = lastBeforeGap != kNone ? At(lastBeforeGap).behind : firstLine;
  while (next != kNone && At(next).place + length < position) {
    At(next).place += length;
    lastBeforeGap = next;
    next = At(next).behind;
  }
}

void SPrefIndex::Add(int32_t section, int32_t place, std::string_view name) {
  if (!isBuilt) {
    return;
  }
  const int32_t line = Append(section, place, name);
  if (line == kNone) {
    return Drop();
  }
  if (static_cast<uint32_t>(lineRoom) > headCount) {
    return Spread() ? void() : Drop();
  }
  Link(line);
}

void SPrefIndex::Remove(int32_t line) {
  if (!isBuilt) {
    return;
  }
  Line& gone = At(line);
  int32_t* link = &HeadOf(gone.hash);
  while (*link != line) {
    link = &At(*link).nextAlike;
  }
  *link = gone.nextAlike;
  (gone.before != kNone ? At(gone.before).behind : firstLine) = gone.behind;
  if (gone.behind != kNone) {
    At(gone.behind).before = gone.before;
  }
  lastBeforeGap = gone.before;
  gone.section = kRemoved;
  gone.nextAlike = freeLine;
  freeLine = line;
}

}  // namespace kivstore
