#include "hosts/kivadmin/roster_files/one_roster_choice.h"

#include <algorithm>

#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/kivadmin/roster_files/cell_text.h"

namespace kivadmin {
namespace {

using kivhost::EqualNoCase;
using kivhost::HostError;
using kivhost::kWrongUsage;

using Ids = std::set<std::string>;

class Choice {
 public:
  Choice(const OneRoster& bundle, const RosterFormat& format, const std::string& file)
      : bundle(bundle), format(format), file(file) {}

  // By sourcedId, of those that have classes.
  Ids ChooseSchools() const;
  Ids ChooseTerms() const;
  bool IsOfTerm(const OneRosterClass& group, const Ids& terms) const;

 private:
  std::string SchoolName(const std::string& id) const;
  bool IsWithin(const std::string& term, const std::string& other) const;

  const OneRoster& bundle;
  const RosterFormat& format;
  const std::string& file;
};

bool IsMeant(const std::string& told, const std::string& id, const std::string& name) {
  return told == id || HeadingKey(told) == HeadingKey(name);
}

std::string Choice::SchoolName(const std::string& id) const {
  const auto school = bundle.schools.find(id);
  return school == bundle.schools.end() ? id : school->second;
}

Ids Choice::ChooseSchools() const {
  Ids schools;
  std::vector<std::string> names;
  for (const auto& [id, group] : bundle.classes) {
    if (schools.insert(group.school).second) {
      names.push_back(InQuotes(SchoolName(group.school)));
    }
  }
  if (format.school.empty() && schools.size() > 1) {
    throw HostError(kWrongUsage, file + ": classes of " + std::to_string(names.size()) +
                                     " schools: " + Listed(names) +
                                     "; --school NAME takes one's, --school all those of all");
  }
  if (format.school.empty() || EqualNoCase(format.school, "all")) {
    return schools;
  }
  std::erase_if(schools,
                [&](const std::string& id) { return !IsMeant(format.school, id, SchoolName(id)); });
  if (schools.empty()) {
    throw HostError(kWrongUsage, file + ": no class of a school " + InQuotes(format.school) +
                                     "; there are some of " + Listed(names));
  }
  return schools;
}

Ids Choice::ChooseTerms() const {
  Ids chosen;
  std::vector<std::string> names;
  for (const auto& [id, term] : bundle.terms) {
    names.push_back(InQuotes(term.title));
    if (IsMeant(format.term, id, term.title)) {
      chosen.insert(id);
    }
  }
  if (chosen.empty()) {
    throw HostError(kWrongUsage,
                    file + ": no term " + InQuotes(format.term) +
                        (names.empty() ? ": no academicSessions.csv, which tells the terms"
                                       : "; there are " + Listed(names)));
  }
  return chosen;
}

// The term itself, or one that it is a part of.
bool Choice::IsWithin(const std::string& term, const std::string& other) const {
  constexpr int kDeepest = 8;  // a year, a half, a term; a ring ends here
  std::string id = term;
  for (int depth = 0; depth < kDeepest && !id.empty(); ++depth) {
    if (id == other) {
      return true;
    }
    const auto found = bundle.terms.find(id);
    id = found == bundle.terms.end() ? "" : found->second.parent;
  }
  return false;
}

bool Choice::IsOfTerm(const OneRosterClass& group, const Ids& terms) const {
  return std::any_of(terms.begin(), terms.end(), [&](const std::string& wanted) {
    return std::any_of(group.terms.begin(), group.terms.end(), [&](const std::string& term) {
      return IsWithin(term, wanted) || IsWithin(wanted, term);
    });
  });
}

}  // namespace

std::vector<std::string> ChooseClasses(const OneRoster& bundle, const RosterFormat& format,
                                       const std::string& file) {
  const Choice choice(bundle, format, file);
  const Ids schools = choice.ChooseSchools();
  const Ids terms = format.term.empty() ? Ids() : choice.ChooseTerms();
  std::vector<std::string> chosen;
  for (const auto& [id, facts] : bundle.classes) {
    if (schools.contains(facts.school) && (terms.empty() || choice.IsOfTerm(facts, terms))) {
      chosen.push_back(id);
    }
  }
  std::sort(chosen.begin(), chosen.end(), [&](const std::string& a, const std::string& b) {
    return bundle.classes.at(a).number < bundle.classes.at(b).number;
  });
  return chosen;
}

}  // namespace kivadmin
