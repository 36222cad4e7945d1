// A preference text of any bytes: edits in it, and records read from it.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "archive/pref_file.h"
#include "records/lesson_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/fuzz/fuzz_target.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr const char* kFile = "prefs";
constexpr int kMostEdits = 8;

struct Edit {
  enum Kind { kSet, kDeleteKey, kDeleteSection, kKinds };

  explicit Edit(FuzzInput& input)
      : kind(input.Byte() % kKinds),
        section(input.Text().c_str()),
        key(input.Text().c_str()),
        value(input.Text()) {}

  bool Apply(SPrefFile& file) const {
    switch (kind) {
      case kSet:
        return file.SetValue(section.c_str(), key.c_str(), Text(value));
      case kDeleteKey:
        return file.DeleteKey(section.c_str(), key.c_str());
      default:
        return file.DeleteSection(section.c_str());
    }
  }
  // What a line can hold of the value.
  std::string Stored() const { return value.substr(0, value.find_first_of("\r\n")); }

  int kind;
  std::string section, key, value;
};

// How many bytes of one text had to go, and how many came, to make the other in one place.
struct Difference {
  Difference(const std::string& before, const std::string& after) {
    const auto [b, a] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const std::reverse_iterator endB(b), endA(a);
    const auto [lastB, lastA] = std::mismatch(before.rbegin(), endB, after.rbegin(), endA);
    gone = static_cast<size_t>(endB - lastB);
    came = static_cast<size_t>(endA - lastA);
  }
  size_t gone, came;
};

// A new header goes behind a last line as it stands if that ends in a sign like these.
bool SwallowsNewHeader(const std::string& text) {
  return !text.empty() && static_cast<signed char>(text.back()) < ' ' && text.back() != '\r' &&
         text.back() != '\n';
}

void CheckEdit(const Edit& edit, SPrefFile& file, const FuzzSite& site) {
  const std::string before = site.Stored(kFile);
  SString old, now;
  const bool had = file.GetValue(edit.section.c_str(), edit.key.c_str(), old);
  Require(site.Stored(kFile) == before, "looking changes nothing");
  const bool done = edit.Apply(file);
  const std::string after = site.Stored(kFile);
  const Difference difference(before, after);
  const auto oldLength = static_cast<size_t>(had ? old.GetLength() : 0);
  const bool has = file.GetValue(edit.section.c_str(), edit.key.c_str(), now);
  if (!done) {
    Require(difference.gone + difference.came == 0 || edit.kind == Edit::kSet,
            "a failed deletion changes nothing");
    Require(difference.gone == 0, "a failed edit loses nothing");
  } else if (edit.kind == Edit::kSet) {
    Require(SwallowsNewHeader(before) || (has && Bytes(now) == edit.Stored()),
            "a value that was set reads back");
    Require(difference.gone <= oldLength, "setting a value loses no byte but the old value's");
  } else {
    Require(difference.came == 0, "deleting adds nothing");
    Require(edit.kind == Edit::kDeleteSection ||
                (had && difference.gone <= edit.key.size() + oldLength + std::strlen("=\r\n")),
            "deleting a key takes no more than its line");
  }
}

void CheckRecords(const std::string& text) {
  FuzzSite site;
  const SFileSpec spec = site.FileOf(text, kFile);
  STeacherOptionsDob options;
  SLessonDob lesson, again;
  options.LoadFromPref(spec, "Student");
  lesson.LoadFromPref(spec, "Student");
  Require(site.Stored(kFile) == text, "reading changes nothing");
  const SFileSpec copy = site.FileOf("", "copy");
  Require(lesson.SaveToPref(copy, "Student") && again.LoadFromPref(copy, "Student") &&
              again.IsEqual(lesson),
          "what was read survives being written");
}

// In several openings, and in one, which comes to the same.
void CheckEdits(const std::vector<Edit>& edits, const std::string& text) {
  FuzzSite site;
  SPrefFile file(site.FileOf(text, kFile)), whole(site.FileOf(text, "whole"));
  Require(whole.Open(SPrefFile::kWrite), "a file that is there opens");
  for (const Edit& edit : edits) {
    CheckEdit(edit, file, site);
    edit.Apply(whole);
  }
  whole.Close();
  Require(site.Stored("whole") == site.Stored(kFile),
          "edits come to the same in one opening and in several");
}

}  // namespace

// A text without edits is read as records.
void FuzzPref(FuzzInput input) {
  std::vector<Edit> edits;
  for (int count = input.Byte() % (kMostEdits + 1); count > 0; --count) {
    edits.emplace_back(input);
  }
  edits.empty() ? CheckRecords(input.Rest()) : CheckEdits(edits, input.Rest());
}

}  // namespace kivtest
