// Pieces that every page has, whether it is of one school or of many.
#pragma once

#include <cstddef>
#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// What stands above the classes in numbers.
struct PageCounts {
  size_t schools = 0;  // 0: one, which nobody counts
  bool hasTeachers = false;
  size_t teachers = 0;
  size_t classes = 0;
  size_t students = 0;
  size_t notBegun = 0;
  size_t idle = 0;

  void Add(const Report& report);
};

// To the begin of its contents; `report` tells the name and the time. A page of many students has
// a style of its own.
std::string PageBegin(const Report& report, size_t students, bool isComplete, const Words& words);
std::string PageEnd(const Words& words);

// "As of 22 Nov 2026, 10:15 · /srv/east".
std::string OriginLine(const Report& report, const Words& words);

// What could not be read, an item each; empty without any.
std::string UnreadItems(const Report& report, const std::string& school, const Words& words);
std::string UnreadItem(const std::string& place, const std::string& reason);
std::string UnreadSection(const std::string& items, const Words& words);

std::string CountsList(const PageCounts& counts, const Report& report, const Words& words);

// For the script, which shows it.
std::string SearchForm(Word label, bool hasProgress, const Words& words);

}  // namespace kivreport
