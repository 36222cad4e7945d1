#include "hosts/kivreport/json_reading.h"

namespace kivreport {

const nlohmann::json& ListAt(const nlohmann::json& object, const char* key) {
  static const nlohmann::json kNone = nlohmann::json::array();
  const bool isThere = object.is_object() && object.contains(key) && object[key].is_array();
  return isThere ? object[key] : kNone;
}

}  // namespace kivreport
