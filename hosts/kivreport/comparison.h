// A report beside those that were kept of other days. Students are found again by teacher, class
// and name; who is not there but has a name that both reports have once has changed class. What is
// not sure is said and gets no number.
#pragma once

#include <string>

#include "hosts/kivreport/kept_report.h"
#include "hosts/kivreport/model.h"
#include "hosts/kivreport/selection.h"

namespace kivreport {

// Tells of each student of the report what has become of him, and who is not there any more of
// those that the selectors take. `file` is where the older report comes from.
void CompareWith(Report& report, const KeptReport& before, const std::string& file,
                 const Selection& selection);

// The history of a folder of kept reports. What is none of them is passed over, and said in
// `passed`.
void AddHistory(Report& report, const std::string& folder, std::vector<std::string>& passed);

}  // namespace kivreport
