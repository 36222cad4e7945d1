// What the shared library shows and what it asks of the system.
#ifndef _WIN32
#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "tests/support/run_program.h"

namespace kivtest {
namespace {

const char* const kLibrary = KIVSTORE_BINARY_DIR "/lib/libkivstore.so";

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

struct Symbol {
  char kind;
  std::string name, version;  // of the C library or the runtime it comes from
};

std::vector<Symbol> ListSymbols(const char* which) {
  const RunResult run = RunProgram({"nm", "-D", "-P", which, kLibrary});
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  std::vector<Symbol> symbols;
  std::istringstream lines(run.output);
  std::string name, kind, rest;
  while (lines >> name >> kind && std::getline(lines, rest)) {
    const size_t at = name.find('@');
    symbols.push_back({kind[0], name.substr(0, at),
                       at == std::string::npos ? "" : name.substr(name.find_last_of('@') + 1)});
  }
  return symbols;
}

TEST(SharedLibrary, ShowsOneFunctionAndNothingElse) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer adds symbols of its own";
  }
  const std::vector<Symbol> symbols = ListSymbols("--defined-only");
  ASSERT_EQ(symbols.size(), 1u);
  EXPECT_EQ(symbols[0].name, "GeneralProc");
  EXPECT_EQ(symbols[0].kind, 'T');
}

std::set<std::string> Words(const char* text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

// What a library may ask of the C library without being able to create a file or folder: `open`
// can only with a flag that stands in no source file of it. A name that is new here wants a look
// before it is added.
const std::set<std::string> kFiles = Words(
    "chdir close closedir fchmod fcntl fcntl64 fdatasync fdopendir fgetxattr flock "
    "fremovexattr fsetxattr fstat fstat64 fstatat fstatat64 fsync ftruncate ftruncate64 "
    "getcwd getxattr lstat lstat64 open open64 openat openat64 pread pread64 pwrite pwrite64 "
    "read readlink removexattr rename renameat renameat2 rmdir setxattr stat stat64 statvfs "
    "statvfs64 syscall unlink unlinkat write chmod fchmodat __open_2 __open64_2 __openat_2 "
    "__openat64_2 __read_chk __pread_chk __pread64_chk __getcwd_chk __fxstat __xstat "
    "__fxstat64 __xstat64 __fstat64_time64 __stat64_time64 __lstat64_time64 __fcntl_time64 "
    "faccessat access getdents64 fstatfs fstatfs64 statfs statfs64");

// The C library's words for work on files and for the start of programs, by which an import is
// taken for one.
const std::regex kSpeaksOfFiles(
    "open|file|dir|link|mk|tmp|temp|write|read|stat|chmod|attr|trunc|sync|name|syscall|creat|"
    "system|spawn|fork|exec|bind|uring");

// Contain such a word by chance.
const std::set<std::string> kOtherImports = {"uname", "sched_getaffinity", "pthread_setname_np"};

TEST(SharedLibrary, ImportsNothingThatCouldMakeAFileOrFolder) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer imports more";
  }
  const std::vector<Symbol> imports = ListSymbols("--undefined-only");
  EXPECT_GT(imports.size(), 10u);
  for (const Symbol& symbol : imports) {
    const bool ofTheRuntime = symbol.version.rfind("GLIBC_", 0) != 0;
    if (ofTheRuntime) {
      EXPECT_FALSE(std::regex_search(symbol.name, std::regex("filebuf|fstream|filesystem")))
          << symbol.name;
      continue;
    }
    EXPECT_TRUE(!std::regex_search(symbol.name, kSpeaksOfFiles) || kFiles.count(symbol.name) != 0 ||
                kOtherImports.count(symbol.name) != 0)
        << symbol.name << " is imported: can it create?";
  }
}

}  // namespace
}  // namespace kivtest
#endif
