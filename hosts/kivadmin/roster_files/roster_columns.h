// Which column of a table is what, by its heading or as a user tells it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// What a column may hold. Some schools keep a last name in several.
enum class Part {
  kTeacher,
  kClass,
  kFirst,
  kBeforeLast,  // "van den"
  kLast,
  kBehindLast,   // a second one
  kName,         // both names; beside a column with one of them, the other
  kFullName,     // "Ann Lee" or "Lee, Ann"
  kLastAndFirst  // "Lee Ann"
};

// As --columns takes it, and in words.
const char* NameOf(Part part);
const char* WordsOf(Part part);

class RosterColumns {
 public:
  // The parts that the headings tell, and how many. In the nine languages that rosters come in; of
  // two headings for one part the more usual one is taken.
  explicit RosterColumns(std::vector<std::string> headings);

  // Lets what a user tells stand in place of what the headings tell; "teacher=B,class=Kurs". Throws
  // wrong usage, with `file`, if there is no such column.
  void Tell(const std::string& told, const std::string& file);
  // Chooses between whole and parted names. To be called once, behind all others.
  void Settle();
  // Throws wrong usage, with `file`, unless they make up a roster.
  void Need(const RosterFormat& format, const std::string& file) const;

  size_t CountKnown() const { return places.size(); }
  size_t CountColumns() const { return headings.size(); }
  const std::map<Part, size_t>& GetPlaces() const { return places; }
  // "Lehrkraft=teacher Klasse=class".
  std::string Text() const;
  // The headings of columns that are nothing; empty ones left out.
  std::vector<std::string> Ignored() const;

 private:
  bool Has(Part part) const { return places.contains(part); }
  bool HasNames() const;
  // What keeps them from making up a roster; empty if nothing.
  std::string Lack(const RosterFormat& format) const;
  size_t Find(const std::string& column, const std::string& file) const;
  void Erase(std::initializer_list<Part> parts);

  std::vector<std::string> headings;
  std::map<Part, size_t> places;
};

}  // namespace kivadmin
