#include "hosts/kivadmin/session/who_and_when.h"

#include <cstdlib>
#include <ctime>

namespace kivadmin {

std::string UserName() {
  for (const char* const variable : {"SUDO_USER", "USER", "USERNAME", "LOGNAME"}) {
    if (const char* const name = std::getenv(variable); name != nullptr && *name != '\0') {
      return name;
    }
  }
  return "unknown";
}

std::string TimeText(const char* form, long daysAgo) {
  const std::time_t then = std::time(nullptr) - daysAgo * 24 * 60 * 60;
  char text[32];
  return {text, std::strftime(text, sizeof text, form, std::localtime(&then))};
}

}  // namespace kivadmin
