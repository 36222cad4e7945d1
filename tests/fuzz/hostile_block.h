// A host's parameter block, filled as the input says, and what a call may do to it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "kivstore/general_proc.h"
#include "tests/fuzz/fuzz_target.h"

namespace kivtest {

class HostileBlock {
 public:
  explicit HostileBlock(FuzzInput& input) : block(new SGeneralParams) {
    std::memset(static_cast<void*>(block.get()), input.Byte(), sizeof *block);
    block->command = input.Number();
    block->mode = input.Byte();
    block->teacherIndex = block->teacherListIndex = input.Number();
    block->classIndex = input.Number();
    block->classListIndex = input.Number();
    block->studentListIndex = input.Number();
    block->teacherNameSize = block->classNameSize = block->studentNameSize = input.Number();
    block->productIdSize = static_cast<int16_t>(input.Number());
  }

  // Calls the library and looks at every byte of the block.
  void Call(const std::string& dataPath) {
    block->dataPath = dataPath.c_str();
    SGeneralParams expected = *block;
    GeneralProc(block.get());
    Require(block->result <= 1, "every call leaves a result of 0 or 1");
    expected.result = block->result;
    TakeAnswer(expected);
    Require(std::memcmp(&expected, block.get(), sizeof expected) == 0,
            "nothing is written beside the command's own fields");
  }

 private:
  // What a command may write.
  void TakeAnswer(SGeneralParams& to) const {
    switch (to.command) {
      case KIV_COUNT_TEACHERS:
      case KIV_CACHE_TEACHERS:
        to.topCount = block->topCount;
        break;
      case KIV_TEACHER_NAME:
      case KIV_CACHED_TEACHER_NAME:
        TakeText(to, block->teacherName, to.teacherNameSize);
        break;
      case KIV_COUNT_CLASSES:
      case KIV_CACHE_CLASSES:
        to.classCount = block->classCount;
        break;
      case KIV_CLASS_NAME:
      case KIV_CACHED_CLASS_NAME:
        to.classIndex = block->classIndex;
        TakeText(to, block->className, to.classNameSize);
        break;
      case KIV_COUNT_STUDENTS:
      case KIV_CACHE_STUDENTS:
        to.studentCount = block->studentCount;
        break;
      case KIV_STUDENT_PROGRESS:
        to.currentMission = block->currentMission;
        to.previousMission = block->previousMission;
        to.vocabLevel = block->vocabLevel;
        [[fallthrough]];
      case KIV_CACHED_STUDENT_NAME:
        to.studentIndex = block->studentIndex;
        TakeText(to, block->studentName, to.studentNameSize);
        break;
      case KIV_PRODUCT_ID:
        to.productGeneration = block->productGeneration;
        TakeText(to, block->productId, to.productIdSize);
        break;
      default:
        break;
    }
  }
  // A text may be written as far as the host says it has room, but never out of the block.
  void TakeText(SGeneralParams& to, const char* text, int32_t room) const {
    const auto offset = static_cast<size_t>(text - reinterpret_cast<const char*>(block.get()));
    const std::string shown(text, std::min(static_cast<size_t>(std::max(room, 0)),
                                           offsetof(SGeneralParams, gapF6) - offset));
    shown.copy(reinterpret_cast<char*>(&to) + offset, shown.size());
    const size_t end = std::min(shown.find('\0'), shown.size());
    Require(to.result == 0 || shown.empty() || end < shown.size(), "a text ends in NUL");
    Require(to.result == 0 || shown.find_first_not_of('\0', end) == std::string::npos,
            "behind a text all is NUL");
  }

  // On the heap, so that a byte written behind it is seen.
  std::unique_ptr<SGeneralParams> block;
};

}  // namespace kivtest
