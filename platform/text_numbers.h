// The numbers of the string table by name: kTextStudents is 16501.
#pragma once

namespace kivstore {

enum TextNumber : int {
#define KIV_TEXT(number, name, text) kText##name = number,
#include "platform/string_table.def"
#undef KIV_TEXT
};

}  // namespace kivstore
