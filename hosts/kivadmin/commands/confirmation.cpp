#include "hosts/kivadmin/commands/confirmation.h"

#include <cctype>
#include <iostream>

#include "hosts/common/console.h"
#include "hosts/common/host_error.h"

namespace kivadmin {

using kivhost::HostError;

void Confirm(const std::string& what, bool yes) {
  if (yes) {
    return;
  }
  if (!kivhost::InputIsTerminal()) {
    throw HostError(kivhost::kWrongUsage, what + ": not without --yes");
  }
  std::string question = what;
  question[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(question[0])));
  std::cerr << question << "? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw HostError(kivhost::kRefused, "nothing done");
  }
}

}  // namespace kivadmin
