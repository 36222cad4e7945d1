#include "app/library_state.h"

namespace kivstore {

SLibraryState& LibraryState() {
  static SLibraryState state;
  return state;
}

}  // namespace kivstore
