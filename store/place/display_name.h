// How the names of entries are shown and compared, and the names of the default entries.
#pragma once

#include "foundation/text/string.h"
#include "store/place/login_name.h"
#include "store/place/site.h"

namespace kivstore {

// "first last", or "last, first"; the first name alone where there is no last name.
SString DisplayName(const SString& first, const SString& last, bool firstFirst = true);
inline SString DisplayName(const SLoginNameObj& entry) {
  return DisplayName(entry.firstName, entry.lastName);
}
// By the options in force: last-first if they separate last names and show them first.
SString SortName(const SSite& site, const SLoginNameObj& entry);

// Compares two display names (first-last), letter case ignored, without making them.
int CompareDisplayNames(const SLoginNameObj& a, const SLoginNameObj& b);
// By display name; `exact` compares bytes.
bool SameName(const SLoginNameObj& entry, const SString& first, const SString& last, bool exact);

bool IsDefaultEntry(const SLoginNameObj* entry);
bool IsTeacherDefaultEntry(const SLoginNameObj* entry);
void MakeDefaultEntry(SLoginNameObj& entry);
void MakeTeacherDefaultEntry(SLoginNameObj& entry);

}  // namespace kivstore
