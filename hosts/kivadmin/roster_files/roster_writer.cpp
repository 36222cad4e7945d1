#include "hosts/kivadmin/roster_files/roster_writer.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <set>

#include "hosts/common/csv_text.h"
#include "hosts/common/zip_file.h"

namespace kivadmin {
namespace {

using kivhost::FormatCsv;
constexpr const char* kSchoolId = "school";

// Letters and digits of ASCII as they are, any other byte by its number: two names are never one.
std::string Escaped(const std::string& name) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string id;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (isPlain) {
      id += c;
    } else {
      id += {'_', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return id;
}

class BundleWriter {
 public:
  explicit BundleWriter(const std::string& school) {
    Put("orgs", {kSchoolId, "", "", school, "school", "", ""});
  }

  void Take(const RosterLine& line);
  void WriteTo(kivhost::ZipWriter& zip) const;

 private:
  // "s-Ms_20Hill-5a-Ann-Lee"; of a twin with a number behind it.
  std::string NewId(const std::string& kind, const std::vector<std::string>& names);
  std::string TakeTeacher(const std::string& name);
  std::string TakeClass(const RosterLine& line);
  void PutUser(const std::string& id, const char* role, const std::string& given,
               const std::string& family);
  void PutEnrollment(const std::string& group, const std::string& user, const char* role);
  void Put(const char* file, const std::vector<std::string>& fields) {
    rows[file] += FormatCsv(fields);
  }
  std::string Manifest() const;

  std::map<std::string, std::string> rows;  // by file
  std::map<std::string, int> ids;           // how many have been so called
  std::map<std::string, std::string> teachers;
  std::map<std::pair<std::string, std::string>, std::string> classes;  // by teacher's id and name
};

std::string BundleWriter::NewId(const std::string& kind, const std::vector<std::string>& names) {
  std::string id = kind;
  for (const std::string& name : names) {
    id += name.empty() ? "" : '-' + Escaped(name);
  }
  const int count = ++ids[id];
  return count == 1 ? id : id + "_-" + std::to_string(count);
}

void BundleWriter::PutUser(const std::string& id, const char* role, const std::string& given,
                           const std::string& family) {
  Put("users",
      {id, "", "", "true", kSchoolId, role, id, "", given, family, "", "", "", "", "", "", "", ""});
}

void BundleWriter::PutEnrollment(const std::string& group, const std::string& user,
                                 const char* role) {
  const bool isTeacher = *role == 't';
  Put("enrollments", {"e" + group.substr(1) + '-' + user, "", "", group, kSchoolId, user, role,
                      isTeacher ? "true" : "false", "", ""});
}

std::string BundleWriter::TakeTeacher(const std::string& name) {
  if (name.empty()) {
    return "";
  }
  std::string& id = teachers[name];
  if (id.empty()) {
    id = NewId("t", {name});
    const size_t blank = std::min(name.rfind(' '), name.size());
    PutUser(id, "teacher", name.substr(0, blank), name.substr(std::min(blank + 1, name.size())));
  }
  return id;
}

std::string BundleWriter::TakeClass(const RosterLine& line) {
  const std::string teacher = TakeTeacher(line.teacher);
  if (line.group.empty()) {
    return "";
  }
  std::string& id = classes[{teacher, line.group}];
  if (id.empty()) {
    id = NewId("c", {line.teacher, line.group});
    Put("classes", {id, "", "", line.group, "", "", "", "homeroom", "", kSchoolId, "", "", "", ""});
    if (!teacher.empty()) {
      PutEnrollment(id, teacher, "teacher");
    }
  }
  return id;
}

void BundleWriter::Take(const RosterLine& line) {
  const std::string group = TakeClass(line);
  if (line.first.empty() && line.last.empty()) {
    return;
  }
  const std::string id = NewId("s", {line.teacher, line.group, line.first, line.last});
  PutUser(id, "student", line.first, line.last);
  PutEnrollment(group, id, "student");
}

struct FileForm {
  const char* name;
  const char* heading;  // null: never written
};

constexpr FileForm kFiles[] = {
    {"academicSessions", nullptr},
    {"categories", nullptr},
    {"classes",
     "sourcedId,status,dateLastModified,title,grades,courseSourcedId,classCode,classType,location,"
     "schoolSourcedId,termSourcedIds,subjects,subjectCodes,periods\r\n"},
    {"classResources", nullptr},
    {"courses", nullptr},
    {"courseResources", nullptr},
    {"demographics", nullptr},
    {"enrollments",
     "sourcedId,status,dateLastModified,classSourcedId,schoolSourcedId,userSourcedId,role,primary,"
     "beginDate,endDate\r\n"},
    {"lineItems", nullptr},
    {"orgs", "sourcedId,status,dateLastModified,name,type,identifier,parentSourcedId\r\n"},
    {"resources", nullptr},
    {"results", nullptr},
    {"users",
     "sourcedId,status,dateLastModified,enabledUser,orgSourcedIds,role,username,userIds,givenName,"
     "familyName,middleName,identifier,email,sms,phone,agentSourcedIds,grades,password\r\n"}};

std::string BundleWriter::Manifest() const {
  std::string text = FormatCsv({"propertyName", "value"}) + FormatCsv({"manifest.version", "1.0"}) +
                     FormatCsv({"oneroster.version", "1.1"});
  for (const FileForm& file : kFiles) {
    text +=
        FormatCsv({std::string("file.") + file.name, rows.contains(file.name) ? "bulk" : "absent"});
  }
  return text + FormatCsv({"source.systemName", "kivadmin"}) +
         FormatCsv({"source.systemCode", "kivadmin"});
}

void BundleWriter::WriteTo(kivhost::ZipWriter& zip) const {
  const std::time_t now = std::time(nullptr);
  zip.Add("manifest.csv", Manifest(), now);
  for (const FileForm& file : kFiles) {
    if (const auto found = rows.find(file.name); found != rows.end()) {
      zip.Add(std::string(file.name) + ".csv", file.heading + found->second, now);
    }
  }
}

}  // namespace

std::string RosterAsCsv(const std::vector<RosterLine>& lines) {
  std::string text = FormatCsv({"teacher", "class", "first_name", "last_name"});
  for (const RosterLine& line : lines) {
    text += FormatCsv({line.teacher, line.group, line.first, line.last});
  }
  return text;
}

void WriteOneRoster(const std::string& path, bool mayReplace, const std::string& school,
                    const std::vector<RosterLine>& lines) {
  BundleWriter bundle(school);
  for (const RosterLine& line : lines) {
    bundle.Take(line);
  }
  kivhost::ZipWriter zip(path, mayReplace);
  bundle.WriteTo(zip);
  zip.Finish();
}

}  // namespace kivadmin
