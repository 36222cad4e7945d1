// What the tests of the commands share: a block to call with, and a process put back to how the
// library starts.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "app/roster_caches.h"
#include "foundation/site_mode.h"
#include "kivstore/general_proc.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

inline constexpr uint8_t kLocalMode = 0;
inline constexpr uint8_t kNetworkedMode = 1;

// The latch, the caches and the failure mark outlive a call, so each test begins and ends without
// them.
class ProcessState : public testing::Test {
 protected:
  ProcessState() { Reset(); }
  ~ProcessState() override { Reset(); }

  static void Reset() {
    using namespace kivstore;
    gTeacherTier = 0;
    gSiteMode = 0;
    gStoreFailed = false;
    DeleteLogins(gTeacherCache.Array());
    DeleteLogins(gClassCache.Array());
    DeleteLogins(gStudentCache.Array());
    gClassCacheTeacher = 0;
    gStudentCacheClass = 0;
  }
};

// A host with one block for one store.
class Host {
 public:
  Host(const std::string& dataPath, uint8_t mode) : path(dataPath) {
    std::memset(static_cast<void*>(&block), 0, sizeof block);
    block.mode = mode;
    block.dataPath = path.c_str();
    block.teacherNameSize = block.classNameSize = block.studentNameSize = 52;
    block.productIdSize = 10;
  }

  bool Call(int32_t command) {
    block.command = command;
    block.result = 0xEE;
    GeneralProc(&block);
    EXPECT_LE(block.result, 1) << "command " << command << " left no result";
    return block.result == 1;
  }

  Host& Teacher(int32_t number) {
    block.teacherIndex = block.teacherListIndex = number;
    return *this;
  }
  Host& Class(int32_t number) {
    block.classListIndex = number;
    block.classIndex = number - 1;
    return *this;
  }
  Host& Student(int32_t number) {
    block.studentListIndex = number;
    return *this;
  }

  SGeneralParams block;

 private:
  std::string path;
};

}  // namespace kivtest
