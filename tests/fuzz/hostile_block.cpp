#include "tests/fuzz/hostile_block.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "tests/fuzz/require.h"

namespace kivtest {
namespace {

constexpr size_t kBlockEnd = offsetof(SGeneralParams, gapF6);

struct Field {
  size_t offset;
  size_t size;
};

#define FIELD(name)                                              \
  Field {                                                        \
    offsetof(SGeneralParams, name), sizeof(SGeneralParams::name) \
  }

// A text may be written as far as the host says it has room, but never out of the block.
Field TextField(size_t offset, int32_t size) {
  return {offset, std::min(static_cast<size_t>(std::max(size, 0)), kBlockEnd - offset)};
}

bool HasText(int32_t command, Field& text, const SGeneralParams& in) {
  switch (command) {
    case KIV_TEACHER_NAME:
    case KIV_CACHED_TEACHER_NAME:
      text = TextField(offsetof(SGeneralParams, teacherName), in.teacherNameSize);
      return true;
    case KIV_CLASS_NAME:
    case KIV_CACHED_CLASS_NAME:
      text = TextField(offsetof(SGeneralParams, className), in.classNameSize);
      return true;
    case KIV_STUDENT_PROGRESS:
    case KIV_CACHED_STUDENT_NAME:
      text = TextField(offsetof(SGeneralParams, studentName), in.studentNameSize);
      return true;
    case KIV_PRODUCT_ID:
      text = TextField(offsetof(SGeneralParams, productId), in.productIdSize);
      return true;
    default:
      return false;
  }
}

// What the command may write, but for its text.
std::vector<Field> NumbersOf(int32_t command) {
  switch (command) {
    case KIV_COUNT_TEACHERS:
    case KIV_CACHE_TEACHERS:
      return {FIELD(result), FIELD(topCount)};
    case KIV_COUNT_CLASSES:
    case KIV_CACHE_CLASSES:
      return {FIELD(result), FIELD(classCount)};
    case KIV_CLASS_NAME:
    case KIV_CACHED_CLASS_NAME:
      return {FIELD(result), FIELD(classIndex)};
    case KIV_COUNT_STUDENTS:
    case KIV_CACHE_STUDENTS:
      return {FIELD(result), FIELD(studentCount)};
    case KIV_STUDENT_PROGRESS:
      return {FIELD(result), FIELD(studentIndex), FIELD(currentMission), FIELD(previousMission),
              FIELD(vocabLevel)};
    case KIV_CACHED_STUDENT_NAME:
      return {FIELD(result), FIELD(studentIndex)};
    case KIV_PRODUCT_ID:
      return {FIELD(result), FIELD(productGeneration)};
    default:
      return {FIELD(result)};
  }
}

#undef FIELD

std::string ImageOf(const SGeneralParams& block) {
  return {reinterpret_cast<const char*>(&block), sizeof block};
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
  CheckWritten(in);
  if (block->result == 1) {
    CheckAnswer(in);
  }
}

void HostileBlock::CheckWritten(const SGeneralParams& in) const {
  std::string before = ImageOf(in);
  std::string after = ImageOf(*block);
  std::vector<Field> fields = NumbersOf(in.command);
  Field text;
  if (HasText(in.command, text, in)) {
    fields.push_back(text);
  }
  for (const Field& field : fields) {
    before.replace(field.offset, field.size, field.size, '\0');
    after.replace(field.offset, field.size, field.size, '\0');
  }
  Require(before == after, "nothing is written beside the command's own fields");
}

void HostileBlock::CheckAnswer(const SGeneralParams& in) const {
  Field text;
  if (!HasText(in.command, text, in) || text.size == 0) {
    return;
  }
  const std::string shown = ImageOf(*block).substr(text.offset, text.size);
  const size_t end = shown.find('\0');
  Require(end != std::string::npos, "a text ends in NUL");
  Require(shown.find_first_not_of('\0', end) == std::string::npos, "behind a text all is NUL");
}

}  // namespace kivtest
