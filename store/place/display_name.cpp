#include "store/place/display_name.h"

#include <algorithm>
#include <string_view>

#include "platform/base/bytes.h"
#include "records/teacher_options_dob.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// The bytes of a display name, first-last, as up to three pieces: names are compared far too often
// to make their texts.
class DisplayPieces {
 public:
  explicit DisplayPieces(const SLoginNameObj& entry) {
    if (NeedsText(entry)) {
      text = DisplayName(entry);
      pieces[0] = text.View();
      return;
    }
    pieces[0] = entry.firstName.View();
    if (!entry.lastName.IsEmpty()) {
      pieces[1] = " ";
      pieces[2] = entry.lastName.View();
    }
  }
  DisplayPieces(const DisplayPieces&) = delete;
  DisplayPieces& operator=(const DisplayPieces&) = delete;

  // Empty at the end.
  std::string_view Front() {
    while (at < 2 && pieces[at].empty()) {
      ++at;
    }
    return pieces[at];
  }
  void Advance(size_t count) { pieces[at].remove_prefix(count); }

 private:
  // A first name with a mark of the pattern in it, or a name too long for a text, does not come out
  // as its pieces.
  static bool NeedsText(const SLoginNameObj& entry) {
    return !entry.lastName.IsEmpty() &&
           (entry.firstName.View().find('%') != std::string_view::npos ||
            entry.firstName.GetLength() + entry.lastName.GetLength() >= SString::kMaxLength);
  }

  std::string_view pieces[3];
  size_t at = 0;
  SString text;
};

bool IsEntryOf(const SLoginNameObj* entry, const SString& name) {
  return entry != nullptr && entry->lastName.IsEmpty() &&
         EqualBytesNoCase(entry->firstName.View(), name.View()) &&
         EqualBytesNoCase(entry->folderName.View(), name.View());
}

}  // namespace

SString DisplayName(const SString& first, const SString& last, bool firstFirst) {
  if (last.IsEmpty()) {
    return first;
  }
  SString name;
  name.Substitute(firstFirst ? CachedText<kTextFirstLast>() : CachedText<kTextLastFirst>(), first,
                  last);
  return name;
}

SString SortName(const SSite& site, const SLoginNameObj& entry) {
  const SKivTeacherOptionsDob* const options = site.GetOptionsInForce();
  const bool lastFirst =
      options != nullptr && !options->DisplayFirstLastName.value && options->SeparateLastName.value;
  return DisplayName(entry.firstName, entry.lastName, !lastFirst);
}

int CompareDisplayNames(const SLoginNameObj& a, const SLoginNameObj& b) {
  DisplayPieces piecesA(a), piecesB(b);
  for (;;) {
    const std::string_view frontA = piecesA.Front();
    const std::string_view frontB = piecesB.Front();
    const size_t common = std::min(frontA.size(), frontB.size());
    if (common == 0) {
      return static_cast<int>(!frontA.empty()) - static_cast<int>(!frontB.empty());
    }
    const int order = CompareBytesNoCase(frontA.substr(0, common), frontB.substr(0, common));
    if (order != 0) {
      return order;
    }
    piecesA.Advance(common);
    piecesB.Advance(common);
  }
}

bool SameName(const SLoginNameObj& entry, const SString& first, const SString& last, bool exact) {
  if (exact) {
    return DisplayName(entry) == DisplayName(first, last);
  }
  return CompareDisplayNames(entry, SLoginNameObj(first, last, SString())) == 0;
}

bool IsDefaultEntry(const SLoginNameObj* entry) {
  return IsEntryOf(entry, CachedText<kTextDefault>());
}

bool IsTeacherDefaultEntry(const SLoginNameObj* entry) {
  return IsEntryOf(entry, CachedText<kTextTeacherDefault>());
}

void MakeDefaultEntry(SLoginNameObj& entry) {
  entry = SLoginNameObj(CachedText<kTextDefault>(), SString(), CachedText<kTextDefault>());
}

void MakeTeacherDefaultEntry(SLoginNameObj& entry) {
  const SString& name = CachedText<kTextTeacherDefault>();
  entry = SLoginNameObj(name, SString(), name);
}

}  // namespace kivstore
