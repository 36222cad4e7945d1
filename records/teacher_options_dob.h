// The teacher options: how the tutor behaves. Kept in an "options.kiv" at each level of the store
// and laid over each other by merging, so that the newest decision on each single option wins,
// whichever level it was taken at. A stamp of 0 means that nobody decided.
//
// SKivTeacherOptionsDob holds the framework's options, STeacherOptionsDob (tutor_options_dob.h)
// adds the tutor's. In a file:
//
//   2 or 1, 8   each option, a number or a bool, and its stamp, in the order of the fields
//   2           behind TabBetweenAll: 1 if a per-game record follows, else 0
//               the per-game record (game_options_dob.h)
//   1, 8        StudentsHavePassword and its stamp
#pragma once

#include "archive/file_version.h"
#include "records/field_record.h"
#include "records/game_options_dob.h"

namespace kivstore {

class SKivTeacherOptionsDob;

// The per-game record's place in the table: an owned pointer that may be null.
struct GameOptionsField : FieldOperations {
  using Record = SKivTeacherOptionsDob;
  void Reset(Record& r) const;
  void Transfer(Record& r, IDobArchive& archive) const;
  bool Measure(const Record& r, std::string_view bytes, int64_t& length) const;
  void Take(Record& r, const uint8_t*& from) const;
  bool IsEqual(const Record& a, const Record& b) const;
  void Copy(Record& r, const Record& other) const;
  // Without one in `other`, ours is deleted.
  void Merge(Record& r, const Record& other) const;
  void MarkDifference(Record& r, const Record& other) const;
  bool HasDifference(const Record& r) const;
  void RaiseModified(const Record& r, SDateTime& highest) const;
  void ClearStamp(Record& r) const;
  void SetClean(Record& r) const;
  bool IsDirty(const Record& r) const;
};

// A new record is as Clear leaves it, dirty.
class SKivTeacherOptionsDob : public SFieldRecord<SKivTeacherOptionsDob, SDob> {
 public:
  SKivTeacherOptionsDob();
  SKivTeacherOptionsDob(const SKivTeacherOptionsDob& other);
  ~SKivTeacherOptionsDob() override;

  uint32_t GetVersion() const override { return gFileVersion; }
  // A new per-game record of the kind that these options hold; null if out of memory.
  virtual SKivTeacherOptionsGameDob* CreateGameOptions() const;

  SStamped<int16_t> SoundOn;
  SStamped<bool> StudAddOwnName;
  SStamped<bool> SeparateLastName;
  SStamped<bool> DisplayFirstLastName;
  SStamped<bool> AutoGameSaving;
  SStamped<int16_t> MaxGameFiles;
  SStamped<bool> AutoOpenStudFile;
  SStamped<bool> UseSystemIODialogs;
  SStamped<bool> StudentPrint;
  SStamped<bool> CentralFileLocation;
  SStamped<bool> RecordStudentProgress;
  SStamped<bool> TopScoreAllClasses;
  SStamped<bool> TopScoreIndivClass;
  SStamped<bool> TopScoreIndivStudent;
  SStamped<bool> StudentLevelRemembered;
  SStamped<bool> UseJournal;
  SStamped<bool> WordLists;
  SStamped<bool> UseCamera;
  SStamped<bool> KeyboardShortcut;
  SStamped<bool> TabBetweenAll;
  SKivTeacherOptionsGameDob* gameOptions = nullptr;  // owned; null after merging one without
  SStamped<bool> StudentsHavePassword;

  static constexpr auto Fields() {
    using R = SKivTeacherOptionsDob;
    return std::tuple(StampedField(&R::SoundOn, "SoundOn", 2),
                      StampedField(&R::StudAddOwnName, "StudAddOwnName", true),
                      StampedField(&R::SeparateLastName, "SeparateLastName", false),
                      StampedField(&R::DisplayFirstLastName, "DisplayFirstLastName", true),
                      StampedField(&R::AutoGameSaving, "AutoGameSaving", false),
                      StampedField(&R::MaxGameFiles, "MaxGameFiles", 10),
                      StampedField(&R::AutoOpenStudFile, "AutoOpenStudFile", false),
                      StampedField(&R::UseSystemIODialogs, "UseSystemIODialogs", false),
                      StampedField(&R::StudentPrint, "StudentPrint", true),
                      StampedField(&R::CentralFileLocation, "CentralFileLocation", true),
                      StampedField(&R::RecordStudentProgress, "RecordStudentProgress", true),
                      StampedField(&R::TopScoreAllClasses, "TopScoreAllClasses", true),
                      StampedField(&R::TopScoreIndivClass, "TopScoreIndivClass", true),
                      StampedField(&R::TopScoreIndivStudent, "TopScoreIndivStudent", true),
                      StampedField(&R::StudentLevelRemembered, "StudentLevelRemembered", true),
                      StampedField(&R::UseJournal, "UseJournal", true),
                      StampedField(&R::WordLists, "WordLists", true),
                      StampedField(&R::UseCamera, "UseCamera", true),
                      StampedField(&R::KeyboardShortcut, "KeyboardShortcut", true),
                      StampedField(&R::TabBetweenAll, "TabBetweenAll", false), GameOptionsField(),
                      StampedField(&R::StudentsHavePassword, "StudentsHavePassword", false));
  }

 protected:
  // For a derived class, whose own constructor clears: only then does the record make its own kind.
  struct Uncleared {};
  explicit SKivTeacherOptionsDob(Uncleared) {}
};

}  // namespace kivstore
