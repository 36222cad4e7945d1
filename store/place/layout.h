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
// Each operation overwrites the spec it is given and answers nothing: the caller looks at the
// spec's flags. A folder that is missing on the way is made where the file services make folders.
#pragma once

#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"
#include "platform/text_numbers.h"

namespace kivstore {

// String numbers of the tree's names.

// The stem of string 16500 or 16511 with the game type's extension.
SString ClassesName(int stem = kTextClasses);

// Whether a name from a file of the store names something in a folder: not empty, without
// separators, and not of dots and blanks alone, which would lead elsewhere.
bool IsSafeName(const SString& name);
// The one way down by a folder name that an index has told: Down, but a name that is not safe
// resets the spec and answers false.
bool DownToEntry(SFileSpec& spec, const SLoginNameObj& entry);

void TeachersFolder(SFileSpec& spec);
// Null: the first teacher of the list, who is selected.
void TeacherFolder(SFileSpec& spec, const SLoginNameObj* teacher);
void ClassesFolder(SFileSpec& spec, SString& pathOut, bool removable);
void StudentsFolder(SFileSpec& spec, const SLoginNameObj& classEntry, bool removable);
void SharedFolder(SFileSpec& spec, const SLoginNameObj& classEntry);
// Without a class the classes folder, and a student is ignored.
void EntryFolder(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 bool removable, bool mustExist);
void OptionsFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student);
void TopScoreFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student);
// OptionsFile for any file of the entry's folder.
void EntryFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student,
               const SString& fileName);

// Whether the caller should try again: never, as there is nobody to ask.
bool ReportStoreFailure(const SString& path, bool removable);

}  // namespace kivstore
