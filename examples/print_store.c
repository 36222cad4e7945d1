/* Prints the teachers, classes and students of a store, and the mission each student is at.
 *
 *   print_store ROOT          a networked store, with teachers
 *   print_store --local ROOT  a store on this machine: classes stand at the top
 *
 * Build: cc -o print_store print_store.c $(pkg-config --cflags --libs kivstore)
 */
#include <kivstore/general_proc.h>
#include <stdio.h>
#include <string.h>

static SGeneralParams block;

static int call(int command) {
  block.command = command;
  GeneralProc(&block);
  return block.result;
}

static void print_students(void) {
  int i, count;
  if (!call(KIV_CACHE_STUDENTS)) return;
  count = block.studentCount;
  for (i = 1; i <= count; i++) {
    block.studentListIndex = i;
    if (!call(KIV_STUDENT_PROGRESS)) continue;
    printf("    %s: mission %d\n", block.studentName, (int)block.currentMission);
  }
}

static void print_classes(void) {
  int i, count;
  if (!call(KIV_CACHE_CLASSES)) return;
  count = block.classCount;
  for (i = 1; i <= count; i++) {
    block.classListIndex = i;
    if (!call(KIV_CACHED_CLASS_NAME)) continue; /* sets classIndex for the students */
    printf("  %s\n", block.className);
    print_students();
  }
}

static void print_teachers(void) {
  int i, count;
  if (!call(KIV_CACHE_TEACHERS)) return;
  count = block.topCount;
  for (i = 1; i <= count; i++) {
    block.teacherListIndex = block.teacherIndex = i;
    if (!call(KIV_CACHED_TEACHER_NAME)) continue;
    printf("%s\n", block.teacherName);
    print_classes();
  }
}

int main(int argc, char** argv) {
  const int local = argc == 3 && strcmp(argv[1], "--local") == 0;
  if (argc != 2 && !local) {
    fprintf(stderr, "print_store [--local] ROOT\n");
    return 2;
  }
  block.mode = (uint8_t)(local ? 0 : 1);
  block.dataPath = argv[argc - 1];
  block.teacherNameSize = sizeof block.teacherName;
  block.classNameSize = sizeof block.className;
  block.studentNameSize = sizeof block.studentName;
  if (local) {
    print_classes();
  } else {
    print_teachers();
  }
  return 0;
}
