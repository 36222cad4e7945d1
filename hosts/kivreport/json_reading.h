// What a document of JSON that was read holds, whatever stands in it.
#pragma once

#include <nlohmann/json.hpp>

namespace kivreport {

// `otherwise` where there is no such key, or something else behind it.
template <class Value>
Value ValueAt(const nlohmann::json& object, const char* key, Value otherwise) {
  const auto found = object.is_object() ? object.find(key) : object.end();
  if (!object.is_object() || found == object.end()) {
    return otherwise;
  }
  const auto* const value = found->get_ptr<const Value*>();
  return value != nullptr ? *value : otherwise;
}

// Empty likewise.
const nlohmann::json& ListAt(const nlohmann::json& object, const char* key);

}  // namespace kivreport
