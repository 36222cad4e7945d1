// Puts right what a death or a full disk has left half written: names that the index and
// longname.kiv tell differently or that one of them lacks, and files of no bytes, which count as
// none.
#pragma once

#include <functional>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// The lists as any listing repairs them first; `classDone` after each class. Throws where a list
// cannot be had or written.
void MendStore(const Session& session, const std::function<void()>& classDone);

}  // namespace kivadmin
