// The store's tree and the operations that place a spec on any point of it. All path knowledge of
// the system is here. "Classes.zep" below is the stem of the string table and the game type's
// extension.
//
//   root/Classes.zep/                   without a teacher level: the class list
//     index.kiv options.kiv topScore.kiv last.kiv
//     class/                             longname.kiv options.kiv topScore.kiv last.kiv
//       Shared/
//       Students/                        index.kiv
//         student/                       longname.kiv options.kiv last.kiv index.kiv autogame.zep
//         ...
//
//   root/Classes.zep/                    with a teacher level: the teacher list
//     index.kiv
//     teacher/                           longname.kiv
//       Classes.zep/                     this teacher's class list, as above
//
// Beside each index.kiv and options.kiv of a shared store stands a .lok file.
//
// Placing takes no lock, counts nothing and makes nothing: it is one look at the disk where the
// whole way is there. Each operation overwrites the spec it is given and answers nothing: the
// caller looks at the spec's flags. Where the way breaks off the spec stays on the first name that
// is missing; a name from an index that leads elsewhere resets it. What the system's rules add to a
// store on its first use are calls of their own (store/change/default_entries.h).
#pragma once

#include "foundation/files/file_spec.h"
#include "store/place/login_name.h"
#include "store/place/site.h"

namespace kivstore {

// The folder that lists teachers; without a teacher level the class list.
void TeachersFolder(const SSite& site, SFileSpec& spec);
void TeacherFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& teacher);
// Of the selected teacher. With a teacher level and nobody selected there is none: the spec is
// reset.
void ClassesFolder(const SSite& site, SFileSpec& spec, bool removable = false);
void StudentsFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& classEntry);
void SharedFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj& classEntry);
// Without a class the classes folder, and a student is ignored. A student without a folder name,
// who is nobody, stays on the students' folder.
void EntryFolder(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                 const SLoginNameObj* student, bool removable = false);
// A file of the entry's folder.
void EntryFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
               const SLoginNameObj* student, const SString& fileName);
// EntryFile for a file that is about to be opened: where this call knows the class list to be there
// the opening is the look at the disk, and the spec takes the file to exist.
void EntryFileToOpen(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                     const SLoginNameObj* student, const SString& fileName);
void OptionsFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                 const SLoginNameObj* student);
void TopScoreFile(const SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student);

// The folder of an entry that a listing of `list` has just shown: no look at the disk.
SFileSpec ListedFolder(const SFileSpec& list, const SString& folderName);
// The one step down by a folder name that an index has told: Down, but a name that is not safe
// resets the spec and answers false.
bool DownToEntry(SFileSpec& spec, const SLoginNameObj& entry);
// The teacher's folder that lists classes, from the teacher's own.
bool DownToClasses(SFileSpec& spec);

}  // namespace kivstore
