#include "foundation/application.h"

#include <new>
#include <string_view>

#include "game/game_dob.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "records/game_options_dob.h"
#include "records/tutor_options_dob.h"
#include "store/list/name_derivation.h"
#include "store/lock/lock_file.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// Cuts `folder` and the one character behind it off the end of the path.
bool CutTrailingFolder(SString& path, std::string_view folder) {
  const std::string_view text = path.View();
  const size_t cut = folder.size() + 1;
  if (text.size() <= cut ||
      !EqualBytesNoCase(text.substr(text.size() - cut, folder.size()), folder)) {
    return false;
  }
  path.DeleteRight(static_cast<int>(cut));
  return true;
}

}  // namespace

CurrentUser& CurrentUser::operator=(const CurrentUser& other) {
  if (this == &other) {
    return *this;
  }
  classEntry = other.classEntry;
  studentEntry = other.studentEntry;
  valid = other.valid;
  if (other.teacherEntry == nullptr) {
    ClearTeacher();
  } else {
    SetTeacher(*other.teacherEntry);
  }
  return *this;
}

void CurrentUser::Clear() {
  MakeDefaultEntry(classEntry);
  studentEntry = SLoginNameObj();
  ClearTeacher();
  valid = false;
}

void CurrentUser::SetTeacher(const SLoginNameObj& entry) {
  if (teacherEntry == nullptr) {
    teacherEntry = new (std::nothrow) SLoginNameObj;
  }
  if (teacherEntry != nullptr) {
    *teacherEntry = entry;
  }
}

void CurrentUser::ClearTeacher() {
  delete teacherEntry;
  teacherEntry = nullptr;
}

SApplication::SApplication() : platformName("DLL") {}

SString SApplication::GetProperty(const char* /*key*/) const {
  return dataPath;
}

void SApplication::SetProperty(const char* key, const SString& value) {
  if (EqualBytesNoCase(ViewOf(key), "Data")) {
    dataPath = value;
  }
}

SKivApp::SKivApp() = default;

SKivApp::~SKivApp() {
  if (pendingGame != game) {
    delete pendingGame;
  }
  delete game;
  delete options;
  delete studentLock;
  SelectTeacher(nullptr);
}

SKivTeacherOptionsDob* SKivApp::CreateOptions() {
  return new (std::nothrow) SKivTeacherOptionsDob;
}

SKivTeacherOptionsGameDob* SKivApp::CreateGameOptions() {
  return new (std::nothrow) SKivTeacherOptionsGameDob;
}

bool SKivApp::OnStudentRenamed(const SString&, const SString&, const SString&, const SString&,
                               const SString&, const SString&) {
  return true;
}

bool SKivApp::OnClassRenamed(const SString&, const SString&, const SString&) {
  return true;
}

bool SKivApp::OnStudentMoved(const SString&, const SString&, const SString&, const SString&,
                             const SString&, const SString&) {
  return true;
}

bool SKivApp::OnTeacherRenamed(const SString&, const SString&) {
  return true;
}

bool SKivApp::OnClassMoved(const SString&, const SString&, const SString&) {
  return true;
}

bool SKivApp::HasCurrentStudent() const {
  return currentUser.valid && !DisplayName(currentUser.studentEntry).IsEmpty();
}

void SKivApp::ApplyDataPath() {
  const SString stem = SString::FromResource(kTextClasses);
  if (!CutTrailingFolder(dataPath, stem.View())) {
    CutTrailingFolder(dataPath, ClassesName().View());
  }
}

SString SKivApp::AutoGameName() const {
  return "autogame." + FindFileType(kFileTypeGame).GetExtension();
}

SKivTeacherOptionsDob* SZEPApp::CreateOptions() {
  return new (std::nothrow) STeacherOptionsDob;
}

SKivTeacherOptionsGameDob* SZEPApp::CreateGameOptions() {
  return new (std::nothrow) STeacherOptionsGameDob;
}

SKivGameDob* SZEPApp::CreateGame() {
  return new (std::nothrow) SGameDob;
}

}  // namespace kivstore
