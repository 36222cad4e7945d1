#include "hosts/kivadmin/roster_files/one_roster.h"

#include <ctime>
#include <sstream>

#include "hosts/common/charset.h"
#include "hosts/kivadmin/roster_files/cell_text.h"

namespace kivadmin {
namespace {

using kivhost::EqualNoCase;

std::string Today() {
  const std::time_t now = std::time(nullptr);
  char text[16];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now))};
}

bool IsGone(const std::string& status) {
  return EqualNoCase(status, "tobedeleted") || EqualNoCase(status, "inactive");
}

std::vector<std::string> ListIn(const std::string& cell) {
  std::vector<std::string> ids;
  std::istringstream list(cell);
  for (std::string id; std::getline(list, id, ',');) {
    ids.push_back(id);
  }
  return ids;
}

class Reader {
 public:
  Reader(RosterBundle& bundle, const std::string& charset, RosterFile& roster)
      : bundle(bundle), charset(charset), roster(roster) {}

  void ReadOrgs();
  void ReadUsers();
  void ReadRoles();
  void ReadTerms();
  void ReadClasses();
  void ReadEnrollments();
  OneRoster TakeAll() { return std::move(all); }

 private:
  void Read(const char* file, const char* isFor, const std::vector<BundleColumn>& columns,
            const std::function<void(const BundleRow& row)>& take) {
    bundle.Read(file, isFor, columns, charset, roster, take);
  }
  // The first one of a sourcedId counts.
  template <class Value>
  void Keep(std::map<std::string, Value>& rows, const char* file, const BundleRow& row,
            Value value) {
    if (!rows.emplace(row.cells[0], std::move(value)).second) {
      roster.refused.push_back(
          {row.number, file, "sourcedId " + InQuotes(row.cells[0]) + " is there already"});
    }
  }
  // Counts it if it is.
  bool IsLeftOut(const std::string& status) {
    const bool isGone = IsGone(status);
    all.gone += isGone;
    return isGone;
  }

  RosterBundle& bundle;
  const std::string& charset;
  RosterFile& roster;
  OneRoster all;
};

void Reader::ReadOrgs() {
  Read("orgs.csv", "the schools",
       {{"sourcedId", "which school it is"}, {"name", "the school's name"}, {"status", nullptr}},
       [&](const BundleRow& row) {
         if (!IsLeftOut(row.cells[2])) {
           Keep(all.schools, "orgs.csv", row, row.cells[1]);
         }
       });
}

void Reader::ReadUsers() {
  Read("users.csv", "the teachers and students",
       {{"sourcedId", "which user it is"},
        {"givenName", "the first name"},
        {"familyName", "the last name"},
        {"preferredGivenName", nullptr},
        {"preferredFamilyName", nullptr},
        {"role", nullptr},
        {"enabledUser", nullptr},
        {"status", nullptr}},
       [&](const BundleRow& row) {
         const auto& cells = row.cells;
         const bool isDisabled = EqualNoCase(cells[6], "false");
         all.gone += isDisabled && !IsGone(cells[7]);
         Keep(all.users, "users.csv", row,
              OneRosterUser{cells[3].empty() ? cells[1] : cells[3],
                            cells[4].empty() ? cells[2] : cells[4], cells[5],
                            IsLeftOut(cells[7]) || isDisabled});
       });
}

// The primary role counts; a user without one has the first.
void Reader::ReadRoles() {
  if (!bundle.Has("roles.csv")) {
    return;
  }
  Read("roles.csv", "the roles",
       {{"userSourcedId", "whose role it is"},
        {"role", "what the user is"},
        {"roleType", nullptr},
        {"status", nullptr}},
       [&](const BundleRow& row) {
         const auto user = all.users.find(row.cells[0]);
         if (user != all.users.end() && !IsLeftOut(row.cells[3]) &&
             (user->second.role.empty() || EqualNoCase(row.cells[2], "primary"))) {
           user->second.role = row.cells[1];
         }
       });
}

void Reader::ReadTerms() {
  if (!bundle.Has("academicsessions.csv")) {
    return;
  }
  Read("academicsessions.csv", "the terms",
       {{"sourcedId", "which term it is"},
        {"title", "the term's name"},
        {"parentSourcedId", nullptr}},
       [&](const BundleRow& row) {
         Keep(all.terms, "academicSessions.csv", row, OneRosterTerm{row.cells[1], row.cells[2]});
       });
}

void Reader::ReadClasses() {
  Read("classes.csv", "the classes",
       {{"sourcedId", "which class it is"},
        {"title", "the class's name"},
        {"schoolSourcedId|orgSourcedId", "the class's school"},
        {"classCode|code", nullptr},
        {"classType", nullptr},
        {"termSourcedIds|sessionSourcedIds", nullptr},
        {"status", nullptr}},
       [&](const BundleRow& row) {
         const auto& cells = row.cells;
         if (IsLeftOut(cells[6])) {
           all.goneClasses.insert(cells[0]);
           return;
         }
         Keep(all.classes, "classes.csv", row,
              OneRosterClass{row.number, cells[1], cells[3], cells[2], ListIn(cells[5]),
                             EqualNoCase(cells[4], "homeroom")});
       });
}

void Reader::ReadEnrollments() {
  const std::string today = Today();
  Read("enrollments.csv", "who is in which class",
       {{"classSourcedId", "the class"},
        {"userSourcedId", "who is in the class"},
        {"role", "who teaches and who learns"},
        {"primary", nullptr},
        {"endDate", nullptr},
        {"status", nullptr}},
       [&](const BundleRow& row) {
         const auto& cells = row.cells;
         if (!IsLeftOut(cells[5])) {
           all.enrollments.push_back({row.number, cells[0], cells[1], cells[2],
                                      EqualNoCase(cells[3], "true"),
                                      !cells[4].empty() && cells[4] < today});
         }
       });
}

}  // namespace

OneRoster ReadOneRoster(RosterBundle& bundle, const std::string& charset, RosterFile& roster) {
  Reader reader(bundle, charset, roster);
  reader.ReadOrgs();
  reader.ReadUsers();
  reader.ReadRoles();
  reader.ReadTerms();
  reader.ReadClasses();
  reader.ReadEnrollments();
  return reader.TakeAll();
}

}  // namespace kivadmin
