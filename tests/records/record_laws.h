// For one source of a program: the laws that every record keeps, whatever its fields. Each record
// gives a maker and the table of its defaults; random tables are tried, so that a law holds for
// every field and both stored forms.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/records/record_model.h"

namespace kivtest {

struct RecordSubject {
  const char* name;
  std::function<std::unique_ptr<kivstore::SDob>()> make;
  RecordFields defaults;

  friend std::ostream& operator<<(std::ostream& out, const RecordSubject& subject) {
    return out << subject.name;
  }
};

class RecordLaws : public testing::TestWithParam<RecordSubject> {
 protected:
  using SDob = kivstore::SDob;

  // A clean record with the fields of the table.
  std::unique_ptr<SDob> Made(const RecordFields& fields) const {
    std::unique_ptr<SDob> record = GetParam().make();
    EXPECT_TRUE(Fill(*record, BytesOf(fields)));
    EXPECT_FALSE(record->IsDirty());
    return record;
  }
  RecordFields Random(Draw& draw, bool withLengths = true) const {
    return Randomized(GetParam().defaults, draw, withLengths);
  }
  // The defaults; texts are the owner's and stay.
  RecordFields Cleared(const RecordFields& fields) const {
    RecordFields cleared = GetParam().defaults;
    for (size_t i = 0; i < cleared.size(); ++i) {
      cleared[i].text = fields[i].text;
    }
    return cleared;
  }
  // A mission of the list that is begun has the default of a mission, not the course's.
  static FieldBytes Begun(FieldBytes field) {
    if (field.section == "_Missions" && !IsStructure(field)) {
      field.values = {2};
    }
    return field;
  }
  const TestClock clock;
  const PrefFile pref{};
  Draw draw{1};
  const RecordFields table = Random(draw);
  const std::unique_ptr<SDob> record = Made(table);
};

TEST_P(RecordLaws, StartsAtItsDefaultsAndComesBackToThem) {
  const std::unique_ptr<SDob> fresh = GetParam().make(), sibling(record->CreateNew());
  EXPECT_TRUE(sibling->IsEqual(*fresh));
  EXPECT_EQ(sibling->GetClassId(), record->GetClassId());
  fresh->SetDirty(false);
  EXPECT_EQ(Differing(*fresh, GetParam().defaults), "");
  EXPECT_FALSE(fresh->IsDirty());
  record->Clear();
  EXPECT_TRUE(record->IsDirty());
  EXPECT_TRUE(record->GetModified().IsFresh());
  record->SetDirty(false);
  EXPECT_EQ(Differing(*record, Cleared(table)), "");
}

// What lies whole before the cut is read, what lies whole behind it has its default. (A torn text
// is as long as it came.)
TEST_P(RecordLaws, ReadsTornBytesAsFarAsTheyGo) {
  const RecordFields table = Stored(Random(draw, false)), defaults = Cleared(table);
  const std::string bytes = BytesOf(table);
  for (size_t cut = 0; cut < bytes.size(); cut += 1 + cut / 64) {
    ASSERT_FALSE(Fill(*record, bytes.substr(0, cut))) << cut;
    ASSERT_FALSE(record->IsDirty()) << cut;
    const std::string read = BytesOf(*record);
    size_t start = 0;
    for (size_t i = 0; i < table.size() && table[0].type != 't'; ++i) {
      const std::string wanted = table[i].Bytes(), held = read.substr(start, wanted.size());
      const size_t end = start + wanted.size();
      ASSERT_TRUE((start < cut && cut < end) ||
                  (end <= cut ? held == wanted
                              : held == defaults[i].Bytes() || held == Begun(defaults[i]).Bytes()))
          << table[i].key << ", cut at " << cut;
      start = end;
    }
  }
}

TEST_P(RecordLaws, IsEqualByEachValueAndNoStamp) {
  const RecordFields table = Random(draw, false);
  const std::unique_ptr<SDob> record = Made(table);
  for (size_t i = 0; i < table.size(); ++i) {
    RecordFields stamped = table, other = table, shorter = table;
    stamped[i].stamp += table[i].isStamped;
    EXPECT_TRUE(record->IsEqual(*Made(stamped))) << table[i].key;
    if (!IsStructure(table[i])) {
      other[i].text += "x";
      other[i].values.empty() ? 0 : other[i].values.back() ^= 1;
      EXPECT_TRUE(record->IsNotEqual(*Made(other))) << table[i].key;
    }
    if (table[i].isArray) {
      shorter[i].values.pop_back();
      EXPECT_FALSE(record->IsEqual(*Made(shorter))) << table[i].key;
    }
  }
}

TEST_P(RecordLaws, CopiesValuesStampsAndDirt) {
  record->Copy(*record);
  EXPECT_EQ(Differing(*record, table), "");
  for (const bool dirty : {true, false}) {
    const RecordFields other = Random(draw);
    const std::unique_ptr<SDob> source = Made(other);
    dirty ? source->SetDirty(true) : void();
    record->Copy(*source);
    EXPECT_EQ(Differing(*record, other), "");
    EXPECT_EQ(record->IsDirty(), dirty);
  }
}

TEST_P(RecordLaws, IsCleanWithoutStampsAndModifiedAtItsNewest) {
  RecordFields marked = table, plain = table;
  uint32_t newest = 0;
  for (size_t i = 0; i < table.size(); ++i) {
    newest = std::max(newest, table[i].stamp);
    marked[i].stamp = table[i].stamp == kFresh ? kFresh : 0;
    plain[i].stamp = 0;
  }
  EXPECT_EQ(record->GetModified().Raw(), newest);
  record->ClearStamps();
  EXPECT_EQ(Differing(*record, marked), "");
  record->SetDirty(true);
  EXPECT_TRUE(record->IsDirty());
  EXPECT_TRUE(record->GetModified().IsFresh());
  record->SetDirty(false);
  EXPECT_EQ(Differing(*record, plain), "");
  EXPECT_EQ(record->GetModified().Raw(), 0u);
}

// Of any one part, a child's too.
TEST_P(RecordLaws, IsModifiedWhereOneFieldIs) {
  for (const FieldBytes& field : GetParam().defaults) {
    RecordFields one = GetParam().defaults;
    FieldBytes& stamped = one[static_cast<size_t>(&field - GetParam().defaults.data())];
    stamped.stamp = field.isStamped ? 7 : 0;
    EXPECT_EQ(Made(one)->GetModified().Raw(), stamped.stamp) << field.key;
  }
}

TEST_P(RecordLaws, SharesOnlyDirtWithAForeignRecord) {
  SDob plain;
  for (const bool dirty : {true, false}) {
    plain.SetDirty(dirty);
    record->Merge(plain);
    EXPECT_TRUE(record->IsDirty());
  }
  record->Copy(plain);
  record->MarkDifferences(plain);
  EXPECT_FALSE(record->IsDirty() || record->HasDifferences());
  EXPECT_EQ(Differing(*record, table), "");
  EXPECT_FALSE(record->IsEqual(plain) || plain.IsEqual(*record) || plain.IsA(*record));
  EXPECT_TRUE(record->IsA(plain) && record->IsA(*record));
}

TEST_P(RecordLaws, ComesBackWholeFromItsText) {
  const kivstore::SFileSpec spec = pref.Write("; notes\r\n");
  ASSERT_TRUE(record->SaveToPref(spec, "Me"));
  EXPECT_EQ(pref.Text(), "; notes\r\n" + TextOf(Stored(table), "Me"));
  const std::unique_ptr<SDob> read = GetParam().make();
  EXPECT_TRUE(read->LoadFromPref(spec, "Me"));
  EXPECT_EQ(Differing(*read, table), "");
  EXPECT_TRUE(read->DeleteFromPref(spec, "Me"));
  EXPECT_EQ(pref.Text().find("; notes\r\n["), 0u);
  EXPECT_EQ(pref.Text().find('='), std::string::npos);
}

// An absent key is a failure, but the rest is read.
TEST_P(RecordLaws, KeepsTheDefaultOfWhatATextLacks) {
  ForSeeds(5, [&](Draw& draw) {
    RecordFields table = Stored(Random(draw, false)), lacking = table;
    const int place = draw.Below(static_cast<int>(table.size()));
    lacking.erase(lacking.begin() + place);
    FieldBytes& field = table[static_cast<size_t>(place)];
    field = Begun(GetParam().defaults[static_cast<size_t>(place)]);
    const std::unique_ptr<SDob> read = GetParam().make();
    EXPECT_FALSE(read->LoadFromPref(pref.Write(TextOf(lacking, "Me")), "Me")) << field.key;
    EXPECT_EQ(Differing(*read, table), "");
  });
}

}  // namespace kivtest
