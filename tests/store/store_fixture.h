// A store on disk, laid out by the builder, and the library pointed at it: the application object
// with its notifications recorded, the site mode, a clock that moves by itself so that no wait
// costs time, and a listener for the texts that are composed and dropped.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "foundation/application.h"
#include "foundation/files/file.h"
#include "platform/platform.h"
#include "store/list/entries.h"
#include "store/place/failure_report.h"
#include "tests/store/store_scope.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

namespace kivtest {

using Lines = std::vector<std::string>;

class RecordingApp : public kivstore::SZEPApp {
 public:
  using SString = kivstore::SString;

  void PrepareMessage() override { heard.push_back("PrepareMessage"); }
  bool OnStudentRenamed(const SString& classDisplay, const SString& oldLast,
                        const SString& oldFirst, const SString& newLast, const SString& newFirst,
                        const SString& teacher) override {
    return Hear("StudentRenamed", {classDisplay, oldLast, oldFirst, newLast, newFirst, teacher});
  }
  bool OnClassRenamed(const SString& oldDisplay, const SString& newName,
                      const SString& teacher) override {
    return Hear("ClassRenamed", {oldDisplay, newName, teacher});
  }
  bool OnStudentMoved(const SString& sourceClass, const SString& destinationClass,
                      const SString& last, const SString& first, const SString& sourceTeacher,
                      const SString& destinationTeacher) override {
    return Hear("StudentMoved",
                {sourceClass, destinationClass, last, first, sourceTeacher, destinationTeacher});
  }
  bool OnTeacherRenamed(const SString& oldDisplay, const SString& newName) override {
    return Hear("TeacherRenamed", {oldDisplay, newName});
  }
  bool OnClassMoved(const SString& sourceTeacher, const SString& destinationTeacher,
                    const SString& name) override {
    return Hear("ClassMoved", {sourceTeacher, destinationTeacher, name});
  }

  Lines heard;

 private:
  bool Hear(std::string line, const std::vector<SString>& arguments) {
    for (const SString& argument : arguments) {
      line += "|" + Bytes(argument);
    }
    heard.push_back(line);
    return true;
  }
};

class StoreFixture : public testing::Test {
 protected:
  using SFileSpec = kivstore::SFileSpec;
  using SLoginNameObj = kivstore::SLoginNameObj;

  StoreFixture() {
    kivstore::RegisterFileType(kivstore::kFileTypeGame, "Game File|Game Files|zep|Game|1");
    kivstore::gApp = &app;
    SetRoot(temp.Path());
    kivstore::gStoreFailed = false;
    Dropped().clear();
    kivstore::gDropMessage = [](const kivstore::SString& text) {
      Dropped().push_back(Bytes(text));
    };
  }
  ~StoreFixture() override {
    kivstore::gDropMessage = previousHook;
    kivstore::SelectTeacher(nullptr);
    kivstore::gStoreFailed = false;
    kivstore::gTeacherTier = 0;
    kivstore::gSiteMode = 0;
    kivstore::gApp = nullptr;
  }

  static Lines& Dropped() {
    static Lines dropped;
    return dropped;
  }

  void SetRoot(const std::string& path) { app.SetProperty("Data", Text(path)); }

  static void UseSite(Kind kind) {
    kivstore::gSiteMode = kind == Kind::kTeachers ? kivstore::kSiteSharedTeachers
                          : kind == Kind::kShared ? kivstore::kSiteShared
                                                  : kivstore::kSiteLocal;
    kivstore::gTeacherTier = kind == Kind::kTeachers ? 1 : 0;
  }

  // The path below the temporary folder, with slashes; "-" for a spec that is not valid.
  std::string Place(const SFileSpec& spec) const {
    const std::string path = WithSlashes(Bytes(spec.GetPath()));
    const std::string root = WithSlashes(temp.Path()) + "/";
    return !spec.IsValid() ? "-" : path.rfind(root, 0) == 0 ? path.substr(root.size()) : path;
  }
  // With what stands there: "folder Classes.zep/", "file ...", "none ...".
  std::string PlaceAndKind(const SFileSpec& spec) const {
    const char* const kind = !spec.Exists() ? "none " : spec.IsFolder() ? "folder " : "file ";
    return kind + Place(spec);
  }
  SFileSpec Spec(const std::string& relative) const { return SpecOn(temp.Path(relative)); }

  static SLoginNameObj Entry(const std::string& folder, const std::string& first,
                             const std::string& last = "") {
    return {Text(first), Text(last), Text(folder)};
  }
  // "folder:first:last" of each.
  static Lines Described(const kivstore::SPtrArray& logins) {
    Lines lines;
    for (int32_t i = 0; i < logins.GetSize(); ++i) {
      const SLoginNameObj& entry = *kivstore::LoginIn(logins, i);
      lines.push_back(Bytes(entry.folderName) + ":" + Bytes(entry.firstName) + ":" +
                      Bytes(entry.lastName));
    }
    return lines;
  }
  // What differs between two snapshots: "+" new, "-" gone, "*" changed.
  static Lines Changes(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after) {
    Lines changes;
    for (const auto& [path, bytes] : after) {
      const auto old = before.find(path);
      if (old == before.end()) {
        changes.push_back("+" + path);
      } else if (old->second != bytes) {
        changes.push_back("*" + path);
      }
    }
    for (const auto& [path, bytes] : before) {
      if (after.count(path) == 0) {
        changes.push_back("-" + path);
      }
    }
    return changes;
  }

  // Another workstation has the file open with no sharing.
  class Holder {
   public:
    explicit Holder(const SFileSpec& spec) { file.Open(kivstore::SFile::kWrite, spec); }

   private:
    kivstore::SFile file;
  };

  TempFolder temp;
  TestClock clock{50};
  RecordingApp app;

 private:
  static std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
  }

  const kivstore::DropMessageHook previousHook = kivstore::gDropMessage;
};

}  // namespace kivtest
