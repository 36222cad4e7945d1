// Where the headers and keys of a preference text stand, so that finding one does not read the
// text. Made from a text once and kept true through the edits in it.
//
// Only a shortcut: it finds what SPrefScanner finds. It knows names up to their first "]" or "=",
// so it cannot be asked for a name that holds one of these, and whoever stores such a name drops
// it. Without memory for it there is no index.
#pragma once

#include <cstdint>
#include <string_view>

#include "archive/gap_text.h"
#include "foundation/containers/array_storage.h"

namespace kivstore {

class SPrefIndex {
 public:
  static constexpr int32_t kNone = -1;

  explicit SPrefIndex(const SGapText& text) : text(text) {}  // the text must outlive it
  ~SPrefIndex() { Drop(); }
  SPrefIndex(const SPrefIndex&) = delete;
  SPrefIndex& operator=(const SPrefIndex&) = delete;

  static bool Knows(std::string_view section, std::string_view key);

  // The text must lie in one piece. False without memory.
  bool Build();
  void Drop();
  bool IsBuilt() const { return isBuilt; }

  // A header counts as a line, and a section is named by its header's. The first that matches, or
  // kNone.
  int32_t FindSection(std::string_view name) const { return Find(kNone, name); }
  int32_t FindKey(int32_t section, std::string_view name) const { return Find(section, name); }
  int32_t PlaceOf(int32_t line) const;          // of its "[" or key
  int32_t EndOfSection(int32_t section) const;  // the next header's place, or the text's end

  // To be told before the gap moves.
  void FollowGap(int32_t position);
  // A line at a place in front of the gap and behind all others there, which no line of that name
  // in that section is before; a new header is the last of all. The section is kNone for a header.
  void Add(int32_t section, int32_t place, std::string_view name);
  // The last line in front of the gap.
  void Remove(int32_t line);

 private:
  // Lines are chained three ways: all that share a place in the table, in the order of the text;
  // each with its neighbours; each header with the next.
  struct Line {
    int32_t place;    // in front of the gap; behind it counted from the text's end, below 0
    int32_t section;  // kNone for a header
    uint32_t hash;
    int32_t nextAlike;
    int32_t before;
    int32_t behind;
    int32_t nextHeader;
  };

  int32_t Find(int32_t section, std::string_view name) const;
  bool Matches(const Line& line, std::string_view name) const;
  bool ReadLine(int32_t place, std::string_view content, int32_t& section);
  int32_t Append(int32_t section, int32_t place, std::string_view name);
  bool NeedRoom();
  bool Spread();
  void Link(int32_t line);
  int32_t& HeadOf(uint32_t hash) const { return heads.Data()[hash & (headCount - 1)]; }
  Line& At(int32_t line) const { return lines.Data()[line]; }

  const SGapText& text;
  SBlockStorage<Line> lines;
  SBlockStorage<int32_t> heads;  // by hash: a power of two of them
  int32_t lineCount = 0;
  int32_t lineRoom = 0;
  uint32_t headCount = 0;
  int32_t freeLine = kNone;  // lines that were removed, by nextAlike
  int32_t firstLine = kNone;
  int32_t lastBeforeGap = kNone;
  int32_t lastHeader = kNone;
  bool isBuilt = false;
};

}  // namespace kivstore
