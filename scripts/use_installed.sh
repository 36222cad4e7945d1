#!/bin/sh
# Uses an installed kivstore as hosts would: lays out a school with its programs, builds a host in each
# language, by pkg-config and by CMake, and compares what each shows with the report. Where the
# installation is the environment tells: PATH, PKG_CONFIG_PATH and kivstore_DIR; none of them for one of
# the system.
#
#   scripts/use_installed.sh WORK     WORK: a folder for what is made
set -eu
cd "$(dirname "$0")/.."
work=$1
store=$work/store
source=$PWD
mkdir -p "$work"

lay_out() {
  rm -rf "$store"
  kivadmin init "$store" --kind teachers
  kivadmin import "$store" examples/school.csv
  kivadmin progress "$store" --teacher "Ms Hill" --class "Room 12" --student "Ann Lee" --mission 9 \
    --lessons-done 1-8 --learned-keys yes
}

# A host shows letters beyond ASCII in its own way.
plain() { LC_ALL=C tr -d '\200-\377'; }

# The report in the form of the examples.
expected() {
  kivreport "$store" --format csv --columns teacher,class,student,current_mission | plain |
    awk -F, 'NR > 1 {
      sub(/\r$/, "")
      if ($1 != teacher) print $1
      if ($1 != teacher || $2 != class) print "  " $2
      teacher = $1; class = $2
      print "    " $3 ": mission " $4
    }'
}

# expect WHAT COMMAND ...: the command prints the school.
expect() {
  what=$1
  shift
  "$@" "$store" >"$work/raw"
  plain <"$work/raw" >"$work/told"
  diff "$work/expected" "$work/told" >"$work/difference" || {
    cat "$work/difference" >&2
    echo "$what shows another school than kivreport" >&2
    exit 1
  }
  echo "good: $what"
}

# A host of the classes: it shows the school, and adds the teacher that a second argument names.
write_core_user() {
  cat >"$work/core_user.cpp" <<'END'
#include <kivstore/app/class_reader.h>
#include <kivstore/app/general_call.h>
#include <kivstore/platform/platform.h>
#include <kivstore/store/change/adding.h>
#include <kivstore/store/place/display_name.h>
#include <kivstore/store/place/placing.h>

#include <cstdio>

using namespace kivstore;

int main(int argc, char** argv) {
  Platform().files = &CreatingFileServices();
  SGeneralParams params{};
  params.mode = 1;
  params.dataPath = argv[1];
  SGeneralCall call(params);
  if (argc == 3) {
    SFileSpec top;
    SString folder;
    TeachersFolder(call.GetSite(), top);
    return AddTeacherAt(call.GetSite(), top, SString(argv[2]), folder) ? 0 : 1;
  }
  SClassReader reader(*call.GetApp());
  SLoginList teachers;
  if (reader.ReadTeachers(teachers)) return 1;
  for (const SLoginNameObj& teacher : teachers) {
    std::printf("%s\n", DisplayName(teacher).GetText());
    call.GetSite().SelectTeacher(&teacher);
    SLoginList classes;
    if (reader.ReadClasses(classes)) return 1;
    for (const SLoginNameObj& group : classes) {
      std::printf("  %s\n", DisplayName(group).GetText());
      const SFailure failure = reader.ReadProgress(group, [](const SStudentReading& reading) {
        std::printf("    %s: mission %d\n", DisplayName(reading.student).GetText(),
                    static_cast<int>(reading.missions.current));
      });
      if (failure) return 1;
    }
  }
  return 0;
}
END
}

by_pkg_config() {
  rpath=-Wl,-rpath,$(pkg-config --variable=libdir kivstore)
  # shellcheck disable=SC2046
  cc -o "$work/print_store_c" examples/print_store.c $(pkg-config --cflags --libs kivstore) "$rpath"
  expect "a program in C, by pkg-config" "$work/print_store_c"
  # shellcheck disable=SC2046
  c++ -std=c++17 -o "$work/print_store_cpp" examples/print_store.cpp \
    $(pkg-config --cflags --libs kivstore) "$rpath"
  expect "a program in C++, by pkg-config" "$work/print_store_cpp"
  # shellcheck disable=SC2046
  c++ -std=c++20 -o "$work/core_user" "$work/core_user.cpp" $(pkg-config --cflags --libs kivstore-core)
  expect "a program on the classes, by pkg-config" "$work/core_user"
}

by_cmake() {
  cat >"$work/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C CXX)
find_package(kivstore 1 REQUIRED)
add_executable(in_c $source/examples/print_store.c)
add_executable(in_cpp $source/examples/print_store.cpp)
add_executable(on_the_classes core_user.cpp)
target_link_libraries(in_c PRIVATE kivstore::kivstore)
target_link_libraries(in_cpp PRIVATE kivstore::kivstore)
target_link_libraries(on_the_classes PRIVATE kivstore::creating kivstore::core)
END
  cmake -S "$work" -B "$work/build" >"$work/cmake.log"
  cmake --build "$work/build" >>"$work/cmake.log"
  expect "a program in C, by CMake" "$work/build/in_c"
  expect "a program in C++, by CMake" "$work/build/in_cpp"
  expect "a program on the classes, by CMake" "$work/build/on_the_classes"
}

in_other_languages() {
  library=$(pkg-config --variable=libdir kivstore)
  expect "a script in Python" env KIVSTORE_LIBRARY="$library/libkivstore.so.1" \
    python3 examples/print_store.py
  if command -v mcs >/dev/null; then
    mcs -unsafe -out:"$work/print_store.exe" examples/print_store.cs
    expect "a program in C#, by Mono" env LD_LIBRARY_PATH="$library" mono "$work/print_store.exe"
  else
    echo "left out: a program in C#, for want of Mono's mcs"
  fi
}

# Last, since it changes the store.
creating() {
  "$work/core_user" "$store" "Mx New"
  kivadmin list "$store" | grep -qF "Mx New"
  echo "good: a teacher added by the classes"
}

lay_out >"$work/admin.log"
expected >"$work/expected"
grep -q 'Ann Lee: mission 9' "$work/expected"
write_core_user
by_pkg_config
by_cmake
in_other_languages
creating
