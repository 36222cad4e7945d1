// Any file of a store as JSON, recognised by its name and its head.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "hosts/common/charset.h"

namespace kivadmin {

struct StoreFileDump {
  nlohmann::ordered_json json;
  std::string trouble;  // why not all of it could be read; empty if all was
};

// `name` is the file's own, without its folder; `bytes` are all it holds.
StoreFileDump DumpStoreFile(const std::string& name, const std::string& bytes,
                            const kivhost::Charset& charset);

}  // namespace kivadmin
