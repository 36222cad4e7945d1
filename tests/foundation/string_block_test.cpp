// How strings share, own, lock and size their blocks.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "foundation/string.h"

namespace kivstore {
namespace {

std::string Long(int length) {
  return std::string(static_cast<size_t>(length), 'x');
}

TEST(SStringBlock, EmptyStringsShareOneBlockThatIsNeverCounted) {
  SString a;
  SString b(a);
  SString c("");
  SString d(static_cast<const char*>(nullptr));
  SString e("abc", 0);
  SString f('z', -3);
  for (SString* s : {&b, &c, &d, &e, &f}) {
    EXPECT_EQ(s->GetText(), a.GetText());
    s->Release();
    EXPECT_EQ(s->GetRefs(), -1);
    EXPECT_TRUE(s->IsEmpty());
  }
}

TEST(SStringBlock, ACopySharesUntilOneOfThemChanges) {
  SString a("mission");
  SString b(a);
  EXPECT_EQ(a.GetText(), b.GetText());
  EXPECT_EQ(a.GetRefs(), 2);
  b.SetAt(0, 'M');
  EXPECT_STREQ(a.GetText(), "mission");
  EXPECT_STREQ(b.GetText(), "Mission");
  EXPECT_EQ(a.GetRefs(), 1);
}

TEST(SStringBlock, EveryChangeInPlaceLeavesTheOtherHolderAlone) {
  const auto changes = {
      +[](SString& s) { s.SetAt(1, '!'); },
      +[](SString& s) { s.Fill(0, '!', 2); },
      +[](SString& s) { s.Overwrite(0, "!!", 2); },
      +[](SString& s) { s.Insert(1, '!'); },
      +[](SString& s) { s.Delete(0, 1); },
      +[](SString& s) { s.DeleteRight(1); },
      +[](SString& s) { s.MakeUpper(); },
      +[](SString& s) { s.MakeLower(); },
      +[](SString& s) { s.Reverse(); },
      +[](SString& s) { s.TrimLeft(); },
      +[](SString& s) { s.TrimRight(); },
      +[](SString& s) { s.Replace("a", "!"); },
      +[](SString& s) { s.Replace(0, 2, "!"); },
      +[](SString& s) { s.Append("!"); },
      +[](SString& s) { s.Assign("!"); },
      +[](SString& s) { s.Assign(3, "!!!"); },
      +[](SString& s) { s.CutField('B'); },
      +[](SString& s) { s.StripExtension(); },
      +[](SString& s) { s.StripToBackslash(); },
      +[](SString& s) { s.RemoveMnemonics(); },
      +[](SString& s) { s.FromLong(7); },
      +[](SString& s) { s.GetBuffer(1)[0] = '!'; },
      +[](SString& s) { s.GetBufferSetLength(2)[0] = '!'; },
      +[](SString& s) { s.ReleaseBuffer(1); },
      +[](SString& s) { s.LockBuffer()[0] = '!'; },
      +[](SString& s) { s.Empty(); },
      +[](SString& s) { s.Surround("<", ">"); },
  };
  int index = 0;
  for (const auto change : changes) {
    const SString kept(" a&B\\c.d ");
    SString changed(kept);
    change(changed);
    EXPECT_STREQ(kept.GetText(), " a&B\\c.d ") << index;
    EXPECT_EQ(kept.GetRefs(), 1) << index;
    EXPECT_STRNE(changed.GetText(), kept.GetText()) << index;
    ++index;
  }
}

TEST(SStringBlock, ABlockHasExactlyTheCapacityAskedFor) {
  SString s("abcde");
  EXPECT_EQ(s.GetCapacity(), 5);
  s.Append("fg");
  EXPECT_EQ(s.GetCapacity(), 7);
  s.GetBuffer(100);
  EXPECT_EQ(s.GetCapacity(), 100);
  EXPECT_STREQ(s.GetText(), "abcdefg");
  s.FreeExtra();
  EXPECT_EQ(s.GetCapacity(), 7);
}

TEST(SStringBlock, AnUnsharedBlockThatIsBigEnoughIsUsedAgain) {
  SString s("abcdefgh");
  const char* const block = s.GetText();
  s.Assign("xyz");
  EXPECT_EQ(s.GetText(), block);
  s.Append("12345");
  EXPECT_EQ(s.GetText(), block);
  EXPECT_STREQ(block, "xyz12345");
  s.Append('6');
  EXPECT_NE(s.GetText(), block);
  EXPECT_STREQ(s.GetText(), "xyz123456");
}

TEST(SStringBlock, BytesOfTheStringItselfCanBeAssignedAndAppended) {
  SString s("abcdef");
  s.Assign(4, s.GetText() + 2);
  EXPECT_STREQ(s.GetText(), "cdef");
  s.Append(s);
  EXPECT_STREQ(s.GetText(), "cdefcdef");
  SString shared(s);
  s.Assign(3, shared.GetText() + 3);
  EXPECT_STREQ(s.GetText(), "fcd");
  s.Insert(1, s);
  EXPECT_STREQ(s.GetText(), "ffcdcd");
  s.Substitute(SString("%1-%1"), s);
  EXPECT_STREQ(s.GetText(), "ffcdcd-ffcdcd");
}

TEST(SStringBlock, ALockedStringKeepsItsAddressAndIsNeverShared) {
  SString locked("abcdef");
  SString before(locked);
  char* const buffer = locked.LockBuffer();
  EXPECT_NE(before.GetText(), buffer);
  EXPECT_EQ(locked.GetRefs(), -1);

  const SString copy(locked);
  EXPECT_NE(copy.GetText(), buffer);
  EXPECT_EQ(copy.GetRefs(), 1);

  SString other("xyz");
  locked = other;
  EXPECT_EQ(locked.GetText(), buffer);
  EXPECT_STREQ(buffer, "xyz");
  locked = SString("moved");
  EXPECT_EQ(locked.GetText(), buffer);
  locked.Empty();
  EXPECT_EQ(locked.GetText(), buffer);
  EXPECT_TRUE(locked.IsEmpty());
  other = locked;
  EXPECT_NE(other.GetText(), buffer);

  locked.UnlockBuffer();
  EXPECT_EQ(locked.GetRefs(), 1);
}

TEST(SStringBlock, LockingAndUnlockingLeaveTheEmptyBlockAsItIs) {
  SString s;
  EXPECT_STREQ(s.LockBuffer(), "");
  s.UnlockBuffer();
  EXPECT_EQ(s.GetRefs(), -1);
  SString shared("ab");
  SString holder(shared);
  shared.UnlockBuffer();  // not locked: the count stands
  EXPECT_EQ(holder.GetRefs(), 2);
}

TEST(SStringBlock, MovingLeavesTheSourceEmpty) {
  SString a("abc");
  const char* const block = a.GetText();
  SString b(std::move(a));
  EXPECT_EQ(b.GetText(), block);
  SString c("longer than b");
  c = std::move(b);
  EXPECT_EQ(c.GetText(), block);
  EXPECT_EQ(c.GetRefs(), 1);
}

TEST(SStringBlock, TextEndsAtTheGreatestLength) {
  const std::string most = Long(SString::kMaxLength);
  SString s(most.c_str());
  s.Append("y");
  s.Append('y');
  EXPECT_EQ(s.View(), most);
  EXPECT_EQ(SString(Long(40000).c_str()).View(), most);
  EXPECT_EQ(SString(Long(40000)).View(), most);
  EXPECT_EQ(SString('x', 40000).View(), most);
  EXPECT_EQ((s + "tail").View(), most);
  EXPECT_EQ((SString("ab") + s).View(), "ab" + Long(SString::kMaxLength - 2));
  s.Insert(0, "head", 4);
  EXPECT_EQ(s.View(), "head" + Long(SString::kMaxLength - 4));

  SString grown(Long(20000).c_str());
  EXPECT_EQ(grown.Replace("x", "yy"), 20000);
  EXPECT_EQ(grown.View(), std::string(SString::kMaxLength, 'y'));
  EXPECT_EQ(SString::Quoted(s).GetLength(), SString::kMaxLength);
}

TEST(SStringBlock, ABufferBeyondTheGreatestLengthCannotBeHad) {
  SString s("abc");
  EXPECT_EQ(s.GetBuffer(SString::kMaxLength + 1), nullptr);
  EXPECT_EQ(s.GetBufferSetLength(100000), nullptr);
  EXPECT_STREQ(s.GetText(), "abc");
}

TEST(SStringBlock, ReleaseBufferTakesTheLengthFromTheNul) {
  struct Case {
    int count;
    const char* expected;
  };
  for (const Case& c : {Case{-1, "abc"}, {2, "ab"}, {0, ""}, {500, "abc"}}) {
    SString s;
    std::memcpy(s.GetBuffer(10), "abc\0......", 10);
    s.ReleaseBuffer(c.count);
    EXPECT_STREQ(s.GetText(), c.expected);
    EXPECT_EQ(s.GetLength(), c.count == 500 ? 10 : static_cast<int>(std::strlen(c.expected)));
  }
  SString full;
  std::memcpy(full.GetBuffer(3), "xyz", 3);
  full.ReleaseBuffer();
  EXPECT_STREQ(full.GetText(), "xyz");
}

TEST(SStringBlock, OperatorsJoinInOrder) {
  const SString a("a");
  EXPECT_STREQ((a + "b").GetText(), "ab");
  EXPECT_STREQ(("b" + a).GetText(), "ba");
  EXPECT_STREQ((a + 'c').GetText(), "ac");
  EXPECT_STREQ(('c' + a).GetText(), "ca");
  EXPECT_STREQ((a + a).GetText(), "aa");
  SString sum;
  sum += a;
  sum += "bc";
  sum += 'd';
  EXPECT_STREQ(sum.GetText(), "abcd");
}

}  // namespace
}  // namespace kivstore
