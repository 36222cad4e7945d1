#include "records/screens.h"

#include <iterator>

#include "foundation/containers/map.h"

namespace kivstore {
namespace {

constexpr int32_t kNodesPerBlock = 10;

const SString gScreenNames[] = {
    "SPLASH",           "TITLE",         "LOGIN",      "TEACHER_DLG", "CREDITS",
    "HELPDLG",          "ZEPSCRN",       "MAIN",       "KEYFIGURES",  "WINDSHIELD",
    "JOURNAL",          "TYPELINE",      "CHARTS",     "GRAPHS",      "DICTWARP",
    "PLAYPRACTICE",     "HOME_REMINDER", "CHECKPOINT", "WARMUP",      "LEARN_NEW_KEYS",
    "LESSON_EXERCISES", "POWER_BOOSTER",
};
static_assert(std::size(gScreenNames) == kScreenCount);

// Gives the entry's address, whose place in the table is the id.
class ScreenMap : public SMapStringToPtr {
 public:
  ScreenMap() : SMapStringToPtr(kNodesPerBlock) {
    for (const SString& name : gScreenNames) {
      SetAt(name, const_cast<SString*>(&name));
    }
  }
};

}  // namespace

const SString& GetScreenName(int id) {
  static const SString none;
  return id >= 0 && id < kScreenCount ? gScreenNames[id] : none;
}

int GetScreenId(const SString& name) {
  static const ScreenMap screens;
  void* entry = nullptr;
  if (!screens.Lookup(name, entry)) {
    return -1;
  }
  return static_cast<int>(static_cast<const SString*>(entry) - gScreenNames);
}

}  // namespace kivstore
