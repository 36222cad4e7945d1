// Plays a fixed row of calls against one store through the public header and the shared library,
// and prints every block that comes back. The same source on both systems, so what it prints and
// what it leaves of the store can be compared byte for byte.
//
//   play_calls DATA_ROOT
#include <kivstore/general_proc.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

constexpr size_t kFirstOutput = 0x10;
constexpr size_t kLastOutput = 0xF6;
constexpr int kSizes[] = {52, 52, 52, 7, 1, 0, -1};
constexpr int kStrangeCommands[] = {-1, 0, 7, 15, 77, 79, 2147483647};

class Player {
 public:
  explicit Player(const char* root) : root(root) {}

  // The whole roster through one chain of commands, with indices around both ends of each list.
  void Walk(uint8_t walkMode, bool cached) {
    mode = walkMode;
    const int chain = cached ? KIV_CACHE_TEACHERS : KIV_COUNT_TEACHERS;
    Call(chain);
    const int teachers = block.result ? block.topCount : 1;
    for (int teacher = 0; teacher <= teachers + 1; ++teacher) {
      in.teacherListIndex = in.teacherIndex = teacher;
      Call(chain + 1);
      Call(chain + 2);
      const int classes = block.result ? block.classCount : 0;
      for (int group = 0; group <= classes + 1; ++group) {
        in.classListIndex = group;
        Call(chain + 3);
        in.classIndex = block.result ? block.classIndex : group - 1;
        WalkStudents(chain);
      }
    }
  }

  void PlayStrangeCommands() {
    for (const int command : kStrangeCommands) {
      Call(command);
    }
    for (const int size : {10, 4, 1, 0, -1}) {
      in.productIdSize = static_cast<int16_t>(size);
      Call(KIV_PRODUCT_ID);
    }
    Call(KIV_ANY_ENTRIES);
  }

 private:
  void WalkStudents(int chain) {
    Call(chain + 4);
    const int students = block.result ? block.studentCount : 0;
    for (int student = 0; student <= students + 1; ++student) {
      in.studentListIndex = student;
      Call(chain + 5);
      if (chain == KIV_CACHE_TEACHERS) {
        Call(KIV_STUDENT_PROGRESS);
      }
    }
  }

  // Sizes go round, so that each command meets each of them.
  void Call(int command) {
    std::memset(&block, '~', sizeof block);
    const int size = kSizes[calls++ % (sizeof kSizes / sizeof *kSizes)];
    block.command = command;
    block.mode = mode;
    block.dataPath = root;
    block.teacherListIndex = in.teacherListIndex;
    block.teacherIndex = in.teacherIndex;
    block.classListIndex = in.classListIndex;
    block.classIndex = in.classIndex;
    block.studentListIndex = in.studentListIndex;
    block.teacherNameSize = block.classNameSize = block.studentNameSize = size;
    block.productIdSize = in.productIdSize;
    GeneralProc(&block);
    Print();
  }

  void Print() const {
    const unsigned char* const bytes = reinterpret_cast<const unsigned char*>(&block);
    std::printf("%d mode %d: %d ", block.command, block.mode, block.result);
    for (size_t i = kFirstOutput; i < kLastOutput; ++i) {
      std::printf("%02x", bytes[i]);
    }
    std::printf("\n");
  }

  const char* root;
  uint8_t mode = 0;
  unsigned calls = 0;
  SGeneralParams in{};
  SGeneralParams block{};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    return 2;
  }
  Player player(argv[1]);
  for (const uint8_t mode : {uint8_t{0}, uint8_t{1}, uint8_t{0}}) {  // the teacher tier latches
    player.PlayStrangeCommands();
    player.Walk(mode, false);
    player.Walk(mode, true);
  }
  return 0;
}
