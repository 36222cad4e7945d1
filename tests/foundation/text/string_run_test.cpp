// Random steps on three strings that share their blocks, against std::string.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "foundation/text/string.h"
#include "tests/support/draw.h"

namespace kivstore {
namespace {

using kivtest::Draw;
using Text = std::string;

constexpr std::string_view kLetters = "aabABZz.\\ ,&\t\xE9\xFF";

Text Mapped(Text text, char first, char last, int step) {
  for (char& c : text) {
    c = static_cast<char>(c >= first && c <= last ? c + step : c);
  }
  return text;
}

Text Lowered(const Text& text) {
  return Mapped(text, 'A', 'Z', 32);
}

Text Raised(const Text& text) {
  return Mapped(text, 'a', 'z', -32);
}

int Index(size_t place) {
  return place == Text::npos ? -1 : static_cast<int>(place);
}

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// What a start and a count mean, both cut to the text.
Text Part(const Text& text, int start, int count) {
  const auto first = static_cast<size_t>(std::clamp(start, 0, static_cast<int>(text.size())));
  return text.substr(first, static_cast<size_t>(std::max(count, 0)));
}

Text AllReplaced(const Text& text, const Text& what, const Text& with, int& matches) {
  Text result;
  for (size_t i = 0; i < text.size();) {
    const bool matched = text.compare(i, what.size(), what) == 0;
    result += matched ? with : text.substr(i, 1);
    i += matched ? what.size() : 1;
    matches += matched ? 1 : 0;
  }
  return result;
}

// Where the first mark's letter stands, and the text without marks.
int FirstMark(const Text& m, Text& plain) {
  int first = -1;
  for (size_t i = 0; i < m.size(); ++i) {
    const bool isMark = m[i] == '&' && i + 1 < m.size() && m[i + 1] != ' ';
    first = first < 0 && isMark ? static_cast<int>(i) + 1 : first;
    plain += isMark ? "" : m.substr(i, 1);
  }
  return first;
}

class StringRun {
 public:
  explicit StringRun(Draw& draw) : draw(draw) {}

  void Step() {
    const int i = draw.Below(3), j = draw.Below(3);
    if (texts[i].size() > 60) {
      strings[i].Empty(), texts[i].clear();
    }
    const Text o = texts[j];
    const int size = static_cast<int>(texts[i].size());
    const int start = draw.Between(-2, size + 2), count = draw.Between(-1, size + 2);
    const Text given = draw.Text(4, kLetters), sought = draw.Text(1, kLetters) + 'a';
    const char c = (given + "a")[0];
    const std::vector<std::function<void()>> steps =
        draw.OneIn(2)
            ? Growing(strings[i], texts[i], strings[j], o, start, std::min(count, 3), given, c)
            : Changing(strings[i], texts[i], start, count, given, sought, c);
    steps[static_cast<size_t>(draw.Below(static_cast<int>(steps.size())))]();
    for (int k = 0; k < 3; ++k) {
      ASSERT_EQ(strings[k].View(), texts[k]);
      ASSERT_EQ(strings[k].GetText()[texts[k].size()], '\0');
      ASSERT_GE(strings[k].GetCapacity(), strings[k].GetLength());
    }
    Ask(strings[i], texts[i], start, count, given, c);
    Compare(strings[i], strings[j], texts[i], texts[j]);
  }

 private:
  using Steps = std::vector<std::function<void()>>;

  static Steps Growing(SString& s, Text& m, SString& other, const Text& o, int start, int count,
                       const Text& given, char c) {
    const bool fits = start >= 0 && start <= static_cast<int>(m.size());
    const Text left = fits ? Part(m, 0, start) : m, right = fits ? Part(m, start, 999) : "";
    return {[&] { s = other, m = o; },
            [=, &s, &m] { s = given.c_str(), m = given; },
            [=, &s, &m] { s = c, m = c; },
            [&] { s = SString(other), m = o; },
            [=, &s, &m] { s = SString(c, count), m = Text(count > 0 ? size_t(count) : 0, c); },
            [&] { s.Assign(s.GetLength() - 1, s.GetText() + 1), m.erase(0, 1); },
            [&] { s += other, m += o; },
            [=, &s, &m] { s += given.c_str(), m += given; },
            [=, &s, &m] { s += c, m += c; },
            [=, &s, &m] { s.Insert(start, c), m = left + (fits ? Text(1, c) : "") + right; },
            [=, &s, &m, &other] { s.Insert(start, other), m = left + (fits ? o : "") + right; },
            [=, &s, &m] {
              s.Insert(start, "xyz", count), m = left + (fits ? Part("xyz", 0, count) : "") + right;
            },
            [=, &s, &m, &other] {
              s = c + (given.c_str() + s) + other + 'd' + "e", m = c + given + m + o + "de";
            },
            [=, &s, &m] { s.Surround(given.c_str(), nullptr), m = given + m; },
            [&] { s = SString::Quoted(s), m = '"' + m + '"'; },
            [=, &s] {
              s.GetBuffer(s.GetLength() + count);
              EXPECT_LE(s.GetRefs(), 1);
            },
            [&] {
              s.FreeExtra();
              EXPECT_EQ(s.GetCapacity(), s.GetLength());
            },
            [=, &s, &m] { s.GetBuffer(999), s.ReleaseBuffer(-1), m = Text(m.c_str()); }};
  }

  static Steps Changing(SString& s, Text& m, int start, int count, const Text& given,
                        const Text& sought, char c) {
    const int size = static_cast<int>(m.size()), taken = std::clamp(count, 0, size);
    const bool inside = start >= 0 && start < size;
    const bool fits = start >= 0 && count > 0 && start + count <= size;
    const Text left = Part(m, 0, start), right = Part(m, start + std::max(count, 0), 999);
    const Text filled = fits ? left + Text(size_t(count), c) + right : m;
    return {[=, &s, &m] { s.Delete(start, count), m = inside ? left + right : m; },
            [=, &s, &m] { s.DeleteLeft(count), m = Part(m, taken, 999); },
            [=, &s, &m] { s.DeleteRight(count), m = Part(m, 0, size - taken); },
            [&] { s.TrimLeft(), m.erase(0, std::min(m.find_first_not_of(" \t"), m.size())); },
            [&] { s.TrimRight(), m.erase(m.find_last_not_of(" \t") + 1); },
            [=, &s, &m] {
              EXPECT_EQ(s.CutField(c).View(), m.substr(0, m.find(c)));
              m = Part(m, Index(m.find(c)) < 0 ? 999 : Index(m.find(c)) + 1, 999);
            },
            [&] {
              s.StripToBackslash(), m.erase(m.rfind('\\') == m.npos ? m.size() : m.rfind('\\') + 1);
            },
            [&] { s.StripExtension(), m = m.substr(0, m.rfind('.')); },
            [&] {
              Text plain;
              int index = 99, first = FirstMark(m, plain);
              EXPECT_EQ(s.FindMnemonic(index), first < 0 ? '\0' : m[size_t(first)]);
              EXPECT_EQ(index, first);
              s.RemoveMnemonics(), m = plain;
            },
            [=, &s, &m] { s.SetAt(start, c), m = inside ? left + c + Part(m, start + 1, 999) : m; },
            [=, &s, &m] { s.Fill(start, c, count), m = filled; },
            [=, &s, &m] { s.Overwrite(start, Text(99, c).data(), count), m = filled; },
            [&] { s.MakeUpper(), m = Raised(m); },
            [&] { s.MakeLower(), m = Lowered(m); },
            [&] { s.Capitalize(), m = Raised(m.substr(0, 1)) + Part(m, 1, 999); },
            [&] { s.Reverse(), std::reverse(m.begin(), m.end()); },
            [=, &s, &m] {
              s.Replace(start, count, given.c_str());
              m = start < 0 || start > size ? m : left + given + right;
            },
            [=, &s, &m] {
              int matches = 0;
              m = AllReplaced(m, sought, given, matches);
              EXPECT_EQ(s.Replace(sought.c_str(), given.c_str()), matches);
            }};
  }

  static void Ask(const SString& s, const Text& m, int start, int count, const Text& given,
                  char c) {
    const Text low = Lowered(m), lowGiven = Lowered(given);
    const char* const sought = given.c_str();
    const int size = static_cast<int>(m.size()), taken = std::clamp(count, 0, size);
    const size_t dot = m.rfind('.');
    EXPECT_EQ(s.Find(c), Index(m.find(c)));
    EXPECT_EQ(s.ReverseFind(c), Index(m.rfind(c)));
    EXPECT_EQ(s.FindOneOf(sought), Index(m.find_first_of(given)));
    EXPECT_EQ(s.Find(sought, true), Index(m.find(given)));
    EXPECT_EQ(s.Find(sought, false), Index(low.find(lowGiven)));
    EXPECT_EQ(s.ReverseFind(sought, true), Index(m.rfind(given)));
    EXPECT_EQ(s.ReverseFind(sought, false), Index(low.rfind(lowGiven)));
    EXPECT_EQ(s.StartsWith(sought, true), m.starts_with(given));
    EXPECT_EQ(s.StartsWith(sought, false), low.starts_with(lowGiven));
    EXPECT_EQ(s.EndsWith(sought, true), m.ends_with(given));
    EXPECT_EQ(s.EndsWith(sought, false), low.ends_with(lowGiven));
    EXPECT_EQ(s.Left(count).View(), Part(m, 0, taken));
    EXPECT_EQ(s.Right(count).View(), Part(m, size - taken, taken));
    EXPECT_EQ(s.Mid(start).View(), Part(m, start, size));
    EXPECT_EQ(s.Mid(start, count).View(), Part(m, start, count));
    EXPECT_EQ(s.GetAt(start), start >= 0 && start < size ? m[size_t(start)] : '\0');
    EXPECT_EQ(s.SpanIncluding(sought).View(), m.substr(0, m.find_first_not_of(given)));
    EXPECT_EQ(s.SpanExcluding(sought).View(), m.substr(0, m.find_first_of(given)));
    EXPECT_EQ(s.GetExtension().View(), dot == Text::npos ? "" : m.substr(dot));
  }

  static void Compare(const SString& s, const SString& other, const Text& m, const Text& o) {
    EXPECT_EQ(Sign(s.Compare(other)), Sign(m.compare(o)));
    EXPECT_EQ(Sign(s.CompareNoCase(other)), Sign(Lowered(m).compare(Lowered(o))));
    EXPECT_EQ(s == other, m == o);
    EXPECT_EQ(s < other, m < o);
    EXPECT_EQ(s >= other.GetText(), m >= o);
    EXPECT_EQ(s.IsBetween(other, "a", false), m >= o && m <= "a");
  }

  Draw& draw;
  SString strings[3];
  Text texts[3];
};

TEST(SString, DoesWhatAModelDoesAndLeavesOtherHoldersAlone) {
  kivtest::ForSeeds(20, [](Draw& draw) {
    StringRun run(draw);
    for (int step = 0; step < 400 && !testing::Test::HasFailure(); ++step) {
      run.Step();
    }
  });
}

}  // namespace
}  // namespace kivstore
