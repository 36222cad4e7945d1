#include "hosts/kivadmin/backups/backup_manifest.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/common/counted.h"
#include "hosts/common/host_error.h"
#include "platform/base/bytes.h"

namespace kivadmin {
namespace {

using kivhost::SiteKind;
using kivstore::FoldLower;
using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;

SiteKind KindNamed(const std::string& name) {
  for (const SiteKind kind : {SiteKind::kLocal, SiteKind::kShared, SiteKind::kTeachers}) {
    if (NameOf(kind) == name) {
      return kind;
    }
  }
  throw Json::other_error::create(0, "kind", nullptr);
}

BackupManifest FromJson(const Json& json) {
  BackupManifest manifest;
  manifest.kind = KindNamed(json.at("kind"));
  manifest.charset = json.at("charset");
  manifest.when = json.at("when");
  manifest.by = json.at("by");
  manifest.version = json.at("version");
  manifest.teachers = json.at("teachers");
  manifest.classes = json.at("classes");
  manifest.students = json.at("students");
  manifest.files = json.at("files");
  manifest.bytes = json.at("bytes");
  manifest.checksum = json.at("checksum");
  for (const Json& unread : json.at("unread")) {
    manifest.unread.push_back({unread.at("path"), unread.at("why")});
  }
  return manifest;
}

}  // namespace

std::string FoldedName(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(), [](char c) {
    return static_cast<char>(FoldLower(static_cast<unsigned char>(c)));
  });
  return name;
}

std::string BackupManifest::Text() const {
  Json all = Json::array();
  for (const Unread& one : unread) {
    all.push_back({{"path", one.path}, {"why", one.why}});
  }
  const Json json = {{"format", kFormat},
                     {"kind", NameOf(kind)},
                     {"charset", charset},
                     {"when", when},
                     {"by", by},
                     {"version", version},
                     {"teachers", teachers},
                     {"classes", classes},
                     {"students", students},
                     {"files", files},
                     {"bytes", bytes},
                     {"checksum", checksum},
                     {"unread", all}};
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string BackupManifest::Counts() const {
  const auto number = [](uint64_t count) { return static_cast<size_t>(count); };
  return (kind == SiteKind::kTeachers ? kivhost::Counted(number(teachers), "teacher") + ", " : "") +
         kivhost::Counted(number(classes), "class", "classes") + ", " +
         kivhost::Counted(number(students), "student");
}

BackupManifest BackupManifest::Parse(const std::string& text, const std::string& path) {
  const std::string where = path + ": " + kManifestName + " in it ";
  const Json json = Json::parse(text, nullptr, false);
  try {
    if (json.at("format").get<int>() > kFormat) {
      throw kivhost::HostError(kivhost::kWrongUsage,
                               where + "is of a later form; a newer kivadmin reads it");
    }
    return FromJson(json);
  } catch (const Json::exception&) {
    throw kivhost::HostError(kivhost::kWrongUsage, where + "tells of no backup");
  }
}

}  // namespace kivadmin
