// A store is never shown empty: the three rules by which placing a spec fills a hole. Where the
// file services make nothing the rules run to their failure.
#pragma once

#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"

namespace kivstore {

// `spec` stands on the teachers folder of a store without teachers: adds and selects the default
// teacher and goes down to its folder.
void AddDefaultTeacher(SFileSpec& spec);

// `spec` stands on the classes folder: adds the default class to a list without entries. False when
// that failed and the store failure is to be reported.
bool FillEmptyClassList(SFileSpec& spec);

// `spec` stands on a class's missing folder: adds the class anew and goes down to its folder.
void RestoreClassFolder(SFileSpec& spec, const SLoginNameObj& classEntry);

}  // namespace kivstore
