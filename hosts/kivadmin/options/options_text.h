// The options of one level as a preference text file, for hands:
//
//   [Options]
//   SoundOn=2                         the value
//   SoundOn_ts_high=0                 when it was decided: seconds since 1904, 0 for never
//   SoundOn_ts_low=3155760000
//   TOGameDob_LessonDone_Count=25     a list of missions: its length and an element for each
//   TOGameDob_LessonDone_0=1
//   [Options_Missions]
//   3_Typeline=1                      an activity of the fourth mission
//
// A line may be missing: the level's own stands in for it. A line that begins with ; or # is a
// remark, and sections of other names are nobody's business here.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "records/tutor_options_dob.h"

namespace kivadmin {

inline constexpr const char* kOptionsSection = "Options";

class OptionsText {
 public:
  struct Line {
    std::string section;
    std::string key;
    std::optional<std::string> given;  // by the file
    std::optional<std::string> own;    // the level's
    size_t number = 0;
    bool isAsked = false;  // it names an option

    const std::optional<std::string>& Value() const { return given ? given : own; }
  };

  // `name` is the file's, for errors. Throws HostError for what is no such file and for a line or
  // section that stands there twice.
  OptionsText(const std::string& name, std::string bytes);

  // The text's options laid over the level's, each with the time that counts: the text's, or the
  // fresh mark where it gives a value without a time, or the level's where it gives no value.
  // Throws HostError, naming key, value and line, for a value that its option does not take and a
  // key that is none. Once for each text.
  void ReadOver(kivstore::STeacherOptionsDob& level, kivstore::STeacherOptionsDob& options);

  // What the archive of this text works on. Letter case is ignored.
  Line& Ask(const std::string& section, const std::string& key);
  // True if the file gives the option's value or an element of it.
  bool GivesValue(const std::string& section, const std::string& key) const;
  // Keeps the first fault that is told.
  void Refuse(const Line& line, const std::string& why);
  bool IsRefused() const { return !refusal.empty(); }

 private:
  void OpenSection(std::string_view header, size_t number);
  void AddLine(std::string_view text, size_t number);
  void RefuseUnknown();
  void ThrowIfRefused() const;

  std::string name;
  std::string section;  // the one being read; empty if it holds no options
  std::set<std::string> sections;
  std::map<std::string, Line> lines;  // by section and key
  std::string refusal;
};

}  // namespace kivadmin
