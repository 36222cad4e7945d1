#include "hosts/kivreport/kept_report.h"

#include <algorithm>
#include <filesystem>
#include <regex>

#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivreport/json_reading.h"

namespace kivreport {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr size_t kLargest = size_t{1} << 30;

[[noreturn]] void ThrowNone(const std::string& path, const std::string& why) {
  throw kivhost::HostError(kivhost::kWrongUsage, path + ": " + why);
}

std::optional<int> MissionOf(const json& student) {
  const auto mission = ValueAt<int64_t>(student, "current_mission", 0);
  return mission >= 1 && mission <= INT16_MAX ? std::optional(static_cast<int>(mission))
                                              : std::nullopt;
}

void AddClasses(KeptReport& report, const json& holder, const std::string& teacher) {
  for (const json& group : ListAt(holder, "classes")) {
    const auto name = ValueAt<std::string>(group, "name", "");
    for (const json& student : ListAt(group, "students")) {
      const auto own = ValueAt<std::string>(student, "name", "");
      if (!own.empty()) {
        report.students.push_back({teacher, name, own, MissionOf(student)});
      }
    }
  }
}

// "2026-09-01", with the time behind it if there is one.
bool IsTime(const std::string& text) {
  static const std::regex form("\\d{4}-\\d\\d-\\d\\d(T\\d\\d:\\d\\d:\\d\\d)?");
  return std::regex_match(text, form);
}

std::string DateInName(const std::string& path) {
  static const std::regex form("\\d{4}-\\d\\d-\\d\\d");
  const std::string name = fs::path(path).filename().string();
  std::smatch found;
  return std::regex_search(name, found, form) ? found.str() : "";
}

json Parsed(const std::string& path) {
  std::string text = kivhost::ReadWholeFile(path, kLargest, "a kept report", kivhost::kWrongUsage);
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) {
    text.erase(0, kByteOrderMark.size());
  }
  json parsed = json::parse(text, nullptr, false);
  const bool isReport = parsed.is_object() && parsed.contains("mode") &&
                        (parsed.contains("teachers") || parsed.contains("classes"));
  if (!isReport) {
    ThrowNone(kivhost::NameOfFile(path),
              "is no report in JSON; kivreport --format json writes one");
  }
  return parsed;
}

}  // namespace

KeptReport ReadKeptReport(const std::string& path) {
  const json parsed = Parsed(path);
  KeptReport report;
  report.when = ValueAt<std::string>(parsed, "written_at", DateInName(path));
  if (!IsTime(report.when)) {
    report.when.clear();
  }
  report.isComplete = ValueAt<bool>(parsed, "complete", true);
  report.isPart = parsed.contains("part");
  for (const char* const option : {"student", "min_mission", "max_mission"}) {
    report.lacksStudents |= report.isPart && parsed["part"].contains(option);
  }
  AddClasses(report, parsed, "");
  for (const json& teacher : ListAt(parsed, "teachers")) {
    AddClasses(report, teacher, ValueAt<std::string>(teacher, "name", ""));
  }
  return report;
}

std::vector<std::string> ListKeptReports(const std::string& folder) {
  std::error_code error;
  const fs::directory_iterator entries(fs::path(folder), error);
  if (error) {
    ThrowNone(folder, "is no folder that can be read");
  }
  std::vector<std::string> paths;
  for (const fs::directory_entry& entry : entries) {
    if (entry.path().extension() == ".json") {
      paths.push_back(entry.path().string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace kivreport
