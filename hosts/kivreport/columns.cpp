#include "hosts/kivreport/columns.h"

#include <sstream>

#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/common/nearest.h"

namespace kivreport {
namespace {

using kivstore::kLeftHand;
using kivstore::kRightHand;

// Of what the options and the game of the student tell.
template <class Take>
Value OfProgress(const Row& row, Take take) {
  return row.student.progress ? Value(take(*row.student.progress)) : Value();
}

template <int Progress::*kField>
Value Number(const Row& row) {
  return OfProgress(row, [](const Progress& progress) { return int64_t{progress.*kField}; });
}

template <class Take>
Value OfKeys(const Row& row, Take take) {
  const bool isKnown = row.student.progress && row.student.progress->keys;
  return isKnown ? Value(take(*row.student.progress->keys)) : Value();
}

template <int64_t KeyCount::*kField>
Value AllKeys(const Row& row) {
  return OfKeys(row, [](const Keys& keys) { return keys.All().*kField; });
}

template <int kHand, int64_t KeyCount::*kField>
Value HandKeys(const Row& row) {
  return OfKeys(row, [](const Keys& keys) { return keys.Of(kHand).*kField; });
}

Value LastWork(const Row& row) {
  const bool isKnown = row.student.progress && !row.student.progress->lastWork.empty();
  return isKnown ? Value(row.student.progress->lastWork) : Value();
}

Value WeakestKeys(const Row& row) {
  return OfKeys(row, [](const Keys& keys) {
    std::vector<std::string> names;
    for (const int key : keys.Weakest()) {
      names.push_back(KeyName(key));
    }
    return names;
  });
}

// Those that were typed.
Value CountsByKey(const Row& row) {
  return OfKeys(row, [](const Keys& keys) {
    std::vector<NamedCount> counts;
    for (int key = 0; key < kivstore::kKeyCount; ++key) {
      const KeyCount& count = keys.byKey[static_cast<size_t>(key)];
      if (count.keystrokes > 0 || count.errors > 0) {
        counts.push_back({KeyName(key), count});
      }
    }
    return counts;
  });
}

Value Lessons(const Row& row) {
  return OfProgress(row, [](const Progress& progress) {
    std::vector<int> missions;
    for (int mission = 1; mission <= kMissions; ++mission) {
      if (progress.lessons[static_cast<size_t>(mission - 1)]) {
        missions.push_back(mission);
      }
    }
    return missions;
  });
}

Value IdleDays(const Row& row) {
  const auto days = DaysIdle(row.report, row.student);
  return days ? Value(int64_t{*days}) : Value();
}

Value StandingText(const Row& row) {
  switch (StandingOf(row.report, row.student)) {
    case Standing::kNotBegun:
      return "not begun";
    case Standing::kIdle:
      return "idle";
    case Standing::kWorking:
      break;
  }
  return row.student.progress ? Value("working") : Value();
}

Value ChangeText(const Row& row) {
  if (!row.student.change) {
    return {};
  }
  constexpr const char* kWords[] = {"stayed", "new", "other class", "unsure", "left"};
  return kWords[row.student.change->kind];
}

Value MissionsMoved(const Row& row) {
  const bool isKnown = row.student.change && row.student.change->missions;
  return isKnown ? Value(int64_t{*row.student.change->missions}) : Value();
}

Value ChangeNote(const Row& row) {
  const bool isNoted = row.student.change && !row.student.change->note.empty();
  return isNoted ? Value(row.student.change->note) : Value();
}

constexpr auto kStrokes = &KeyCount::keystrokes;
constexpr auto kErrors = &KeyCount::errors;

constexpr Column kColumns[] = {
    {kTeacherColumn, "Teacher", "", "Teacher", false, Column::kNames,
     [](const Row& r) { return Value(r.teacher); }},
    {kClassColumn, "Class", "", "Class", false, Column::kNames,
     [](const Row& r) { return Value(r.group); }},
    {kStudentColumn, "Student", "", "Student", false, Column::kNames,
     [](const Row& r) { return Value(r.student.name); }},
    {"current_mission", "Current mission", "Mis-", "sion", true, Column::kProgress,
     Number<&Progress::currentMission>},
    {"previous_mission", "Previous mission", "Pre-", "vious", true, Column::kProgress,
     Number<&Progress::previousMission>},
    {"vocab_level", "Vocabulary level", "Vo-", "cab.", true, Column::kProgress,
     Number<&Progress::vocabLevel>},
    {"lessons_done", "Lessons done", "Les-", "sons", true, Column::kProgress,
     Number<&Progress::lessonsDone>},
    {"last_work", "Last work", "Last", "work", false, Column::kProgress, LastWork},
    {"keystrokes", "Keystrokes", "Key-", "strokes", true, Column::kProgress, AllKeys<kStrokes>},
    {"errors", "Errors", "", "Errors", true, Column::kProgress, AllKeys<kErrors>},
    {"left_keystrokes", "Left keystrokes", "Left", "keys", true, Column::kProgress,
     HandKeys<kLeftHand, kStrokes>},
    {"left_errors", "Left errors", "Left", "errors", true, Column::kProgress,
     HandKeys<kLeftHand, kErrors>},
    {"right_keystrokes", "Right keystrokes", "Right", "keys", true, Column::kProgress,
     HandKeys<kRightHand, kStrokes>},
    {"right_errors", "Right errors", "Right", "errors", true, Column::kProgress,
     HandKeys<kRightHand, kErrors>},
    {"weakest_keys", "Weakest keys", "Weakest", "keys", false, Column::kProgress, WeakestKeys},
    {"change", "Change", "", "Change", false, Column::kComparison, ChangeText},
    {"missions_moved", "Missions moved", "Moved", "by", true, Column::kComparison, MissionsMoved},
    {"change_note", "Note", "", "Note", false, Column::kComparison, ChangeNote},
    {"standing", "Standing", "", "Standing", false, Column::kProgress, StandingText},
    {"idle_days", "Idle days", "Idle", "days", true, Column::kProgress, IdleDays},
    {"lessons", "Lessons", "", "Lessons", false, Column::kProgress, Lessons},
    {"keys", "Keys", "", "Keys", false, Column::kProgress, CountsByKey},
};

const Column* FindColumn(const std::string& name) {
  for (const Column& column : kColumns) {
    if (kivhost::EqualNoCase(name, column.name)) {
      return &column;
    }
  }
  return nullptr;
}

const Column* NeedColumn(const std::string& name) {
  if (const Column* const column = FindColumn(name)) {
    return column;
  }
  std::vector<std::string> known;
  for (const Column& column : kColumns) {
    known.emplace_back(column.name);
  }
  const std::string near = kivhost::Nearest(name, known);
  throw kivhost::HostError(
      kivhost::kWrongUsage,
      "--columns: no column \"" + name + '"' +
          (near.empty() ? "; there are: " + ColumnNames() : "; did you mean \"" + near + "\"?"));
}

template <class Items, class ToText>
std::string Joined(const Items& items, ToText toText) {
  std::string text;
  for (const auto& item : items) {
    text += (text.empty() ? "" : " ") + toText(item);
  }
  return text;
}

struct ToText {
  std::string operator()(std::monostate /*unknown*/) const { return {}; }
  std::string operator()(int64_t number) const { return std::to_string(number); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const std::vector<std::string>& texts) const {
    return Joined(texts, [](const std::string& text) { return text; });
  }
  std::string operator()(const std::vector<int>& numbers) const {
    return Joined(numbers, [](int number) { return std::to_string(number); });
  }
  std::string operator()(const std::vector<NamedCount>& counts) const {
    return Joined(counts, [](const NamedCount& item) {
      return item.name + ' ' + std::to_string(item.count.keystrokes) + '/' +
             std::to_string(item.count.errors);
    });
  }
};

}  // namespace

Columns ParseColumns(const std::string& names) {
  Columns columns;
  std::istringstream list(names);
  for (std::string name; std::getline(list, name, ',');) {
    columns.push_back(NeedColumn(name));
  }
  if (columns.empty()) {
    throw kivhost::HostError(kivhost::kWrongUsage, "--columns: names are wanted: " + ColumnNames());
  }
  return columns;
}

void NeedKnown(const Columns& columns, bool progress, bool compared) {
  for (const Column* const column : columns) {
    const bool lacksProgress = column->source == Column::kProgress && !progress;
    if (lacksProgress || (column->source == Column::kComparison && !compared)) {
      throw kivhost::HostError(
          kivhost::kWrongUsage,
          "--columns: " + std::string(column->name) +
              (lacksProgress ? " is not told with --roster" : " is told with --since only"));
    }
  }
}

Columns ColumnsOf(const std::vector<const char*>& names) {
  Columns columns;
  for (const char* const name : names) {
    columns.push_back(FindColumn(name));
  }
  return columns;
}

std::string ColumnNames() {
  std::string names;
  for (const Column& column : kColumns) {
    names += (names.empty() ? "" : ", ") + std::string(column.name);
  }
  return names;
}

std::string TextOf(const Value& value) {
  return std::visit(ToText(), value);
}

}  // namespace kivreport
