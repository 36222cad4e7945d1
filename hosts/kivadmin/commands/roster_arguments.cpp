#include "hosts/kivadmin/commands/roster_arguments.h"

namespace kivadmin {

void AddRosterArguments(const Command& command, std::string& file, RosterFormat& format) {
  command
      .AddOption(
          "FILE", file,
          "A table with a heading (CSV; comma, semicolon or tab), a OneRoster bundle (zip or "
          "folder), or - for standard input")
      .Require();
  command
      .AddOption("--file-charset", format.charset,
                 "The character set of FILE; without it UTF-8, UTF-16 with a mark, or windows-1252")
      .Takes("NAME");
  command
      .AddOption("--columns", format.columns,
                 "Columns that the heading does not tell, by letter, number or heading: "
                 "teacher=B,class=Kurs,first=3,last=4 or name=5")
      .Takes("PART=COLUMN,...");
  command.AddFlag("--no-heading", format.noHeading, "The first row is a student, and no heading");
  command
      .AddOption("-t,--teacher", format.teacher, "The teacher of rows and classes that have none")
      .Takes("NAME");
  command.AddOption("-c,--class", format.group, "The class of students that have none")
      .Takes("NAME");
  command
      .AddOption("--school", format.school,
                 "Of a bundle the classes of this school alone, or of \"all\"")
      .Takes("NAME");
  command.AddOption("--term", format.term, "Of a bundle the classes of this term alone")
      .Takes("NAME");
  using enum RosterFormat::SeveralClasses;
  command.AddChoice<RosterFormat::SeveralClasses>(
      "--several-classes", format.severalClasses,
      "Which classes of a bundle's student are taken who is in several",
      {{"first", kFirst}, {"all", kAll}, {"none", kNone}}, "first");
}

void AddTwins(const Command& command, bool& keepsTwins) {
  command.AddChoice<bool>(
      "--twins", keepsTwins,
      "Of rows with one name in one class: refuse the second, or keep both, told\n"
      "apart by another character at the end",
      {{"refuse", false}, {"keep", true}}, "refuse");
}

}  // namespace kivadmin
