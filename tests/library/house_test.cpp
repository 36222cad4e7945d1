// How the source is built up: which floor may know which, and where the system is spoken to.
#include <gtest/gtest.h>

#include <functional>

#include "tests/library/source_files.h"

namespace kivtest {
namespace {

const std::vector<std::string> kLibraryRooms = {
    "include", "platform", "foundation", "archive", "records", "store", "game", "app", "probes"};
const std::vector<std::string> kAllRooms = {"include", "platform", "foundation", "archive",
                                            "records", "store",    "game",       "app",
                                            "probes",  "hosts"};

// Of the room that a path lies in; -1 outside the house.
int FloorOf(const std::string& path) {
  const std::map<std::string, int> floors = {{"include", 0},    {"kivstore", 0}, {"platform", 0},
                                             {"foundation", 1}, {"archive", 2},  {"records", 3},
                                             {"store", 4},      {"game", 5},     {"app", 6},
                                             {"probes", 6},     {"hosts", 7}};
  const auto found = floors.find(path.substr(0, path.find('/')));
  return found != floors.end() ? found->second : -1;
}

std::vector<std::string> OwnIncludes(const std::string& text) {
  return FindBetween(text, "#include \"", '"');
}

std::vector<std::string> SystemIncludes(const std::string& text) {
  return FindBetween(text, "#include <", '>');
}

TEST(House, ARoomIncludesNothingFromTheFloorsAbove) {
  for (const auto& [path, text] : ReadSources(kAllRooms)) {
    for (const std::string& included : OwnIncludes(text)) {
      EXPECT_GE(FloorOf(included), 0) << path << " includes " << included << ", not from the root";
      EXPECT_LE(FloorOf(included), FloorOf(path)) << path << " includes " << included;
    }
  }
}

TEST(House, ProbesAndCommandsDoNotKnowEachOther) {
  for (const auto& [path, text] : ReadSources({"app", "probes"})) {
    const std::string other = IsUnder(path, "app") ? "probes" : "app";
    for (const std::string& included : OwnIncludes(text)) {
      EXPECT_FALSE(IsUnder(included, other)) << path << " includes " << included;
    }
  }
}

TEST(House, NoTwoFilesIncludeEachOtherInARing) {
  const auto sources = ReadSources(kAllRooms);
  std::set<std::string> done, open;
  const std::function<void(const std::string&)> visit = [&](const std::string& path) {
    const auto source = sources.find(path);
    if (source == sources.end() || done.count(path) != 0) {
      return;
    }
    EXPECT_TRUE(open.insert(path).second) << "a ring through " << path;
    for (const std::string& included : OwnIncludes(source->second)) {
      if (open.count(included) != 0) {
        ADD_FAILURE() << path << " and " << included << " include each other";
      } else {
        visit(included);
      }
    }
    open.erase(path);
    done.insert(path);
  };
  for (const auto& [path, text] : sources) {
    visit(path);
  }
}

TEST(House, OnlyThePlatformFolderIncludesSystemHeaders) {
  // Headers of the language that ask the system for something.
  const std::set<std::string> kAskTheSystem = {"filesystem", "fstream", "thread", "chrono",
                                               "ctime",      "mutex",   "future"};
  for (const auto& [path, text] : ReadSources(kLibraryRooms)) {
    if (IsUnder(path, "platform")) {
      continue;
    }
    for (const std::string& included : SystemIncludes(text)) {
      const bool plain = included.find('.') == std::string::npos || included == "stdint.h";
      EXPECT_TRUE(plain && kAskTheSystem.count(included) == 0) << path << " includes " << included;
    }
  }
}

TEST(House, WhatCreatesStandsInOneFileThatTheLibraryDoesNotLink) {
  const char* const kMakers[] = {
      "O_CREAT",     "O_TMPFILE",        "CREATE_NEW",       "CREATE_ALWAYS",
      "OPEN_ALWAYS", "creat(",           "mkdir(",           "mkdirat(",
      "mknod(",      "mkfifo(",          "symlink(",         "link(",
      "linkat(",     "fopen(",           "freopen(",         "tmpfile(",
      "mkstemp(",    "sendfile(",        "copy_file_range(", "CreateDirectoryA(",
      "CopyFileA(",  "CreateHardLinkA(", "GetTempFileNameA("};
  int filesThatCreate = 0;
  for (const auto& [path, text] : ReadSources(kLibraryRooms)) {
    const std::set<std::string> words = WordsOf(text);
    const bool allowed = path.find("/creating_file_services.cpp") != std::string::npos;
    bool creates = false;
    for (const char* const maker : kMakers) {
      creates = creates || words.count(maker) != 0;
      EXPECT_TRUE(allowed || words.count(maker) == 0) << path << ": " << maker;
    }
    filesThatCreate += creates;
  }
  EXPECT_GE(filesThatCreate, 1) << "the words are not found any more";
}

TEST(House, SystemCallsByNumberCreateNothing) {
  const std::set<std::string> kAllowed = {"SYS_getdents64", "SYS_renameat2"};
  for (const auto& [path, text] : ReadSources(kLibraryRooms)) {
    for (const std::string& word : WordsOf(text)) {
      const bool number = word.rfind("SYS_", 0) == 0 || word.rfind("__NR_", 0) == 0;
      EXPECT_TRUE(!number || kAllowed.count(word) != 0) << path << " calls " << word;
    }
  }
}

}  // namespace
}  // namespace kivtest
