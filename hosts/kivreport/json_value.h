// Values of a report as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "hosts/kivreport/columns.h"

namespace kivreport {

using Json = nlohmann::ordered_json;

// Null is what is not known.
Json Known(bool isKnown, Json value);
Json JsonOf(const Value& value);
// The columns of the row, but for the names that lead to the student.
void AddColumns(Json& json, const Row& row, const Columns& columns);
// As text: a path is what bytes it is. Without an indent, on one line.
std::string Dumped(const Json& json, int indent = -1);

}  // namespace kivreport
