/* Prints the teachers, classes and students of a store, and the mission each student is at.
 *
 *   print_store [--charset NAME] ROOT          a networked store, with teachers
 *   print_store [--charset NAME] --local ROOT  a store on this machine: classes stand at the top
 *
 * Names are shown in UTF-8; NAME is the character set of the store's texts, windows-1252 unless
 * told. The exit code is 1 if something could not be read, 2 for wrong usage.
 *
 * Build: cc -o print_store print_store.c $(pkg-config --cflags --libs kivstore)
 */
#include <kivstore/general_proc.h>
#include <stdio.h>
#include <string.h>

#include "to_utf8.h"

static SGeneralParams block;
static const char* charset = "windows-1252";
static int failures;

static int call(int command) {
  block.command = command;
  GeneralProc(&block);
  return block.result;
}

static const char* in_utf8(const char* name, char* utf8) {
  return to_utf8(charset, name, utf8);
}

/* The block does not tell why. `number` 0 is a whole list. */
static void fail(const char* what, int number, const char* of) {
  fflush(stdout);
  fprintf(stderr, "print_store: unable to read %s", what);
  if (number > 0) fprintf(stderr, " %d", number);
  fprintf(stderr, " of %s; kivadmin check %s tells why\n", of, block.dataPath);
  failures++;
}

static void print_students(const char* of) {
  int i, count;
  if (!call(KIV_CACHE_STUDENTS)) {
    fail("the students", 0, of);
    return;
  }
  count = block.studentCount;
  if (count == 0) {
    /* An empty class and one that cannot be read are answered alike. */
    fflush(stdout);
    fprintf(stderr, "print_store: note: no student of %s: nobody is in it, or it cannot be read\n",
            of);
  }
  for (i = 1; i <= count; i++) {
    block.studentListIndex = i;
    if (call(KIV_STUDENT_PROGRESS)) {
      char name[UTF8_NAME_SIZE];
      printf("    %s: mission %d\n", in_utf8(block.studentName, name), (int)block.currentMission);
    } else {
      fail("student", i, of);
    }
  }
}

static void print_classes(const char* of) {
  int i, count;
  const int is_told = call(KIV_CACHE_CLASSES);
  count = block.classCount;
  /* A list without a class is counted as the one that a tutor would make there; one that cannot be
   * read is not. */
  if (!is_told || (count == 0 && !call(KIV_COUNT_CLASSES))) {
    fail("the classes", 0, of);
    return;
  }
  for (i = 1; i <= count; i++) {
    block.classListIndex = i;
    if (call(KIV_CACHED_CLASS_NAME)) { /* sets classIndex for the students */
      char name[UTF8_NAME_SIZE];
      printf("  %s\n", in_utf8(block.className, name));
      print_students(name);
    } else {
      fail("class", i, of);
    }
  }
}

static void print_teachers(void) {
  int i, count;
  if (!call(KIV_CACHE_TEACHERS) || block.topCount == 0) {
    fail("the teachers", 0, block.dataPath);
    return;
  }
  count = block.topCount;
  for (i = 1; i <= count; i++) {
    block.teacherListIndex = block.teacherIndex = i;
    if (call(KIV_CACHED_TEACHER_NAME)) {
      char name[UTF8_NAME_SIZE];
      printf("%s\n", in_utf8(block.teacherName, name));
      print_classes(name);
    } else {
      fail("teacher", i, block.dataPath);
    }
  }
}

/* Whether there is a line to go by: [--charset NAME] [--local] ROOT. */
static int take_line(int argc, char** argv) {
  int i = 1;
  block.mode = 1;
  for (; i < argc - 1; i++) {
    if (strcmp(argv[i], "--local") == 0) {
      block.mode = 0;
    } else if (strcmp(argv[i], "--charset") == 0) {
      charset = argv[++i];
    } else {
      return 0;
    }
  }
  block.dataPath = argv[argc - 1];
  return i == argc - 1 && block.dataPath[0] != '-';
}

int main(int argc, char** argv) {
  if (!take_line(argc, argv)) {
    fprintf(stderr, "print_store: usage: print_store [--charset NAME] [--local] ROOT\n");
    return 2;
  }
  if (!is_charset(charset)) {
    fprintf(stderr, "print_store: %s: this system has no such character set\n", charset);
    return 2;
  }
  block.teacherNameSize = sizeof block.teacherName;
  block.classNameSize = sizeof block.className;
  block.studentNameSize = sizeof block.studentName;
  if (!call(KIV_ANY_ENTRIES)) {
    fprintf(
        stderr,
        "print_store: %s: no %s there: no store of this kind, nobody in it yet, or it cannot be "
        "read; kivadmin check tells which\n",
        block.dataPath, block.mode ? "teacher" : "class");
    return 1;
  }
  if (block.mode) {
    print_teachers();
  } else {
    print_classes(block.dataPath);
  }
  return failures > 0;
}
