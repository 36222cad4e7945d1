// A site of the store on a temporary folder, with an owner that answers for the application and
// writes down what it is told, and a clock that moves by itself so that no wait costs time.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "foundation/files/file_type.h"
#include "platform/platform.h"
#include "store/place/placing.h"
#include "store/place/site.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

namespace kivtest {

using Lines = std::vector<std::string>;

inline kivstore::SString Text(const std::string& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}
inline std::string Bytes(const kivstore::SString& text) {
  return std::string(text.View());
}
inline kivstore::SFileSpec SpecOn(const std::string& path) {
  return kivstore::SFileSpec(Text(path));
}
inline std::string WithSlashes(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}
inline void RegisterGameType() {
  kivstore::RegisterFileType(kivstore::kFileTypeGame, "Game File|Game Files|zep|Game|1");
}
inline int32_t ModeOf(Kind kind) {
  return kind == Kind::kTeachers ? kivstore::kSiteSharedTeachers
         : kind == Kind::kShared ? kivstore::kSiteShared
                                 : kivstore::kSiteLocal;
}

// Files and folders can be made as long as this lives. No disk is waited for: a process that dies
// leaves what it has written.
class CreatingScope : kivstore::SForwardingFileServices {
 public:
  CreatingScope() : SForwardingFileServices(kivstore::CreatingFileServices()) {}

 private:
  bool Flush(kivstore::FileHandle) override { return true; }

  kivstore::SPlatformOverride<kivstore::IFileServices> installed{kivstore::Platform().files, this};
};

class TestOwner final : public kivstore::ISiteOwner {
 public:
  using SString = kivstore::SString;
  using Name = const SString&;

  SString GetDataPath() const override { return Text(root); }
  const kivstore::SKivTeacherOptionsDob* GetOptionsInForce() const override { return options; }
  void PrepareMessage() override { heard.push_back("PrepareMessage"); }
  bool OnStudentRenamed(Name classDisplay, Name oldLast, Name oldFirst, Name newLast, Name newFirst,
                        Name teacher) override {
    return Hear("StudentRenamed", {classDisplay, oldLast, oldFirst, newLast, newFirst, teacher});
  }
  bool OnClassRenamed(Name oldDisplay, Name newName, Name teacher) override {
    return Hear("ClassRenamed", {oldDisplay, newName, teacher});
  }
  bool OnStudentMoved(Name sourceClass, Name destinationClass, Name last, Name first,
                      Name sourceTeacher, Name destinationTeacher) override {
    return Hear("StudentMoved",
                {sourceClass, destinationClass, last, first, sourceTeacher, destinationTeacher});
  }
  bool OnTeacherRenamed(Name oldDisplay, Name newName) override {
    return Hear("TeacherRenamed", {oldDisplay, newName});
  }
  bool OnClassMoved(Name sourceTeacher, Name destinationTeacher, Name name) override {
    return Hear("ClassMoved", {sourceTeacher, destinationTeacher, name});
  }

  std::string root;
  const kivstore::SKivTeacherOptionsDob* options = nullptr;
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

class SiteFixture : public testing::Test {
 protected:
  using SFileSpec = kivstore::SFileSpec;
  using SLoginNameObj = kivstore::SLoginNameObj;

  SiteFixture() {
    RegisterGameType();
    owner.root = temp.Path();
    site.SetOwner(&owner);
  }

  void UseSite(Kind kind) {
    site.ClearTeacherTier();
    site.SetSiteMode(ModeOf(kind));
  }
  static SLoginNameObj Entry(const std::string& folder, const std::string& first,
                             const std::string& last = "") {
    return {Text(first), Text(last), Text(folder)};
  }
  // As if this call had counted the class list already.
  void NoteCounted() {
    SFileSpec classes;
    kivstore::ClassesFolder(site, classes);
    site.NoteCountedClasses(classes);
  }
  SFileSpec Spec(const std::string& relative) const { return SpecOn(temp.Path(relative)); }
  // The path below the temporary folder, with slashes.
  std::string Place(const kivstore::SString& fullPath) const {
    const std::string path = WithSlashes(Bytes(fullPath));
    const std::string root = WithSlashes(temp.Path()) + "/";
    return path.rfind(root, 0) == 0 ? path.substr(root.size()) : path;
  }
  // With what stands there: "folder Classes.zep/", "file ...", "none ..."; "-" if not valid.
  std::string PlaceAndKind(const SFileSpec& spec) const {
    const char* const kind = !spec.Exists() ? "none " : spec.IsFolder() ? "folder " : "file ";
    return spec.IsValid() ? kind + Place(spec.GetPath()) : "-";
  }
  // What the site has noted since it was last asked: "locked students Room/Students/index.lok", or
  // "" for nothing; and the words for a user.
  std::string Why() {
    static const char* const kKinds[] = {"",        "locked",    "in use", "no permission",
                                         "missing", "no entry",  "full",   "name taken",
                                         "damaged", "disk full", "link",   "other"};
    static const char* const kLists[] = {"classes", "students", "files", "teachers"};
    const kivstore::SFailure failure = site.GetFailure();
    site.ClearFailure();
    return !failure ? ""
                    : kKinds[static_cast<int>(failure.kind)] + std::string(" ") +
                          kLists[static_cast<int>(failure.list)] + " " + Place(failure.path);
  }
  // Of an operation that has just answered false.
  std::string WhyNot(bool answer) {
    EXPECT_FALSE(answer);
    return Why();
  }
  // The words for a user, and why.
  std::string Told() {
    const std::string text = Bytes(site.GetFailure().text);
    return text + "|" + Why();
  }
  std::string Said() {
    const std::string text = Bytes(site.GetFailure().text);
    site.ClearFailure();
    return text;
  }
  std::string Selected() const {
    const SLoginNameObj* const teacher = site.GetCurrentTeacher();
    return teacher != nullptr ? Bytes(teacher->folderName) : "-";
  }
  // "folder:first:last" of each.
  template <class List>
  static Lines Described(const List& logins) {
    Lines lines;
    for (const SLoginNameObj& entry : logins) {
      lines.push_back(Bytes(entry.folderName + ":" + entry.firstName + ":" + entry.lastName));
    }
    return lines;
  }
  std::map<std::string, std::string> Snapshot() const { return SnapshotOf(temp.Path()); }
  // What differs between two snapshots: "+" new, "-" gone, "*" changed.
  static Lines Changes(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after) {
    Lines changes;
    for (const auto& [path, bytes] : after) {
      const auto old = before.find(path);
      if (old == before.end() || old->second != bytes) {
        changes.push_back((old == before.end() ? "+" : "*") + path);
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

  const TempFolder temp;
  TestClock clock{50};
  TestOwner owner;
  kivstore::SSite site;
};

}  // namespace kivtest
