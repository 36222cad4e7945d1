#include "store/place/placing.h"

#include <utility>

#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

// The names from the data root down to a place, gone in one look where that is possible.
class Way {
 public:
  explicit Way(const SString& root) : root(root) {}

  Way& Down(const SString& name) {
    names[count++] = name;
    isSafe = isSafe && IsSafeName(name);
    return *this;
  }
  // As Down, for a name that an index has told.
  Way& DownToEntry(const SLoginNameObj& entry) {
    leadsElsewhere = leadsElsewhere || !IsSafeName(entry.folderName);
    return Down(entry.folderName);
  }

  void Go(SFileSpec& spec) const {
    if (leadsElsewhere) {
      spec.Reset();
    } else if (!GoAtOnce(spec)) {
      GoInSteps(spec);
    }
  }

 private:
  // False, with the spec as it was, unless all but the last name are there.
  bool GoAtOnce(SFileSpec& spec) const {
    const int length = root.GetLength();
    if (length == 0 || !isSafe) {
      return false;
    }
    SString path = root;
    if (!IsSeparator(root.GetAt(length - 1))) {
      path += '\\';
    } else if (IsSeparator(root.GetAt(length - 2))) {
      return false;
    }
    for (int i = 0; i < count; ++i) {
      if (i > 0) {
        path += '\\';
      }
      path += names[i];
    }
    const SFileSpec placed(path);
    if (!placed.IsValid()) {
      return false;
    }
    spec = placed;
    return true;
  }

  void GoInSteps(SFileSpec& spec) const {
    spec.Set(root);
    for (int i = 0; i < count && spec.Down(names[i]); ++i) {
    }
  }

  static constexpr int kLongest = 8;
  const SString root;
  SString names[kLongest];
  int count = 0;
  bool isSafe = true;
  bool leadsElsewhere = false;
};

Way ToTeachers(const SSite& site) {
  return Way(site.GetDataRoot()).Down(ClassesName(kTextTeacherClasses));
}

// Not with a teacher level and nobody selected.
Way ToClasses(const SSite& site, bool removable = false) {
  if (!site.HasTeacherTier()) {
    return Way(site.GetDataRoot(removable)).Down(ClassesName());
  }
  return ToTeachers(site).DownToEntry(*site.GetCurrentTeacher()).Down(ClassesName());
}

bool HasClasses(const SSite& site) {
  return !site.HasTeacherTier() || site.GetCurrentTeacher() != nullptr;
}

void AddEntry(Way& way, const SLoginNameObj& classEntry, const SLoginNameObj* student) {
  way.DownToEntry(classEntry);
  if (student == nullptr) {
    return;
  }
  way.Down(CachedText<kTextStudents>());
  if (!student->folderName.IsEmpty()) {
    way.DownToEntry(*student);
  }
}

void ClassSubfolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& classEntry,
                    const SString& name) {
  if (!HasClasses(site)) {
    spec.Reset();
    return;
  }
  ToClasses(site).DownToEntry(classEntry).Down(name).Go(spec);
}

}  // namespace

void TeachersFolder(const SSite& site, SFileSpec& spec) {
  site.HasTeacherTier() ? ToTeachers(site).Go(spec) : ClassesFolder(site, spec);
}

void TeacherFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& teacher) {
  ToTeachers(site).DownToEntry(teacher).Go(spec);
}

void ClassesFolder(const SSite& site, SFileSpec& spec, bool removable) {
  HasClasses(site) ? ToClasses(site, removable).Go(spec) : spec.Reset();
}

void StudentsFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& classEntry) {
  ClassSubfolder(site, spec, classEntry, CachedText<kTextStudents>());
}

void SharedFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& classEntry) {
  ClassSubfolder(site, spec, classEntry, CachedText<kTextShared>());
}

void EntryFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                 const SLoginNameObj* student, bool removable) {
  if (!HasClasses(site)) {
    spec.Reset();
    return;
  }
  Way way = ToClasses(site, removable);
  if (classEntry != nullptr) {
    AddEntry(way, *classEntry, student);
  }
  way.Go(spec);
}

void EntryFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
               const SLoginNameObj* student, const SString& fileName) {
  if (!HasClasses(site)) {
    spec.Reset();
    return;
  }
  Way way = ToClasses(site);
  if (classEntry != nullptr) {
    AddEntry(way, *classEntry, student);
  }
  way.Down(fileName).Go(spec);
}

void EntryFileToOpen(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                     const SLoginNameObj* student, const SString& fileName) {
  SFileSpec folder = site.GetCountedClasses();
  if (classEntry != nullptr) {
    folder = ListedFolder(folder, classEntry->folderName);
    if (student != nullptr) {
      folder = ListedFolder(folder, CachedText<kTextStudents>());
      folder = ListedFolder(folder, student->folderName);
    }
  }
  if (folder.DownAssumed(fileName.GetText())) {
    spec = std::move(folder);
  } else {
    EntryFile(site, spec, classEntry, student, fileName);
  }
}

void OptionsFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                 const SLoginNameObj* student) {
  EntryFile(site, spec, classEntry, student, CachedText<kTextOptionsFile>());
}

void TopScoreFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student) {
  EntryFile(site, spec, classEntry, student, CachedText<kTextTopScoreFile>());
}

SFileSpec ListedFolder(const SFileSpec& list, const SString& folderName) {
  SFileSpec folder;
  if (list.IsExistingFolder() && IsSafeName(folderName)) {
    FolderEntry listed{folderName.GetText(), folderName.GetLength(), {}};
    listed.attributes.folder = true;
    folder.SetFromEntry(list.GetPath(), listed);
  }
  return folder;
}

bool DownToEntry(SFileSpec& spec, const SLoginNameObj& entry) {
  if (IsSafeName(entry.folderName)) {
    return spec.Down(entry.folderName);
  }
  spec.Reset();
  return false;
}

bool DownToClasses(SFileSpec& spec) {
  return spec.Down(ClassesName());
}

}  // namespace kivstore
