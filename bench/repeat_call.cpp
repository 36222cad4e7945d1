// Runs one command a number of times, for counting what one costs: the difference between two runs
// with different numbers is free of start-up. Prints what the last call answered.
//
//   repeat_call ROOT COMMAND TIMES [STUDENT]     networked store, first teacher, first class
#include <cstdio>
#include <cstdlib>

#include "kivstore/general_proc.h"

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "repeat_call ROOT COMMAND TIMES [STUDENT]\n");
    return 2;
  }
  SGeneralParams params{};
  params.mode = 1;
  params.dataPath = argv[1];
  params.teacherListIndex = params.teacherIndex = params.classListIndex = 1;
  params.studentListIndex = argc > 4 ? std::atoi(argv[4]) : 1;
  params.teacherNameSize = params.classNameSize = params.studentNameSize = 52;
  params.productIdSize = 10;
  const int times = std::atoi(argv[3]);
  for (int i = 0; i < times; ++i) {
    params.command = std::atoi(argv[2]);
    GeneralProc(&params);
  }
  std::printf("result %d, student \"%s\", mission %d, previous %d, vocabulary %d\n", params.result,
              params.studentName, static_cast<int>(params.currentMission),
              static_cast<int>(params.previousMission), static_cast<int>(params.vocabLevel));
  return 0;
}
