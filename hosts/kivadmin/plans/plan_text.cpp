#include "hosts/kivadmin/plans/plan_text.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "hosts/common/color.h"
#include "hosts/common/counted.h"

namespace kivadmin {
namespace {

using kivhost::Counted;

// A longer plan is read by nobody name by name.
constexpr size_t kLongPlan = 50;

struct Words {
  const char* sign;
  const char* deed;  // of JSON
  const char* level;
  const char* levels;
  kivhost::Color color;
};

using enum kivhost::Color;
constexpr Words kWords[PlanStep::kKinds] = {
    {"~", "rename", "class", "classes", kYellow},  {"+", "add", "teacher", "teachers", kGreen},
    {"+", "add", "class", "classes", kGreen},      {"~", "move", "class", "classes", kYellow},
    {"~", "move", "student", "students", kYellow}, {"+", "add", "student", "students", kGreen},
    {"-", "remove", "student", "students", kRed},  {"-", "remove", "class", "classes", kRed}};

std::string InBrackets(const std::string& text) {
  return text.empty() ? "" : " (" + text + ')';
}

std::string Line(const PlanStep& step) {
  const Words& words = kWords[step.kind];
  const std::string what = std::string(words.sign) + ' ' + words.level + ' ' + step.who;
  switch (step.kind) {
    case PlanStep::kRenameClass:
      return what + " renamed " + step.target + InBrackets(step.at);
    case PlanStep::kMoveClass:
    case PlanStep::kMoveStudent:
      return what + " moved " + step.at + " -> " + step.target;
    case PlanStep::kRemoveClass:
      return what + InBrackets(step.at) +
             (step.students > 0 ? ": " + Counted(static_cast<size_t>(step.students), "student")
                                : "");
    default:
      return what + InBrackets(step.at);
  }
}

// How many of one kind follow each other for one place.
size_t RunLength(const std::vector<PlanStep>& steps, size_t from) {
  size_t end = from + 1;
  while (end < steps.size() && steps[end].kind == steps[from].kind &&
         steps[end].group == steps[from].group) {
    ++end;
  }
  return end - from;
}

std::string CountedLevel(size_t count, const Words& words) {
  return Counted(count, words.level, words.levels);
}

void Append(std::string& text, const char* separator, const std::string& part) {
  text += (text.empty() ? "" : separator) + part;
}

std::string DoneOf(const Plan& plan, PlanStep::Kind kind) {
  return CountedLevel(plan.Count(kind, PlanStep::kDone), kWords[kind]);
}

// "1 teacher, 2 classes and 28 students" of the kinds that have any.
std::string Together(const Plan& plan, std::initializer_list<PlanStep::Kind> kinds) {
  std::vector<std::string> parts;
  for (const PlanStep::Kind kind : kinds) {
    if (const size_t count = plan.Count(kind); count > 0) {
      parts.push_back(CountedLevel(count, kWords[kind]));
    }
  }
  std::string text;
  for (size_t i = 0; i < parts.size(); ++i) {
    Append(text, i + 1 == parts.size() ? " and " : ", ", parts[i]);
  }
  return text;
}

}  // namespace

void PrintPlan(std::ostream& out, const Plan& plan, bool all, bool isColored) {
  const auto print = [&](const PlanStep& step, const std::string& line) {
    out << (isColored ? kivhost::Colored(line, kWords[step.kind].color) : line) << '\n';
  };
  const bool isShort = all || plan.steps.size() <= kLongPlan;
  for (size_t i = 0; i < plan.steps.size(); ++i) {
    const PlanStep& step = plan.steps[i];
    const size_t run = RunLength(plan.steps, i);
    if (isShort || step.kind != PlanStep::kAddStudent || run == 1) {
      print(step, Line(step));
    } else {
      print(step, "+ " + Counted(run, "student") + InBrackets(step.at));
      i += run - 1;
    }
  }
}

std::string ToDo(const Plan& plan) {
  struct Deed {
    const char* verb;
    std::initializer_list<PlanStep::Kind> kinds;
  };
  std::string text;
  for (const Deed& deed :
       {Deed{"rename ", {PlanStep::kRenameClass}},
        Deed{"add ", {PlanStep::kAddTeacher, PlanStep::kAddClass, PlanStep::kAddStudent}},
        Deed{"move ", {PlanStep::kMoveClass, PlanStep::kMoveStudent}},
        Deed{"remove ", {PlanStep::kRemoveStudent, PlanStep::kRemoveClass}}}) {
    if (const std::string what = Together(plan, deed.kinds); !what.empty()) {
      Append(text, ", ", deed.verb + what);
    }
  }
  return text;
}

std::string DoneText(const Plan& plan) {
  std::string added, text;
  for (const PlanStep::Kind kind :
       {PlanStep::kAddTeacher, PlanStep::kAddClass, PlanStep::kAddStudent}) {
    if (plan.Count(kind, PlanStep::kDone) > 0) {
      Append(added, ", ", DoneOf(plan, kind));
    }
  }
  text = added.empty() ? "" : added + " added";
  for (const auto& [kind, verb] :
       {std::pair{PlanStep::kRenameClass, " renamed"}, std::pair{PlanStep::kMoveClass, " moved"},
        std::pair{PlanStep::kMoveStudent, " moved"},
        std::pair{PlanStep::kRemoveStudent, " removed"},
        std::pair{PlanStep::kRemoveClass, " removed"}}) {
    if (plan.Count(kind, PlanStep::kDone) > 0) {
      Append(text, "; ", DoneOf(plan, kind) + verb);
    }
  }
  if (text.empty()) {
    text = "nothing to change";
  }
  const size_t there = plan.there + plan.Count(PlanStep::kAddStudent, PlanStep::kThere);
  const size_t notTaken = plan.NotTaken() + plan.CountFailed();
  return text + (there > 0 ? "; " + Counted(there, "line") + " there already" : "") +
         (notTaken > 0 ? "; " + kivhost::Grouped(notTaken) + " not taken" : "");
}

std::string PlanJson(const Plan& plan, const std::string& readAs, bool isDryRun) {
  using Json = nlohmann::ordered_json;
  static constexpr const char* kOutcomes[] = {"waiting", "done", "there", "failed"};
  const auto orNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
  const auto lineOf = [](size_t line) { return line == 0 ? Json() : Json(line); };
  Json steps = Json::array();
  for (const PlanStep& step : plan.steps) {
    const Words& words = kWords[step.kind];
    steps.push_back({{"do", words.deed},
                     {"level", words.level},
                     {"name", step.who},
                     {"at", orNull(step.at)},
                     {"to", orNull(step.target)},
                     {"file", orNull(step.file)},
                     {"line", lineOf(step.line)},
                     {"outcome", isDryRun ? "planned" : kOutcomes[step.outcome]},
                     {"why", orNull(step.why)}});
  }
  Json refused = Json::array();
  for (const PlanRefusal& one : plan.refused) {
    refused.push_back({{"file", orNull(one.file)},
                       {"line", lineOf(one.line)},
                       {"lines", one.lines},
                       {"why", one.why}});
  }
  const Json totals = {{"lines", plan.lines},
                       {"steps", plan.steps.size()},
                       {"there", plan.there},
                       {"not_taken", plan.NotTaken()},
                       {"not_in_the_file", plan.left}};
  return Json{{"read_as", orNull(readAs)}, {"dry_run", isDryRun},
              {"notes", plan.notes},       {"steps", steps},
              {"refused", refused},        {"totals", totals}}
             .dump(2, ' ', false, Json::error_handler_t::replace) +
         '\n';
}

}  // namespace kivadmin
