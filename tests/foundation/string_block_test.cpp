// How strings share, own, lock and size their blocks.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "foundation/text/string.h"

namespace kivstore {
namespace {

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

TEST(SStringBlock, ACopyIsMadeWhenOneOfTheHoldersChanges) {
  SString a("mission");
  SString b(a);
  EXPECT_EQ(a.GetText(), b.GetText());
  EXPECT_EQ(a.GetRefs(), 2);
  b.SetAt(0, 'M');
  EXPECT_STREQ(a.GetText(), "mission");
  EXPECT_EQ(a.GetRefs(), 1);
}

TEST(SStringBlock, EveryChangeInPlaceLeavesTheOtherHolderAlone) {
  const auto changes = {
      +[](SString& s) { s.SetAt(1, '!'); },     +[](SString& s) { s.Overwrite(0, "!!", 2); },
      +[](SString& s) { s.Insert(1, '!'); },    +[](SString& s) { s.Delete(0, 1); },
      +[](SString& s) { s.MakeUpper(); },       +[](SString& s) { s.Reverse(); },
      +[](SString& s) { s.TrimRight(); },       +[](SString& s) { s.Replace("a", "!"); },
      +[](SString& s) { s.Append("!"); },       +[](SString& s) { s.Assign(3, "!!!"); },
      +[](SString& s) { s.CutField('B'); },     +[](SString& s) { s.StripExtension(); },
      +[](SString& s) { s.RemoveMnemonics(); }, +[](SString& s) { s.GetBuffer(1)[0] = '!'; },
      +[](SString& s) { s.ReleaseBuffer(1); },  +[](SString& s) { s.LockBuffer()[0] = '!'; },
  };
  for (const auto change : changes) {
    const SString kept(" a&B\\c.d ");
    SString changed(kept);
    change(changed);
    EXPECT_STREQ(kept.GetText(), " a&B\\c.d ") << changed.GetText();
    EXPECT_EQ(kept.GetRefs(), 1) << changed.GetText();
    EXPECT_STRNE(changed.GetText(), kept.GetText());
  }
}

TEST(SStringBlock, ABlockHasExactlyTheCapacityAskedForAndIsUsedAgainWhileItIsBigEnough) {
  SString s("abcde");
  s.Append("fg");
  EXPECT_EQ(s.GetCapacity(), 7);
  const char* const block = s.GetText();
  s.Assign("xyz");
  s.Append("1234");
  EXPECT_EQ(s.GetText(), block);
  s.GetBuffer(100);
  EXPECT_EQ(s.GetCapacity(), 100);
  EXPECT_STREQ(s.GetText(), "xyz1234");
  s.FreeExtra();
  EXPECT_EQ(s.GetCapacity(), 7);
}

TEST(SStringBlock, BytesOfTheStringItselfCanBeAssignedAndAppended) {
  SString s("abcdef");
  s.Assign(4, s.GetText() + 2);
  s.Append(s);
  EXPECT_STREQ(s.GetText(), "cdefcdef");
  SString shared(s);
  s.Assign(3, shared.GetText() + 3);
  s.Insert(1, s);
  EXPECT_STREQ(s.GetText(), "ffcdcd");
  s.Substitute(SString("%1-%1"), s);
  EXPECT_STREQ(s.GetText(), "ffcdcd-ffcdcd");
}

TEST(SStringBlock, ALockedStringKeepsItsAddressAndIsNeverShared) {
  SString locked("abcdef");
  const SString before(locked);
  char* const buffer = locked.LockBuffer();
  EXPECT_NE(before.GetText(), buffer);
  EXPECT_EQ(locked.GetRefs(), -1);
  SString other(locked);
  EXPECT_NE(other.GetText(), buffer);
  EXPECT_EQ(other.GetRefs(), 1);
  other = "xyz";
  locked = other;
  EXPECT_STREQ(buffer, "xyz");
  locked = SString("moved");
  EXPECT_STREQ(buffer, "moved");
  locked.Empty();
  EXPECT_EQ(locked.GetText(), buffer);
  EXPECT_TRUE(locked.IsEmpty());
  locked.UnlockBuffer();
  EXPECT_EQ(locked.GetRefs(), 1);
  SString holder(before);
  holder.UnlockBuffer();  // not locked: the count stands
  EXPECT_EQ(before.GetRefs(), 2);
  SString empty;
  empty.LockBuffer();
  empty.UnlockBuffer();
  EXPECT_EQ(empty.GetRefs(), -1);
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
  constexpr int kMost = SString::kMaxLength;
  const std::string most(kMost, 'x');
  const std::string more(40000, 'x');
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

TEST(SStringBlock, ReleaseBufferTakesTheLengthFromTheNul) {
  const struct {
    int count;
    std::string_view expected;
  } cases[] = {{-1, "abc"}, {2, "ab"}, {0, ""}, {500, {"abc\0......", 10}}};
  for (const auto& c : cases) {
    SString s;
    std::memcpy(s.GetBuffer(10), "abc\0......", 10);
    s.ReleaseBuffer(c.count);
    EXPECT_EQ(s.View(), c.expected);
  }
  SString full;
  std::memcpy(full.GetBuffer(3), "xyz", 3);
  full.ReleaseBuffer();
  EXPECT_STREQ(full.GetText(), "xyz");
}

TEST(SStringBlock, OperatorsJoinInOrder) {
  const SString a("a");
  SString sum = 'c' + ("b" + a) + a + 'd' + "e";
  sum += a;
  sum += "f";
  sum += 'g';
  EXPECT_STREQ(sum.GetText(), "cbaadeafg");
}

}  // namespace
}  // namespace kivstore
