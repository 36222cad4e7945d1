// `kivstore.conf` in the data root: what the programs that run a store have settled about it. The
// store itself never reads it.
//
//   # what kivadmin and kivreport have settled about this store
//   charset=windows-1252
//
// UTF-8, a line each; other keys and lines that begin with # are left alone.
#pragma once

#include <optional>
#include <string>

#include "hosts/common/store_opening.h"

namespace kivhost {

inline constexpr const char* kDefaultCharset = "windows-1252";

// What the store has settled, or else what the command line told, or else the default. Throws
// HostError if the command line contradicts the store, or if the store has settled one that the
// system does not know.
std::string CharsetOf(const OpenStore& store, const std::optional<std::string>& told);
// From now on; nothing if the store has settled it already.
void SettleCharset(const OpenStore& store, const std::string& charset);

}  // namespace kivhost
