// What has become of students since an older report, on the page.
#pragma once

#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// "new", "from another class"; a note behind it that says what is not sure, or where from.
std::string ChangeInWords(const Change& change, const Words& words);

// The same for a cell of a table, and ahead of it by how many missions: "+2".
std::string ChangeMarkup(const Change& change, const Words& words);

// Who is not there any more; empty if nothing was compared or nobody left.
std::string LeftSection(const Report& report, const Words& words);

}  // namespace kivreport
