// From people's names to folder names of at most eight characters, and back.
//
// "longname.kiv" in an entry's folder says whom the folder belongs to: firstName and lastName, each
// its bytes and one NUL, no header. It is how a folder that has lost its line in the index finds
// its way back.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int kNameWidth = 8;

// "first last", or "last, first"; the first name alone where there is no last name.
SString DisplayName(const SString& first, const SString& last, bool firstFirst = true);
inline SString DisplayName(const SLoginNameObj& entry) {
  return DisplayName(entry.firstName, entry.lastName);
}
// By the application's options: last-first if they separate last names and show them first.
SString SortName(const SLoginNameObj& entry);

// Compares two display names (first-last), letter case ignored, without making them.
int CompareDisplayNames(const SLoginNameObj& a, const SLoginNameObj& b);

bool IsDefaultEntry(const SLoginNameObj* entry);
bool IsTeacherDefaultEntry(const SLoginNameObj* entry);
void MakeDefaultEntry(SLoginNameObj& entry);
void MakeTeacherDefaultEntry(SLoginNameObj& entry);

// The name for first + last that is free in the spec's folder, without extension: letters and
// digits only, then fewer vowels, then cut to the width, then varied at the end until it is free.
// `exists` says that the folder found already belongs to this very name; with an extension, only
// that the first try was taken. When all variants are taken the last one is returned. The spec ends
// on the folder.
SString DeriveName(SFileSpec& spec, const SString& first, const SString& last, const char* fallback,
                   int width, bool& exists, const SString& extension);
SString DeriveFolderName(SFileSpec& spec, const SString& first, const SString& last, bool& exists);
SString DeriveFileName(SFileSpec& spec, const SString& name, bool& exists,
                       const SString& extension);

// Puts the next digit at `position`; true when it moves on to the position before. A position
// outside the text leaves the text as it is for that try.
bool NextVariant(SString& text, int& position, int& digit);

// `spec` stands on the entry's folder.
void WriteLongName(const SFileSpec& spec, const SString& first, const SString& last);
// False if the file is missing or cannot be opened; the texts are then as they were. `last` stays
// as it was where the file ends within the first text.
bool ReadLongName(const SFileSpec& file, SString& first, SString& last);

}  // namespace kivstore
