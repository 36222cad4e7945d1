// Blocks, limits, numbers, and texts taken apart and put together.
#include "foundation/text/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "platform/platform.h"

namespace kivstore {
namespace {

TEST(SStringBlock, EmptyStringsShareOneBlockThatIsNeverCounted) {
  SString a, b(a), c(""), d(static_cast<const char*>(nullptr)), e("abc", 0), f('z', -3);
  for (SString* s : {&b, &c, &d, &e, &f}) {
    EXPECT_EQ(s->GetText(), a.GetText());
    s->Release();
    s->LockBuffer();
    s->UnlockBuffer();
    EXPECT_EQ(s->GetRefs(), -1);
  }
}

TEST(SStringBlock, HasExactlyTheCapacityAskedForAndIsSharedUntilAHolderChanges) {
  SString s("abcde");
  s.Append("fg");
  EXPECT_EQ(s.GetCapacity(), 7);
  const char* const block = s.GetText();
  s.Assign("xyz");
  s.Append("1234");
  EXPECT_EQ(s.GetText(), block) << "used again while it is big enough";
  s.GetBuffer(100);
  EXPECT_EQ(s.GetCapacity(), 100);
  SString t(s);
  EXPECT_EQ(t.GetText(), s.GetText());
  EXPECT_EQ(s.GetRefs(), 2);
  t.SetAt(0, 'X');
  EXPECT_EQ(s.GetRefs(), 1);
  EXPECT_EQ(t.GetCapacity(), 7);
  SString moved(std::move(t)), other("o");
  other = std::move(moved);
  EXPECT_STREQ(other.GetText(), "Xyz1234");
  EXPECT_EQ(other.GetRefs(), 1);
}

TEST(SStringBlock, ALockedStringKeepsItsAddressAndIsNeverShared) {
  SString locked("abcdef");
  const SString before(locked);
  char* const buffer = locked.LockBuffer();
  EXPECT_NE(before.GetText(), buffer);
  EXPECT_EQ(locked.GetRefs(), -1);
  SString other(locked);
  EXPECT_EQ(other.GetRefs(), 1);
  for (const char* text : {"xyz", "moved"}) {
    other = text;
    *text == 'x' ? locked = other : locked = SString(text);
    EXPECT_STREQ(buffer, text);
  }
  locked.Substitute("%1-%1", "a");
  EXPECT_STREQ(buffer, "a-a");
  locked.FreeExtra();
  locked.Empty();
  EXPECT_EQ(locked.GetText(), buffer);
  EXPECT_TRUE(locked.IsEmpty());
  locked.UnlockBuffer();
  EXPECT_EQ(locked.GetRefs(), 1);
  SString holder(before);
  holder.UnlockBuffer();  // not locked: the count stands
  EXPECT_EQ(before.GetRefs(), 2);
}

TEST(SStringBlock, TextEndsAtTheGreatestLength) {
  constexpr int kMost = SString::kMaxLength;
  const std::string most(kMost, 'x'), more(40000, 'x');
  SString s(most.c_str());
  s.Append("y");
  s.Append('y');
  EXPECT_EQ(s.View(), most);
  for (const SString& cut : {SString(more.c_str()), SString(more), SString('x', 40000), s + "y"}) {
    EXPECT_EQ(cut.View(), most);
  }
  EXPECT_EQ((SString("ab") + s).View(), "ab" + most.substr(2));
  s.Insert(0, "head", 4);
  EXPECT_EQ(s.View(), "head" + most.substr(4));
  EXPECT_EQ(SString::Quoted(s).GetLength(), kMost);
  SString grown('x', 20000);
  EXPECT_EQ(grown.Replace("x", "yy"), 20000);
  EXPECT_EQ(grown.View(), std::string(kMost, 'y'));
  EXPECT_EQ(s.GetBuffer(kMost + 1), nullptr);
  EXPECT_EQ(s.GetBufferSetLength(100000), nullptr);
  EXPECT_EQ(s.GetLength(), kMost);
}

TEST(SString, IndicesAtTheEndsOfTheirRange) {
  SString s("abcde");
  EXPECT_STREQ(s.Mid(1, INT_MAX).GetText(), "bcde");
  EXPECT_STREQ(s.Mid(INT_MIN, INT_MAX).GetText(), "abcde");
  EXPECT_TRUE(s.Mid(INT_MAX, 1).IsEmpty());
  s.Fill(INT_MAX, '*', INT_MAX);
  s.Overwrite(1, "*", INT_MAX);
  s.Overwrite(0, nullptr, 1);
  s.Insert(0, nullptr, 1);
  s.Delete(INT_MAX, INT_MAX);
  EXPECT_STREQ(s.GetText(), "abcde");
  s.Replace(3, INT_MAX, nullptr);
  s.Delete(1, INT_MAX);
  EXPECT_STREQ(s.GetText(), "a");
  SString blank(" \t\r\n\v\f\xA0 \v");
  blank.TrimLeft();
  blank.TrimRight();
  EXPECT_STREQ(blank.GetText(), "\xA0");
  EXPECT_EQ(blank.Replace(nullptr, "x") + blank.FindOneOf(nullptr), -1);
}

TEST(SString, BetweenTakesBothLimitsAndAnEmptyOneIsNone) {
  const struct {
    const char *text, *low, *high;
    bool prefix, expected, expectedAnyCase;
  } cases[] = {
      {"a", "a", "z", false, true, true},         {"z", "a", "z", false, true, true},
      {"za", "a", "z", false, false, false},      {"za", "a", "z", true, true, true},
      {"zz", "", "z", true, true, true},          {"M", "a", "z", false, false, true},
      {"anything", "", "", true, true, true},     {"aa", "b", "", false, false, false},
      {"zoe", "", "Z", true, false, true},        {"{oe", "", "z", true, false, false},
      {"\xFF\xFF", "", "\xFF", true, true, true}, {"a\xFFz", "", "a\xFF", true, true, true}};
  for (const auto& c : cases) {
    const SString text(c.text);
    EXPECT_EQ(text.IsBetween(c.low, c.high, c.prefix), c.expected) << c.text;
    EXPECT_EQ(text.IsBetweenNoCase(c.low, c.high, c.prefix), c.expectedAnyCase) << c.text;
  }
}

// The pieces, joined by slashes; `step` is what the caller adds to the position between them.
std::string Pieces(bool (SString::*next)(SString&, int&, const char*) const, int step,
                   const char* source, const char* delimiters) {
  const SString s(source);
  std::string pieces;
  SString piece;
  for (int position = 0; (s.*next)(piece, position, delimiters); position += step) {
    pieces += std::string(piece.View()) + "/";
  }
  return pieces;
}

TEST(SStringTokens, TokensSkipRunsAndFieldsStandBetweenSingleDelimiters) {
  const struct {
    const char *source, *delimiters, *tokens, *fields;
  } cases[] = {{" a\t bc\r\n", nullptr, "a/bc/", "/a//bc//"},
               {"a||b", "|", "a/b/", "a//b/"},
               {"|a|", "|", "a/", "/a/"},
               {"|||", "|", "", "///"},
               {"", "|", "", ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(Pieces(&SString::NextToken, 0, c.source, c.delimiters), c.tokens);
    EXPECT_EQ(Pieces(&SString::NextField, 1, c.source, c.delimiters), c.fields);
  }
  SString s("ab,cd"), out("old");
  for (const int outside : {5, 99, -1}) {
    int position = outside;
    EXPECT_FALSE(s.NextToken(out, position, ",") || s.NextField(out, position, ","));
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(position, outside);
  }
  int position = 0;
  EXPECT_TRUE(s.NextToken(s, position, ","));
  EXPECT_STREQ(s.GetText(), "ab") << "may go into itself";
  EXPECT_EQ(position, 2);
}

// Whether a text was a clean number, and the value that came.
template <class T>
std::pair<bool, T> Parsed(bool (SString::*parse)(T&) const, const char* text) {
  T value = 99;
  const bool clean = (SString(text).*parse)(value);
  return {clean, value};
}

TEST(SStringNumbers, WholeNumbersGoOnPastWhatIsNoDigit) {
  const struct {
    const char* text;
    bool clean;
    int32_t value;
    bool cleanUnsigned;
    uint32_t asUnsigned;
  } cases[] = {{"123", true, 123, true, 123},
               {"-45", true, -45, false, 45},
               {"+6", true, 6, true, 6},
               {"12a3", false, 123, false, 123},
               {"-1x2", false, -12, false, 12},
               {"+", false, 0, false, 0},
               {"-", false, 0, false, 0},
               {"", false, 0, false, 0},
               {"--5", false, -5, false, 5},
               {"0/9:", false, 9, false, 9},
               {"-2147483648", true, INT32_MIN, false, 2147483648u},
               {"4294967295", true, -1, true, UINT32_MAX},
               {"4294967297", true, 1, true, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(Parsed(&SString::ToLong, c.text), std::pair(c.clean, c.value)) << c.text;
    EXPECT_EQ(Parsed(&SString::ToULong, c.text), std::pair(c.cleanUnsigned, c.asUnsigned))
        << c.text;
  }
  SString s;
  for (const int32_t value : {0, 9, 10, -1, INT32_MAX, INT32_MIN}) {
    s.FromLong(value);
    EXPECT_EQ(s.View(), std::to_string(value));
    s.FromULong(static_cast<uint32_t>(value));
    EXPECT_EQ(s.View(), std::to_string(static_cast<uint32_t>(value)));
  }
}

TEST(SStringNumbers, HexStopsAtTheFirstOtherCharacterAndSixteenBitsTakeTheirRange) {
  const struct {
    const char* text;
    bool good;
    uint32_t value;
    bool fitsSigned, fitsUnsigned;
  } cases[] = {{"0x1F", true, 0x1F, true, true},
               {"0XfF", true, 0xFF, true, true},
               {"c0de", true, 0xC0DE, false, true},
               {"", false, 0, false, false},
               {"0", true, 0, true, true},
               {"12g4", false, 0x12, false, false},
               {"x1", false, 0, false, false},
               {"@9", false, 0, false, false},
               {"7FFF", true, 0x7FFF, true, true},
               {"8000", true, 0x8000, false, true},
               {"FFFF", true, 0xFFFF, false, true},
               {"10000", true, 0x10000, false, false},
               {"FFFF8000", true, 0xFFFF8000, true, false},
               {"FFFF7FFF", true, 0xFFFF7FFF, false, false},
               {"123456789", true, 0x23456789, false, false}};
  for (const auto& c : cases) {
    EXPECT_EQ(Parsed<uint32_t>(&SString::ToHex, c.text), std::pair(c.good, c.value)) << c.text;
    EXPECT_EQ(Parsed<int16_t>(&SString::ToHex, c.text),
              std::pair(c.fitsSigned, static_cast<int16_t>(c.fitsSigned ? c.value : 99)));
    EXPECT_EQ(Parsed<uint16_t>(&SString::ToHex, c.text),
              std::pair(c.fitsUnsigned, static_cast<uint16_t>(c.fitsUnsigned ? c.value : 99)));
  }
}

TEST(SStringNumbers, DoublesHaveUpToSixDecimalsAndMustBeTheWholeText) {
  const struct {
    double value;
    int decimals;
    const char* text;
  } cases[] = {{1.5, 0, "2"},   {1.5, 2, "1.50"}, {-0.125, 6, "-0.125000"},
               {1.5, 7, "1.5"}, {1.5, -1, "1.5"}, {1e10, 7, "1e+10"}};
  SString s;
  for (const auto& c : cases) {
    s.FromDouble(c.value, c.decimals);
    EXPECT_STREQ(s.GetText(), c.text);
  }
  s.FromDouble(-1.7976931348623157e308, 6);
  EXPECT_EQ(s.GetLength(), 317);
  EXPECT_EQ(Parsed(&SString::ToDouble, "-2e3"), std::pair(true, -2000.0));
  EXPECT_EQ(Parsed(&SString::ToDouble, "1.5x"), std::pair(false, 1.5));
  EXPECT_EQ(Parsed(&SString::ToDouble, ""), std::pair(false, 0.0));
}

TEST(SStringMessages, SubstitutionGoesArgumentByArgumentOnTheGrowingText) {
  const struct {
    const char *pattern, *first, *second, *expected;
  } cases[] = {{"%2, %1", "Ann", "Lee", "Lee, Ann"},
               {"%1 %2", "<%2>", "b", "<b> b"},
               {"%1 %2", "a", "<%1>", "a <%1>"},
               {"%1 and %1", "%1", "", "%1 and %1"},
               {"'%1' could not be %3d.", "x", "", "'x' could not be %3d."}};
  SString s;
  for (const auto& c : cases) {
    s.Substitute(c.pattern, c.first, c.second);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
  s.Substitute("%5%4%3%2%1%%1", "a", "b", "c", "d", "e");
  EXPECT_STREQ(s.GetText(), "edcba%a");
  s.Substitute("%4%3%2%1%5", "a", "b", "c", "d");
  EXPECT_STREQ(s.GetText(), "dcba%5");
  s.Substitute("%3%2%1", "a", "b", "c");
  EXPECT_STREQ(s.GetText(), "cba");
  s.Substitute("%1%2!", "a");
  s.Substitute(s, s, s);
  EXPECT_STREQ(s.GetText(), "aa%2!!") << "may read itself";
}

struct LongTexts : IResources {
  int LoadText(ModuleHandle, int, char* buffer, int size) override {
    std::memset(buffer, 'x', static_cast<size_t>(size - 1));
    buffer[size - 1] = '\0';
    return size - 1;
  }
};

TEST(SStringMessages, FormattedTextsAreCutAt511AndTextsOfTheTableAt1022) {
  SString s("old");
  s.Format("%s-%d", "a", 5);
  s.Format("%s", s.GetText());
  EXPECT_STREQ(s.GetText(), "a-5");
  s.Format("%s", std::string(600, 'x').c_str());
  EXPECT_EQ(s.View(), std::string(511, 'x'));
  s.FormatResource(16051, "Ann Lee");
  EXPECT_STREQ(s.GetText(), "Unable to add the student Ann Lee.");
  EXPECT_FALSE(s.LoadResource(1));
  EXPECT_TRUE(SString::FromResource(1).IsEmpty());
  EXPECT_STREQ(s.GetText(), "Unable to add the student Ann Lee.");
  s.FormatResource(1, "x");
  EXPECT_TRUE(s.IsEmpty());
  LongTexts texts;
  SPlatformOverride<IResources> installed(Platform().resources, &texts);
  EXPECT_EQ(SString::FromResource(1).GetLength(), 1022);
  s.FormatResource(1);
  EXPECT_EQ(s.GetLength(), 511);
}

}  // namespace
}  // namespace kivstore
