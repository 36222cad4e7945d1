// Blocks, limits, numbers, and texts taken apart and put together.
#include "foundation/text/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

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
  char* const buffer = s.GetBuffer(100);
  EXPECT_TRUE(s.GetCapacity() == 100 && s.GetBuffer(100) == buffer);
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
  SString other(locked), holder(before);
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
  holder.UnlockBuffer();  // not locked: the count stands
  EXPECT_EQ(before.GetRefs(), 2);
}

TEST(SStringBlock, TextEndsAtTheGreatestLength) {
  constexpr int kMost = SString::kMaxLength;
  const std::string most(kMost, 'x'), more(40000, 'x');
  SString s(most.c_str()), grown('x', 20000);
  s.Append("y");
  s.Append('y');
  for (const SString& cut :
       {s, SString(more.c_str()), SString(more), SString('x', 40000), s + "y"}) {
    EXPECT_EQ(cut.View(), most);
  }
  EXPECT_EQ((SString("ab") + s).View(), "ab" + most.substr(2));
  s.Insert(0, "head", 4);
  EXPECT_EQ(s.View(), "head" + most.substr(4));
  EXPECT_EQ(SString::Quoted(s).GetLength(), kMost);
  EXPECT_EQ(grown.Replace("x", "yy"), 20000);
  EXPECT_EQ(grown.View(), std::string(kMost, 'y'));
  EXPECT_EQ(s.GetBuffer(kMost + 1), nullptr);
  EXPECT_EQ(s.GetBufferSetLength(100000), nullptr);
  EXPECT_EQ(s.GetLength(), kMost);
}

TEST(SString, IndicesAtTheEndsOfTheirRange) {
  SString s("abcde"), blank(" \t\r\n\v\f\xA0 \v");
  EXPECT_EQ(s.Mid(1, INT_MAX) + s.Mid(INT_MIN, INT_MAX) + s.Mid(INT_MAX, 1), "bcdeabcde");
  s.Fill(INT_MAX, '*', INT_MAX);
  s.Overwrite(1, "*", INT_MAX);
  s.Overwrite(0, nullptr, 1);
  s.Insert(0, nullptr, 1);
  s.Delete(INT_MAX, INT_MAX);
  EXPECT_STREQ(s.GetText(), "abcde");
  s.Replace(3, INT_MAX, nullptr);
  s.Delete(1, INT_MAX);
  EXPECT_STREQ(s.GetText(), "a");
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
                   const SString& source, const char* delimiters) {
  std::string pieces;
  SString piece;
  for (int position = 0; (source.*next)(piece, position, delimiters); position += step) {
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
  EXPECT_TRUE(s.NextToken(s, position, ",") && s == "ab" && position == 2) << "into itself";
}

// The values that come of the texts, each behind a "!" if its text was no clean number.
template <class T>
std::string Parsed(bool (SString::*parse)(T&) const, const std::vector<SString>& texts) {
  std::string values;
  for (const SString& text : texts) {
    T value = 99;
    const bool clean = (text.*parse)(value);
    values += (clean ? " " : " !") + std::to_string(value);
  }
  return values;
}

TEST(SStringNumbers, WholeNumbersGoOnPastWhatIsNoDigit) {
  const std::vector<SString> texts{"123", "-45", "+6", "12a3", "-1x2", "+", "-", "", "--5", "0/9:"};
  EXPECT_EQ(Parsed(&SString::ToLong, texts), " 123 -45 6 !123 !-12 !0 !0 !0 !-5 !9");
  EXPECT_EQ(Parsed(&SString::ToULong, texts), " 123 !45 6 !123 !12 !0 !0 !0 !5 !9");
  const std::vector<SString> wide{"-2147483648", "4294967295", "4294967297"};
  EXPECT_EQ(Parsed(&SString::ToLong, wide), " -2147483648 -1 1");
  EXPECT_EQ(Parsed(&SString::ToULong, wide), " !2147483648 4294967295 1");
  for (const int32_t value : {0, 9, 10, -1, INT32_MAX, INT32_MIN}) {
    const auto bits = static_cast<uint32_t>(value);
    SString s, u;
    s.FromLong(value);
    u.FromULong(bits);
    EXPECT_EQ(s.View(), std::to_string(value));
    EXPECT_EQ(u.View(), std::to_string(bits));
  }
}

TEST(SStringNumbers, HexStopsAtTheFirstOtherCharacterAndSixteenBitsTakeTheirRange) {
  const std::vector<SString> forms{"0x1F", "0XfF", "", "0", "12g4", "x1", "@9", "123456789"};
  EXPECT_EQ(Parsed<uint32_t>(&SString::ToHex, forms), " 31 255 !0 0 !18 !0 !0 591751049");
  EXPECT_EQ(Parsed<int16_t>(&SString::ToHex, forms), " 31 255 !99 0 !99 !99 !99 !99");
  EXPECT_EQ(Parsed<uint16_t>(&SString::ToHex, forms), " 31 255 !99 0 !99 !99 !99 !99");
  const std::vector<SString> wide{"c0de", "7FFF", "8000", "FFFF", "10000", "FFFF8000", "FFFF7FFF"};
  EXPECT_EQ(Parsed<int16_t>(&SString::ToHex, wide), " !99 32767 !99 !99 !99 -32768 !99");
  EXPECT_EQ(Parsed<uint16_t>(&SString::ToHex, wide), " 49374 32767 32768 65535 !99 !99 !99");
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
  EXPECT_EQ(Parsed(&SString::ToDouble, {"-2e3", "1.5x", ""}), " -2000.000000 !1.500000 !0.000000");
}

TEST(SStringMessages, SubstitutionGoesArgumentByArgumentOnTheGrowingText) {
  const struct {
    const char *pattern, *first, *second, *expected;
  } cases[] = {{"%2, %1", "Ann", "Lee", "Lee, Ann"},
               {"%1 %2", "<%2>", "b", "<b> b"},
               {"%1 %2", "a", "<%1>", "a <%1>"},
               {"%1 and %1", "%1", "", "%1 and %1"},
               {"'%1' could not be %3d.", "x", "", "'x' could not be %3d."}};
  SString one, s, three, four, five;
  for (const auto& c : cases) {
    s.Substitute(c.pattern, c.first, c.second);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
  one.Substitute("%1%2!", "a");
  one.Substitute(one, one, one);  // may read itself
  three.Substitute("%3%2%1%4", "a", "b", "c");
  four.Substitute("%4%3%2%1%5", "a", "b", "c", "d");
  five.Substitute("%5%4%3%2%1%%1", "a", "b", "c", "d", "e");
  EXPECT_EQ(one + " " + three + " " + four + " " + five, "aa%2!! cba%4 dcba%5 edcba%a");
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
