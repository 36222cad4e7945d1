// The report as a page for a browser: one file, which needs nothing beside it.
//
// Its security policy admits its own style and script, by their hashes, and nothing else: no
// request leaves the page whatever a name in a store holds. Everything can be read without the
// script, which sorts and searches.
#pragma once

#include <ostream>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// With `sheets` each student is shown alone, with all that is known.
void WritePage(std::ostream& out, const Report& report, Language language, bool sheets);

}  // namespace kivreport
