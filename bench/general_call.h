// One block for the benchmarks, set up for a networked store.
#pragma once

#include <string>

#include "kivstore/general_proc.h"

namespace kivbench {

struct Block : SGeneralParams {
  explicit Block(const std::string& root) : SGeneralParams{}, root(root) {
    mode = 1;
    dataPath = this->root.c_str();
    teacherListIndex = teacherIndex = classListIndex = studentListIndex = 1;
    teacherNameSize = classNameSize = studentNameSize = 52;
  }
  bool Call(int number) {
    command = number;
    GeneralProc(this);
    return result == 1;
  }
  std::string root;
};

}  // namespace kivbench
