// Searching, comparing, and taking a text apart.
#include <gtest/gtest.h>

#include <string>

#include "foundation/text/string.h"

namespace kivstore {
namespace {

TEST(SStringSearch, FirstAndLastIndexWithAndWithoutCase) {
  const struct {
    const char *source, *what;
    int first, last, firstAnyCase, lastAnyCase;
  } cases[] = {
      {"one two ONE", "one", 0, 0, 0, 8}, {"one two ONE", "ONE", 8, 8, 0, 8},
      {"aaa", "aa", 0, 1, 0, 1},          {"abc", "abcd", -1, -1, -1, -1},
      {"abc", "x", -1, -1, -1, -1},       {"\xE9", "\xC9", -1, -1, -1, -1},
  };
  for (const auto& c : cases) {
    const SString s(c.source);
    EXPECT_EQ(s.Find(c.what, true), c.first) << c.source << ' ' << c.what;
    EXPECT_EQ(s.ReverseFind(c.what, true), c.last) << c.source << ' ' << c.what;
    EXPECT_EQ(s.Find(c.what, false), c.firstAnyCase) << c.source << ' ' << c.what;
    EXPECT_EQ(s.ReverseFind(c.what, false), c.lastAnyCase) << c.source << ' ' << c.what;
  }
}

TEST(SStringSearch, CharactersAndSets) {
  const SString s("a.b.c");
  EXPECT_EQ(s.Find('.'), 1);
  EXPECT_EQ(s.ReverseFind('.'), 3);
  EXPECT_EQ(s.Find('x'), -1);
  EXPECT_EQ(s.Find('\0'), -1);
  EXPECT_EQ(SString().ReverseFind('a'), -1);
  EXPECT_EQ(s.FindOneOf("cb"), 2);
  EXPECT_EQ(s.FindOneOf("xy"), -1);
  EXPECT_EQ(s.FindOneOf(nullptr), -1);
  EXPECT_STREQ(s.SpanIncluding("ab.").GetText(), "a.b.");
  EXPECT_STREQ(s.SpanExcluding("bc").GetText(), "a.");
  EXPECT_STREQ(s.SpanExcluding("x").GetText(), "a.b.c");
}

TEST(SStringSearch, PrefixAndSuffix) {
  const SString s("Classes.zep");
  EXPECT_TRUE(s.StartsWith("Cla", true) && s.StartsWith("cla", false));
  EXPECT_TRUE(s.EndsWith(".ZEP", false) && SString().EndsWith("", true));
  EXPECT_FALSE(s.StartsWith("cla", true) || SString("Cl").StartsWith(s, false));
  EXPECT_FALSE(s.EndsWith(".ZEP", true) || s.EndsWith("longer than Classes.zep", false));
}

TEST(SStringCompare, BytesCompareUnsignedAndCaseOnlyWhereAsked) {
  const char* const ascending[] = {"", "B", "Ba", "a", "b", "\x80", "\xFF"};
  for (size_t i = 0; i < std::size(ascending); ++i) {
    for (size_t j = 0; j < std::size(ascending); ++j) {
      const SString a(ascending[i]);
      const SString b(ascending[j]);
      EXPECT_EQ(a < b, i < j);
      EXPECT_EQ(a <= b, i <= j);
      EXPECT_EQ(a > b.GetText(), i > j);
      EXPECT_EQ(a.GetText() >= b, i >= j);
      EXPECT_EQ(a == b.GetText(), i == j);
      EXPECT_EQ(a.GetText() != b, i != j);
      EXPECT_EQ(a.Compare(b) < 0, i < j);
    }
  }
  EXPECT_EQ(SString("HILL").CompareNoCase(SString("hill")), 0);
  EXPECT_LT(SString("hill").CompareNoCase(SString("HILLS")), 0);
}

TEST(SStringCompare, BetweenTakesBothLimitsAndAnEmptyOneIsNone) {
  const struct {
    const char *text, *low, *high;
    bool prefix, expected, expectedAnyCase;
  } cases[] = {
      {"a", "a", "z", false, true, true},         {"z", "a", "z", false, true, true},
      {"za", "a", "z", false, false, false},      {"za", "a", "z", true, true, true},
      {"zz", "", "z", true, true, true},          {"M", "a", "z", false, false, true},
      {"anything", "", "", false, true, true},    {"anything", "", "", true, true, true},
      {"aa", "b", "", false, false, false},       {"Zoe", "", "z", true, true, true},
      {"zoe", "", "Z", true, false, true},        {"{oe", "", "z", true, false, false},
      {"\xFF\xFF", "", "\xFF", true, true, true}, {"a\xFFz", "", "a\xFF", true, true, true},
  };
  for (const auto& c : cases) {
    const SString text(c.text);
    EXPECT_EQ(text.IsBetween(SString(c.low), SString(c.high), c.prefix), c.expected) << c.text;
    EXPECT_EQ(text.IsBetweenNoCase(SString(c.low), SString(c.high), c.prefix), c.expectedAnyCase)
        << c.text;
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
  } cases[] = {
      {" a\t bc\r\n", nullptr, "a/bc/", "/a//bc//"},
      {"a||b", "|", "a/b/", "a//b/"},
      {"|a|", "|", "a/", "/a/"},
      {"|||", "|", "", "///"},
      {"", "|", "", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Pieces(&SString::NextToken, 0, c.source, c.delimiters), c.tokens);
    EXPECT_EQ(Pieces(&SString::NextField, 1, c.source, c.delimiters), c.fields);
  }
}

TEST(SStringTokens, PositionStopsBehindATokenAndCutFieldTakesTheDelimiter) {
  SString s("ab,cd");
  SString out("old");
  int position = 0;
  EXPECT_TRUE(s.NextToken(out, position, ","));
  EXPECT_EQ(position, 2);
  for (const int outside : {5, 99, -1}) {
    position = outside;
    EXPECT_FALSE(s.NextToken(out, position, ",") || s.NextField(out, position, ","));
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(position, outside);
  }
  position = 0;
  EXPECT_TRUE(s.NextToken(s, position, ","));
  EXPECT_STREQ(s.GetText(), "ab");

  SString fields("first|second");
  EXPECT_STREQ(fields.CutField('|').GetText(), "first");
  EXPECT_STREQ(fields.CutField('|').GetText(), "second");
  EXPECT_TRUE(fields.IsEmpty() && fields.CutField('|').IsEmpty());
}

TEST(SStringPath, PiecesEndAtTheLastSeparator) {
  const struct {
    const char *source, *folder, *stem, *extension;
  } cases[] = {
      {"X:\\a\\b.c.zep", "X:\\a\\", "X:\\a\\b.c", ".zep"},
      {"X:\\a\\", "X:\\a\\", "X:\\a\\", ""},
      {"name", "name", "name", ""},
      {"name.", "name.", "name", "."},
  };
  for (const auto& c : cases) {
    SString folder(c.source);
    folder.StripToBackslash();
    EXPECT_STREQ(folder.GetText(), c.folder);
    SString stem(c.source);
    stem.StripExtension();
    EXPECT_STREQ(stem.GetText(), c.stem);
    EXPECT_STREQ(SString(c.source).GetExtension().GetText(), c.extension);
  }
}

TEST(SStringMnemonics, AnAmpersandBeforeABlankOrTheEndIsNone) {
  const struct {
    const char* source;
    char mnemonic;
    int index;
    const char* plain;
  } cases[] = {
      {"&Retry", 'R', 1, "Retry"},
      {"Salt & &Pepper", 'P', 8, "Salt & Pepper"},
      {"a & b&", '\0', -1, "a & b&"},
      {"&&x", '&', 1, "x"},
      {"", '\0', -1, ""},
  };
  for (const auto& c : cases) {
    SString s(c.source);
    int index = 99;
    EXPECT_EQ(s.FindMnemonic(index), c.mnemonic);
    EXPECT_EQ(index, c.index);
    s.RemoveMnemonics();
    EXPECT_STREQ(s.GetText(), c.plain);
  }
}

}  // namespace
}  // namespace kivstore
