#include "hosts/common/store_conf.h"

#include <sstream>

#include "hosts/common/charset.h"
#include "hosts/common/console.h"
#include "hosts/common/host_error.h"
#include "hosts/common/store_text.h"

namespace kivhost {
namespace {

constexpr size_t kLongestConf = 1 << 16;

kivstore::SFileSpec ConfFile(const OpenStore& store) {
  kivstore::SFileSpec spec = store.TopFolder();
  spec.Up();
  spec.Down("kivstore.conf");
  return spec;
}

std::string PathOf(const kivstore::SFileSpec& spec) {
  return FromLibraryPath(spec.GetPathText());
}

std::string ReadSettled(const kivstore::SFileSpec& conf) {
  constexpr std::string_view kKey = "charset=";
  if (!conf.IsExistingFile()) {
    return {};
  }
  std::istringstream lines(ReadStoreText(conf, kLongestConf, "kivstore.conf"));
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(kKey)) {
      return line.substr(kKey.size(), line.find_last_not_of("\r ") + 1 - kKey.size());
    }
  }
  return {};
}

}  // namespace

std::string CharsetOf(const OpenStore& store, const std::optional<std::string>& told) {
  const kivstore::SFileSpec conf = ConfFile(store);
  const std::string settled = ReadSettled(conf);
  if (!settled.empty() && told && !EqualNoCase(settled, *told)) {
    throw HostError(kWrongUsage, "--charset " + *told + ": the texts of this store are in " +
                                     settled + ", as " + PathOf(conf) + " says");
  }
  if (!settled.empty() && Charset::Open(settled) == nullptr) {
    throw HostError(kNoStore, PathOf(conf) + ": charset=" + settled +
                                  ": no such character set; put the right name there");
  }
  return !settled.empty() ? settled : told.value_or(kDefaultCharset);
}

void SettleCharset(const OpenStore& store, const std::string& charset) {
  const kivstore::SFileSpec conf = ConfFile(store);
  if (ReadSettled(conf).empty()) {
    WriteStoreText(conf, "# what kivadmin and kivreport have settled about this store\ncharset=" +
                             charset + '\n');
  }
}

}  // namespace kivhost
