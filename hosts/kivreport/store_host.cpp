#include "hosts/kivreport/store_host.h"

namespace kivreport {

StoreHost::StoreHost(const std::string& dataPath, bool network) : dataPath(dataPath) {
  params.mode = network ? 1 : 0;
  params.dataPath = this->dataPath.c_str();
  params.teacherNameSize = sizeof params.teacherName;
  params.classNameSize = sizeof params.className;
  params.studentNameSize = sizeof params.studentName;
  params.productIdSize = sizeof params.productId;
}

bool StoreHost::Call(int command) {
  params.command = command;
  GeneralProc(&params);
  return params.result == 1;
}

std::optional<int> StoreHost::CacheTeachers() {
  if (!Call(KIV_CACHE_TEACHERS)) {
    return std::nullopt;
  }
  return params.topCount;
}

std::optional<int> StoreHost::CacheClasses(int teacher) {
  params.teacherIndex = teacher;
  if (!Call(KIV_CACHE_CLASSES)) {
    return std::nullopt;
  }
  return params.classCount;
}

std::optional<int> StoreHost::CacheStudents(int teacher, int classIndex) {
  params.teacherIndex = teacher;
  params.classIndex = classIndex;
  if (!Call(KIV_CACHE_STUDENTS)) {
    return std::nullopt;
  }
  return params.studentCount;
}

std::string StoreHost::TeacherName(int teacher) {
  params.teacherListIndex = teacher;
  return Call(KIV_CACHED_TEACHER_NAME) ? params.teacherName : "";
}

std::string StoreHost::ClassName(int teacher, int classNumber) {
  params.teacherIndex = teacher;
  params.classListIndex = classNumber;
  return Call(KIV_CACHED_CLASS_NAME) ? params.className : "";
}

std::string StoreHost::StudentName(int teacher, int classIndex, int student) {
  params.teacherIndex = teacher;
  params.classIndex = classIndex;
  params.studentListIndex = student;
  return Call(KIV_CACHED_STUDENT_NAME) ? params.studentName : "";
}

std::optional<Progress> StoreHost::StudentProgress(int teacher, int classIndex, int student) {
  params.teacherIndex = teacher;
  params.classIndex = classIndex;
  params.studentListIndex = student;
  if (!Call(KIV_STUDENT_PROGRESS)) {
    return std::nullopt;
  }
  return Progress{params.studentName, params.currentMission, params.previousMission,
                  params.vocabLevel};
}

Product StoreHost::GetProduct() {
  Call(KIV_PRODUCT_ID);
  return {params.productId, params.productGeneration};
}

}  // namespace kivreport
