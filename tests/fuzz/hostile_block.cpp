#include "tests/fuzz/hostile_block.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace kivtest {
namespace {

struct Field {
  size_t offset, size;
};

#define FIELD(name)                                              \
  Field {                                                        \
    offsetof(SGeneralParams, name), sizeof(SGeneralParams::name) \
  }

constexpr Field kNoText{};
constexpr Field kTeacherName = FIELD(teacherName);
constexpr Field kClassName = FIELD(className);
constexpr Field kStudentName = FIELD(studentName);

// What the commands may write beside `result`: a text, and numbers.
const struct {
  int32_t commands[2];
  Field text;
  std::vector<Field> numbers;
} kAnswers[] = {
    {{KIV_COUNT_TEACHERS, KIV_CACHE_TEACHERS}, kNoText, {FIELD(topCount)}},
    {{KIV_TEACHER_NAME, KIV_CACHED_TEACHER_NAME}, kTeacherName, {}},
    {{KIV_COUNT_CLASSES, KIV_CACHE_CLASSES}, kNoText, {FIELD(classCount)}},
    {{KIV_CLASS_NAME, KIV_CACHED_CLASS_NAME}, kClassName, {FIELD(classIndex)}},
    {{KIV_COUNT_STUDENTS, KIV_CACHE_STUDENTS}, kNoText, {FIELD(studentCount)}},
    {{KIV_CACHED_STUDENT_NAME}, kStudentName, {FIELD(studentIndex)}},
    {{KIV_STUDENT_PROGRESS},
     kStudentName,
     {FIELD(studentIndex), FIELD(currentMission), FIELD(previousMission), FIELD(vocabLevel)}},
    {{KIV_PRODUCT_ID}, FIELD(productId), {FIELD(productGeneration)}},
};

// A text may be written as far as the host says it has room, but never out of the block.
Field Room(Field text, const SGeneralParams& in) {
  const int32_t size =
      text.offset == offsetof(SGeneralParams, productId) ? in.productIdSize : in.studentNameSize;
  return {text.offset, std::min(static_cast<size_t>(std::max(size, 0)),
                                offsetof(SGeneralParams, gapF6) - text.offset)};
}

std::string ImageOf(const SGeneralParams& block) {
  return {reinterpret_cast<const char*>(&block), sizeof block};
}

void CheckText(const std::string& shown) {
  const size_t end = shown.find('\0');
  Require(shown.empty() || end != std::string::npos, "a text ends in NUL");
  Require(shown.find_first_not_of('\0', end) == std::string::npos, "behind a text all is NUL");
}

}  // namespace

HostileBlock::HostileBlock(FuzzInput& input) : block(new SGeneralParams) {
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

void HostileBlock::Call(const char* dataPath) {
  block->dataPath = dataPath;
  const SGeneralParams in = *block;
  GeneralProc(block.get());
  Require(block->result <= 1, "every call leaves a result of 0 or 1");
  std::vector<Field> written{FIELD(result)};
  for (const auto& answer : kAnswers) {
    if (in.command > 0 && std::count(answer.commands, answer.commands + 2, in.command) > 0) {
      const Field text = answer.text.offset != 0 ? Room(answer.text, in) : kNoText;
      written.insert(written.end(), answer.numbers.begin(), answer.numbers.end());
      written.push_back(text);
      CheckText(block->result == 1 ? ImageOf(*block).substr(text.offset, text.size) : "");
    }
  }
  std::string before = ImageOf(in), after = ImageOf(*block);
  for (const Field& field : written) {
    before.replace(field.offset, field.size, field.size, '\0');
    after.replace(field.offset, field.size, field.size, '\0');
  }
  Require(before == after, "nothing is written beside the command's own fields");
}

#undef FIELD

}  // namespace kivtest
