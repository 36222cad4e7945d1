// Wine is Windows but for a few rules that its file system does not keep. A test that needs one of
// these asks here.
#pragma once

namespace kivtest {

bool RunsUnderWine();

}  // namespace kivtest
