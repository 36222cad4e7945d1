// The laws of the records that stand alone, and of those whose fields have stamps.
#include "tests/records/record_laws.h"

#include <set>

#include "records/error_dob.h"
#include "records/lesson_dob.h"
#include "records/tutor_options_dob.h"

namespace kivtest {
namespace {

using namespace kivstore;

// The framework's part of the options, with its own per-game record, which holds nothing.
RecordFields FrameworkFields() {
  RecordFields fields = OptionsBytes().Set("SeparateLastName", 0).Set("AutoGameSaving", 0).Fields();
  std::erase_if(fields, [](const FieldBytes& field) {
    return field.key.starts_with("TOGameDob_") && !IsStructure(field);
  });
  const auto isLast = [](const FieldBytes& field) { return field.key == "StudentsHavePassword"; };
  fields.erase(std::find_if(fields.begin(), fields.end(), isLast) + 1, fields.end());
  return fields;
}

RecordFields NumberedErrorFields() {
  RecordFields fields = GameBytes().ErrorFields("_ErrorDob");
  fields.insert(fields.begin(), {"", "ID", 'L', false, false, {0}});
  return fields;
}

template <class Record>
const RecordFields kDefaults;
template <>
const RecordFields kDefaults<STOMissionDob> = MissionBytes().Fields(Stamps());
template <>
const RecordFields kDefaults<STeacherOptionsGameDob> = GameOptionsBytes().Fields();
template <>
const RecordFields kDefaults<SKivTeacherOptionsDob> = FrameworkFields();
template <>
const RecordFields kDefaults<STeacherOptionsDob> = OptionsBytes().Fields();
template <>
const RecordFields kDefaults<SDErrorDob> = GameBytes().ErrorFields();
template <>
const RecordFields kDefaults<SDBErrorDob> = NumberedErrorFields();
template <>
const RecordFields kDefaults<SLessonDob> = GameBytes().LessonFields();

template <class Record>
RecordSubject SubjectOf(const char* name) {
  return {name, [] { return std::make_unique<Record>(); }, kDefaults<Record>};
}

INSTANTIATE_TEST_SUITE_P(Records, RecordLaws,
                         testing::Values(SubjectOf<STOMissionDob>("Mission"),
                                         SubjectOf<STeacherOptionsGameDob>("GameOptions"),
                                         SubjectOf<SKivTeacherOptionsDob>("Framework"),
                                         SubjectOf<STeacherOptionsDob>("Options"),
                                         SubjectOf<SDErrorDob>("Errors"),
                                         SubjectOf<SDBErrorDob>("NumberedErrors"),
                                         SubjectOf<SLessonDob>("Lesson")),
                         [](const auto& test) { return test.param.name; });

TEST(Records, HaveTheVersionsOfTheFileFormats) {
  SKivTeacherOptionsGameDob nothing;
  EXPECT_EQ(BytesOf(nothing), "");
  EXPECT_EQ(gFileVersion, kDataVersion);
  EXPECT_EQ(nothing.GetVersion(), kDataVersion);
  EXPECT_EQ(STeacherOptionsDob().GetVersion(), kDataVersion);
  EXPECT_EQ(STOMissionDob().GetVersion() + SDErrorDob().GetVersion(), 0u);
}

// Calls function(key, field) for the stamped fields of the record and its children.
template <class Record, class Function>
void ForEachStamped(Record& record, Function function) {
  record.ForEachField(function);
}
template <class Function>
void ForEachStamped(STeacherOptionsDob& record, Function function) {
  const auto below = [&](const std::string& prefix) {
    return [&function, prefix](const std::string& key, auto& field) {
      function(prefix + "_" + key, field);
    };
  };
  record.ForEachField(function);
  record.GetGameOptions()->ForEachField(below("TOGameDob"));
  for (int32_t i = 0; i < record.missions.GetCount(); ++i) {
    record.missions.At(i).ForEachField(below(std::to_string(i)));
  }
}

template <class Record>
class StampedRecord : public testing::Test {
 protected:
  // Of the options with any number of missions.
  static RecordFields Drawn(Draw& draw) {
    RecordFields fields = kDefaults<Record>;
    if constexpr (std::is_same_v<Record, STeacherOptionsDob>) {
      OptionsBytes options;
      options.missions.resize(static_cast<size_t>(draw.Below(40)));
      fields = options.Fields();
    }
    return Randomized(fields, draw, true);
  }
  static std::set<std::string> Flagged(Record& record) {
    std::set<std::string> keys;
    ForEachStamped(record, [&](const std::string& key, auto& field) {
      field.differs ? void(keys.insert(key)) : void();
    });
    return keys;
  }

  const TestClock clock;
  Record here, there;
};

using StampedRecords = testing::Types<STOMissionDob, STeacherOptionsGameDob, SKivTeacherOptionsDob,
                                      STeacherOptionsDob>;
TYPED_TEST_SUITE(StampedRecord, StampedRecords);

TYPED_TEST(StampedRecord, MergesAsAPlainTableDoes) {
  ForSeeds(20, [&](Draw& draw) {
    const RecordFields ours = this->Drawn(draw), theirs = this->Drawn(draw);
    const bool dirty[] = {draw.OneIn(2), draw.OneIn(2)};
    ASSERT_TRUE(Fill(this->here, BytesOf(ours)) && Fill(this->there, BytesOf(theirs)));
    this->here.Merge(this->here);
    this->here.MarkDifferences(this->there);
    EXPECT_EQ(Differing(this->here, ours), "");
    dirty[0] ? this->here.SetDirty(true) : void();
    dirty[1] ? this->there.SetDirty(true) : void();
    this->here.Merge(this->there);
    EXPECT_EQ(Differing(this->here, Merged(ours, theirs)), "");
    EXPECT_EQ(this->here.IsDirty(), dirty[0] || dirty[1]);
    EXPECT_EQ(Differing(this->there, theirs), "");
    this->here.Copy(this->there);
    EXPECT_EQ(Differing(this->here, theirs), "");
  });
}

TYPED_TEST(StampedRecord, FlagsTheFieldsThatDifferAndForgetsNone) {
  ForSeeds(5, [&](Draw& draw) {
    const RecordFields ours = this->Drawn(draw), theirs = Randomized(ours, draw, true, 3);
    std::set<std::string> expected;
    for (size_t i = 0; i < ours.size(); ++i) {
      const bool differs = ours[i].isStamped && ours[i].values != theirs[i].values;
      differs ? void(expected.insert(ours[i].key)) : void();
    }
    ASSERT_TRUE(Fill(this->here, BytesOf(ours)) && Fill(this->there, BytesOf(theirs)));
    this->here.MarkDifferences(this->here);
    EXPECT_FALSE(this->here.HasDifferences());
    this->here.MarkDifferences(this->there);
    EXPECT_EQ(this->Flagged(this->here), expected);
    EXPECT_FALSE(this->there.HasDifferences());
    this->there.Copy(this->here);
    this->here.MarkDifferences(this->there);
    EXPECT_EQ(this->Flagged(this->here), expected);
    EXPECT_EQ(this->Flagged(this->there), expected);
    this->here.Clear();
    EXPECT_FALSE(this->here.HasDifferences());
  });
}

TYPED_TEST(StampedRecord, VisitsEveryStampedFieldInOrder) {
  std::string keys, expected;
  for (const FieldBytes& field : kDefaults<TypeParam>) {
    const bool isOwn = field.section.empty() && !field.key.starts_with("TOGameDob_");
    expected += field.isStamped && isOwn ? field.key + " " : "";
  }
  this->here.ForEachField([&](const std::string& key, auto&) { keys += key + " "; });
  EXPECT_EQ(keys, expected);
}

TEST(Option, IsSetWhereThatChangesOrConfirmsSomething) {
  for (const auto& [value, noted] : {std::pair<int16_t, bool>{2, false}, {2, true}, {3, false}}) {
    STOMissionDob record;
    const bool changes = noted || value != record.Typeline.value;
    record.Typeline.differs = noted;
    record.SetOption(&STOMissionDob::Typeline, value);
    EXPECT_EQ(record.Typeline.value, value);
    EXPECT_EQ(record.IsDirty(), changes);
    EXPECT_EQ(record.Typeline.stamp.Raw(), changes ? kFresh : 0);
    EXPECT_FALSE(record.HasDifferences());
  }
}

}  // namespace
}  // namespace kivtest
