#include "hosts/kivreport/json_value.h"

#include <string_view>

namespace kivreport {
namespace {

bool LeadsToStudent(const Column& column) {
  const std::string_view name(column.name);
  return name == kTeacherColumn || name == kClassColumn || name == kStudentColumn;
}

struct ToJson {
  Json operator()(std::monostate /*unknown*/) const { return {}; }
  Json operator()(int64_t number) const { return number; }
  Json operator()(const std::string& text) const { return text; }
  Json operator()(const std::vector<std::string>& texts) const { return texts; }
  Json operator()(const std::vector<int>& numbers) const { return numbers; }
  Json operator()(const std::vector<NamedCount>& counts) const {
    Json json = Json::object();
    for (const NamedCount& item : counts) {
      json[item.name] = {{"keystrokes", item.count.keystrokes}, {"errors", item.count.errors}};
    }
    return json;
  }
};

}  // namespace

Json Known(bool isKnown, Json value) {
  return isKnown ? std::move(value) : Json();
}

Json JsonOf(const Value& value) {
  return std::visit(ToJson(), value);
}

void AddColumns(Json& json, const Row& row, const Columns& columns) {
  for (const Column* const column : columns) {
    if (!LeadsToStudent(*column)) {
      json[column->name] = JsonOf(column->value(row));
    }
  }
}

std::string Dumped(const Json& json, int indent) {
  constexpr auto kReplace = Json::error_handler_t::replace;
  return json.dump(indent, ' ', false, kReplace) + '\n';
}

}  // namespace kivreport
