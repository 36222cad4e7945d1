// From what a OneRoster bundle says to the lines of a roster: one teacher a class, and whose
// classes are whose.
#pragma once

#include "hosts/kivadmin/roster_files/one_roster.h"

namespace kivadmin {

// Of a class's teachers the primary one is taken, of several the first by family name. Classes of
// one title are told apart by their codes. Throws wrong usage where the school or the term that is
// told is not there, and where several schools are and none is told.
void TakeOneRoster(const OneRoster& bundle, const RosterFormat& format, RosterFile& roster);

}  // namespace kivadmin
