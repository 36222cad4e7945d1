#include "hosts/kivadmin/rosters/rosters.h"

#include <algorithm>

#include "hosts/common/failure_text.h"
#include "hosts/common/unicode.h"
#include "store/list/listing.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;

bool IsNamed(const SLoginNameObj& entry, const SString& display) {
  return kivhost::EqualNoCase(DisplayName(entry).View(), display.View());
}

// Placing stays on the first name that is missing: only the last one of the way is made.
SFileSpec MadeIfMissing(SFileSpec spec, const SString& name) {
  if (spec.GetFileName() == name) {
    spec.EnsureFolder();
  }
  return spec;
}

// Whether the list itself could not be read, and not only somebody who is not listed yet.
bool IsOfList(const SFailure& failure, const SFileSpec& folder) {
  SFileSpec index(folder);
  index.DownAssumed(CachedText<kTextIndexFile>().GetText());
  return failure && (failure.path == folder.GetPath() || failure.path == index.GetPath());
}

Roster Load(const Session& session, const SFileSpec& folder, ListKind kind) {
  Roster roster{folder, {}};
  SSite& site = session.Site();
  // A folder that would be made, if anything could change, is an empty list. One that could not be
  // looked at is none.
  if (!folder.IsExistingFolder()) {
    site.ClearFailure();
    site.NoteFailure(FailureKind::kMissing, folder.GetPath(), kind);
    if (site.GetFailure().kind != FailureKind::kMissing) {
      throw kivhost::Unable("read the list", site.GetFailure());
    }
    if (session.IsLooking()) {
      return roster;
    }
  }
  SLockFile lock(site);
  session.TakeIndexLock(lock, folder, kind);
  site.ClearFailure();
  LoadLoginsAt(site, roster.list, folder, kind, true, false);
  if (IsOfList(site.GetFailure(), folder)) {
    throw kivhost::Unable("read the list", site.GetFailure());
  }
  return roster;
}

SLoginNameObj& AtPlace(Roster& roster, long place, const std::string& name,
                       const std::string& level) {
  if (place < 1) {
    throw HostError(kWrongUsage, name + ": a place in a list is # and a number from 1");
  }
  const int32_t count = roster.list.GetSize();
  if (place > count) {
    throw HostError(kRefused,
                    "no " + level + ' ' + name + ": the list has " + std::to_string(count));
  }
  return roster.list[static_cast<int32_t>(place - 1)];
}

// "there are: Mr Fox, Ms Hill"; of a long list the first.
std::string WhoIsThere(const Session& session, const Roster& roster) {
  constexpr int32_t kMost = 5;
  const int32_t count = roster.list.GetSize();
  if (count == 0) {
    return "the list is empty";
  }
  std::string text = count == 1 ? "there is: " : "there are: ";
  for (int32_t i = 0; i < std::min(count, kMost); ++i) {
    text += (i > 0 ? ", " : "") + session.Show(DisplayName(*roster.list.At(i)));
  }
  return text + (count > kMost ? " and " + std::to_string(count - kMost) + " more" : "");
}

}  // namespace

SFileSpec ClassesFolder(const Session& session) {
  SFileSpec spec;
  kivstore::ClassesFolder(session.Site(), spec);
  return session.HasTeachers() ? MadeIfMissing(spec, ClassesName()) : spec;
}

SFileSpec StudentsFolder(const Session& session, const SLoginNameObj& classEntry) {
  SFileSpec spec;
  kivstore::StudentsFolder(session.Site(), spec, classEntry);
  return MadeIfMissing(spec, CachedText<kTextStudents>());
}

Roster Teachers(const Session& session) {
  return Load(session, session.TopFolder(), ListKind::kTeachers);
}

Roster Classes(const Session& session) {
  return Load(session, ClassesFolder(session), ListKind::kClasses);
}

Roster Students(const Session& session, const SLoginNameObj& classEntry) {
  return Load(session, StudentsFolder(session, classEntry), ListKind::kStudents);
}

SLoginNameObj& Find(const Session& session, Roster& roster, const std::string& name,
                    const std::string& level) {
  if (const auto place = PlaceOf(name)) {
    return AtPlace(roster, *place, name, level);
  }
  session.ToStore(name, level);
  // The better way to be the same first: who is called so to the letter is meant, whoever else is.
  using IsSame = bool (*)(const std::string& a, const std::string& b);
  for (const IsSame isSame :
       {IsSame([](const std::string&a, const std::string&b) { return a == b; }),
        IsSame([](const std::string&a, const std::string&b) {
          return kivhost::EqualLetters(a, b);
        })}) {
    SLoginNameObj* found = nullptr;
    for (SLoginNameObj& entry : roster.list) {
      if (!isSame(session.Show(DisplayName(entry)), name)) {
        continue;
      }
      if (found != nullptr) {
        throw HostError(kRefused, "more than one " + level + " \"" + name + "\": say which by #N");
      }
      found = &entry;
    }
    if (found != nullptr) {
      return *found;
    }
  }
  throw HostError(kRefused, "no " + level + " \"" + name + "\"; " + WhoIsThere(session, roster));
}

const SLoginNameObj* FindName(const Roster& roster, const SString& first, const SString& last) {
  const SString display = DisplayName(first, last);
  for (const SLoginNameObj& entry : roster.list) {
    if (IsNamed(entry, display)) {
      return &entry;
    }
  }
  return nullptr;
}

std::string LikeText(const Session& session, const Roster& roster, const SLoginNameObj& entry) {
  const std::string name = session.Show(DisplayName(entry));
  for (const SLoginNameObj& other : roster.list) {
    if (!IsNamed(other, DisplayName(entry)) &&
        kivhost::EqualLetters(session.Show(DisplayName(other)), name)) {
      return "; there is " + session.Show(other) + " too";
    }
  }
  return "";
}

void ChooseTeacher(const Session& session, const std::string& name) {
  if (session.HasTeachers()) {
    const SLoginNameObj teacher = FindTeacher(session, name);
    session.Site().SelectTeacher(&teacher);
  } else if (!name.empty()) {
    RequireTeachers(session);
  }
}

SLoginNameObj FindTeacher(const Session& session, const std::string& name) {
  Roster roster = Teachers(session);
  if (!name.empty()) {
    return Find(session, roster, name, "teacher");
  }
  if (roster.list.IsEmpty()) {
    throw HostError(kRefused, "the store has no teacher yet");
  }
  if (roster.list.GetSize() > 1) {
    throw HostError(kWrongUsage, "--teacher is needed: the store has " +
                                     std::to_string(roster.list.GetSize()) + " teachers");
  }
  return roster.list[0];
}

SLoginNameObj FindClass(const Session& session, const std::string& name) {
  Roster roster = Classes(session);
  return Find(session, roster, name, "class");
}

SLoginNameObj FindStudent(const Session& session, const SLoginNameObj& classEntry,
                          const std::string& name) {
  Roster roster = Students(session, classEntry);
  return Find(session, roster, name, "student");
}

void RequireTeachers(const Session& session) {
  if (!session.HasTeachers()) {
    throw HostError(kWrongUsage, std::string("a store of the kind ") + NameOf(session.Kind()) +
                                     " has no teachers");
  }
}

std::string TeacherText(const Session& session) {
  const SLoginNameObj* const teacher = session.Site().GetCurrentTeacher();
  return teacher != nullptr ? "teacher " + session.Show(*teacher) : "";
}

std::string OfTeacher(const Session& session) {
  const std::string teacher = TeacherText(session);
  return teacher.empty() ? "" : " of " + teacher;
}

}  // namespace kivadmin
