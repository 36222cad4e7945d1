// A roster as a school has it, outside a store: a table that a spreadsheet wrote, or a OneRoster
// bundle. Read whole, before anything of a store is looked at.
//
// What cannot be a roster at all is refused as a whole: nothing is guessed that could bring a wrong
// name into a store. A single row that cannot be understood is set aside with its reason.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kivadmin {

// One row. UTF-8, composed (NFC), without blanks around it. A row without a student stands for an
// empty class, one without a class for a teacher without any; without a teacher: of a store that
// has none.
struct RosterLine {
  size_t number = 0;  // of the line where the row begins, from 1
  std::string file;   // of a bundle: the one that the number counts in; else empty
  std::string teacher;
  std::string group;  // the class
  std::string first;
  std::string last;
};

struct RefusedLine {
  size_t number = 0;
  std::string file;  // as in RosterLine
  std::string why;
};

struct RosterFile {
  std::string name;    // for messages: "school.csv", "standard input"
  std::string readAs;  // how it was understood: "windows-1252, separator ;, columns ...; 25 rows"
  std::vector<RosterLine> lines;     // in the order of the file
  std::vector<RefusedLine> refused;  // the rows that are not among them
  std::vector<std::string> notes;    // what was ignored or decided, a sentence each
  // The last row breaks off where the file does: more may have stood behind it.
  bool isTorn = false;
  // It has no end of line: nothing tells a whole last row from one that is cut within its last
  // field.
  bool endsOpen = false;
};

// What a user tells about the file; whatever is empty is found out.
struct RosterFormat {
  std::string charset;     // of the file
  std::string columns;     // "teacher=B,class=Kurs": letters, numbers from 1, or headings
  bool noHeading = false;  // the first row is one of the roster
  std::string teacher;     // of rows and classes that have none
  std::string group;       // of students that have none
  // Of a OneRoster bundle:
  std::string school;  // by name or sourcedId; "all"
  std::string term;    // by title or sourcedId
  enum class SeveralClasses { kFirst, kAll, kNone };
  SeveralClasses severalClasses = SeveralClasses::kFirst;  // of one student: which are taken
};

// `path` is a file, the folder or zip of a bundle, or "-" for standard input. Throws wrong usage
// with one line where the file is no roster: what is wrong, and where.
RosterFile ReadRosterFile(const std::string& path, const RosterFormat& format);

// Makes the lines fit a store with or without teachers. With: classes of a bundle that have none
// are left out, and a table without any teacher is wrong usage. Without: the teachers go. Either is
// noted.
void FitToStore(RosterFile& roster, bool hasTeachers);

}  // namespace kivadmin
