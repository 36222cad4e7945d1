/* kivstore: the one function and the one parameter block.
 *
 * Fill in `command`, `mode`, `dataPath` and the fields that the command reads, call GeneralProc,
 * look at `result`. Outputs that a failing command does not reach keep the host's values.
 *
 * Names come back by one rule: exactly `size` bytes are written, the text cut to size - 1
 * characters and padded with NUL; a size of 0 or below writes nothing. The library does not compare
 * a size with the space there is: teacherNameSize, classNameSize and studentNameSize are 52 at
 * most, productIdSize 10. Texts are bytes of the store's 8-bit character set.
 *
 * Any thread may call; calls are carried out one after the other. What one command remembers for
 * another (the cached lists) is the process's, not the thread's. On 32-bit Windows the calling
 * convention is C's own, cdecl.
 */
#ifndef KIVSTORE_GENERAL_PROC_H
#define KIVSTORE_GENERAL_PROC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
  KIV_COUNT_TEACHERS = 1,       /* topCount; result 0 if it is 0 */
  KIV_TEACHER_NAME = 2,         /* teacherListIndex -> teacherName */
  KIV_COUNT_CLASSES = 3,        /* teacherIndex -> classCount; result 0 if it is 0 */
  KIV_CLASS_NAME = 4,           /* teacherIndex, classListIndex -> classIndex, className */
  KIV_COUNT_STUDENTS = 5,       /* teacherIndex, classIndex -> studentCount */
  KIV_STUDENT_PROGRESS = 6,     /* teacherIndex, classIndex, studentListIndex -> studentIndex,
                                   studentName, currentMission, previousMission, vocabLevel */
  KIV_ANY_ENTRIES = 8,          /* result alone: is there a teacher or class? */
  KIV_CACHE_TEACHERS = 9,       /* reads the list once -> topCount */
  KIV_CACHED_TEACHER_NAME = 10, /* as 2, from the list read by 9 */
  KIV_CACHE_CLASSES = 11,       /* reads the list once -> classCount */
  KIV_CACHED_CLASS_NAME = 12,   /* as 4, from the list read by 11 */
  KIV_CACHE_STUDENTS = 13,      /* reads the list once -> studentCount */
  KIV_CACHED_STUDENT_NAME = 14, /* studentListIndex -> studentIndex, studentName */
  KIV_PRODUCT_ID = 78           /* productId, productGeneration; touches no store */
};

/* Offsets are the same on every platform. dataPath is 4 bytes wide on 32 bits; on 64 bits it is 8
 * wide and fills the gap behind it. All integers are little-endian. */
typedef struct SGeneralParams {
  int32_t command;      /* 0x00 in */
  uint8_t mode;         /* 0x04 in   0: local store; other: networked store with teachers */
  uint8_t result;       /* 0x05 out  1 success, 0 failure or unknown command; always written */
  uint8_t gap06[2];     /* 0x06 */
  const char* dataPath; /* 0x08 in   path of the data root, on every call */
#if UINTPTR_MAX == 0xFFFFFFFFu
  uint8_t gap0C[4]; /* 0x0C */
#endif
  int32_t topCount;           /* 0x10 out */
  int32_t teacherListIndex;   /* 0x14 in   from 1 */
  char teacherName[52];       /* 0x18 out */
  int32_t teacherNameSize;    /* 0x4C in */
  int32_t teacherIndex;       /* 0x50 in   from 1 */
  int32_t classCount;         /* 0x54 out */
  int32_t classListIndex;     /* 0x58 in   from 1 */
  int32_t classIndex;         /* 0x5C out of 4 and 12, in to 5, 6, 13 and 14: from 0 */
  char className[52];         /* 0x60 out */
  int32_t classNameSize;      /* 0x94 in */
  int32_t studentCount;       /* 0x98 out */
  int32_t studentListIndex;   /* 0x9C in   from 1 */
  int32_t studentIndex;       /* 0xA0 out  from 0 */
  int32_t currentMission;     /* 0xA4 out  at least 1 */
  int32_t previousMission;    /* 0xA8 out  at least 1 */
  int32_t vocabLevel;         /* 0xAC out */
  char studentName[52];       /* 0xB0 out */
  int32_t studentNameSize;    /* 0xE4 in */
  uint16_t productGeneration; /* 0xE8 out  3 */
  char productId[10];         /* 0xEA out */
  int16_t productIdSize;      /* 0xF4 in */
  uint8_t gapF6[2];           /* 0xF6      never touched */
} SGeneralParams;

#if defined(_WIN32)
#define KIV_CALL __cdecl
#elif defined(__GNUC__)
#define KIV_CALL __attribute__((visibility("default")))
#else
#define KIV_CALL
#endif

void KIV_CALL GeneralProc(SGeneralParams* params);

#ifdef __cplusplus
}
#endif

#endif
