// `log`: what kivadmin did to a store, when and by whom.
#include <deque>
#include <iostream>
#include <nlohmann/json.hpp>

#include "hosts/common/counted.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/session/action_log.h"

namespace kivadmin {
namespace {

struct LogArguments {
  std::optional<std::string> last;
  bool json = false;
};

size_t MostActions(const LogArguments& arguments) {
  if (!arguments.last) {
    return std::numeric_limits<size_t>::max();
  }
  const auto number = PlaceOf('#' + *arguments.last);
  if (!number || *number < 1) {
    throw HostError(kWrongUsage, "--last " + *arguments.last + ": a number from 1 is wanted");
  }
  return static_cast<size_t>(*number);
}

void PrintActions(const std::deque<LoggedAction>& actions) {
  if (actions.empty()) {
    std::cout << "nothing is logged\n";
  }
  for (const LoggedAction& action : actions) {
    std::cout << kivhost::WithoutHidden(action.when + "  " + action.who + "  " + action.what)
              << '\n';
  }
}

void PrintActionsJson(const std::deque<LoggedAction>& actions) {
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const LoggedAction& action : actions) {
    all.push_back({{"when", action.when},
                   {"who", action.who},
                   {"version", action.version},
                   {"what", action.what}});
  }
  std::cout << all.dump(2) << '\n';
}

void ShowLog(const CommonOptions& common, const LogArguments& arguments) {
  const size_t most = MostActions(arguments);
  const Session session(common, Session::Access::kLook);
  std::deque<LoggedAction> actions;
  const size_t unreadable = ReadActions(session.DataRoot(), [&](LoggedAction action) {
    actions.push_back(std::move(action));
    if (actions.size() > most) {
      actions.pop_front();
    }
  });
  (arguments.json ? PrintActionsJson : PrintActions)(actions);
  if (unreadable > 0) {
    std::cout << std::flush;
    std::cerr << "kivadmin: kivadmin.log: not readable: " << kivhost::Counted(unreadable, "line")
              << '\n';
  }
}

}  // namespace

void AddLogCommand(const Command& app, CommonOptions& common) {
  const Command command =
      app.AddCommand("log", "Tell what kivadmin did to the store, when and who, the oldest first");
  LogArguments& arguments = AddRun(command, common, ShowLog);
  AddStoreArguments(command, common);
  command.AddOption("--last", arguments.last, "Only the last so many").Takes("N");
  AddFormat(command, arguments.json, "table");
}

}  // namespace kivadmin
