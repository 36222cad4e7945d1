// The public header and the examples, with the compilers at hand; on Windows, where none is at
// hand, as they were built along with the tests.
#include <gtest/gtest.h>

#include <array>

#include "tests/support/run_program.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

#ifndef _WIN32
const std::string kSource = KIVSTORE_SOURCE_DIR;
const std::string kLibraryFolder = KIVSTORE_BINARY_DIR "/lib";

// With the flags that the library itself was built with.
RunResult Compile(std::vector<std::string> command) {
  if (sizeof(void*) == 4) {
    command.push_back("-m32");
  }
#if defined(__SANITIZE_ADDRESS__)
  command.push_back("-fsanitize=address,undefined");
#endif
  command.insert(command.end(), {"-Wall", "-Wextra", "-Werror", "-I" + kSource + "/include"});
  return RunProgram(command);
}

#endif

constexpr char kNetworkedRoster[] =
    "Ms Hill\n"
    "  Room 12\n"
    "    Ann Lee: mission 7\n"
    "    Mei: mission 1\n"
    "  Room 14\n"
    "Ms Zeta\n"
    "  Group\n";
constexpr char kLocalRoster[] =
    "  At home\n"
    "    Ann Lee: mission 7\n";

class Examples : public testing::Test {
 protected:
  Examples() {
    StoreBuilder networked(folder.Path("network"), Kind::kTeachers);
    const std::string hill = networked.AddTeacher("Ms Hill");
    const std::string room = networked.AddClass(hill, "Room 12");
    AddAnn(networked, room);
    networked.AddStudent(room, "Mei");
    networked.AddClass(hill, "Room 14");
    networked.AddClass(networked.AddTeacher("Ms Zeta"), "Group");
    networked.Finish();
    StoreBuilder local(folder.Path("local"), Kind::kLocal);
    AddAnn(local, local.AddClass("At home"));
    local.Finish();
  }

  static void AddAnn(StoreBuilder& store, const std::string& room) {
    const std::string ann = store.AddStudent(room, "Ann", "Lee");
    OptionsBytes options;
    options.SetMission(7).SetLessonDone(7);
    store.WriteOptions(ann, options);
  }

  void ExpectRosters(std::vector<std::string> command) {
    std::vector<std::string> local = command;
    command.push_back(folder.Path("network"));
    ExpectRoster(command, kNetworkedRoster);
    local.push_back("--local");
    local.push_back(folder.Path("local"));
    ExpectRoster(local, kLocalRoster);
  }

  // In the line ends of the system.
  static void ExpectRoster(const std::vector<std::string>& command, const char* roster) {
    RunResult run = RunProgram(command);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    std::erase(run.output, '\r');
    EXPECT_EQ(run.output, roster);
  }

  TempFolder folder;
};

#ifdef _WIN32

TEST_F(Examples, TheOneInCRuns) {
  ExpectRosters({KIVSTORE_BINARY_DIR "/bin/example_c"});
}

TEST_F(Examples, TheOneInCppRuns) {
  ExpectRosters({KIVSTORE_BINARY_DIR "/bin/example_cpp"});
}

#else

class CompiledExamples : public Examples {
 protected:
  void CompileAndRun(const std::string& compiler, const std::string& standard,
                     const std::string& file) {
    const std::string program = folder.Path("example");
    const RunResult compiled =
        Compile({compiler, standard, "-pedantic", "-o", program, kSource + "/examples/" + file,
                 "-L" + kLibraryFolder, "-lkivstore", "-Wl,-rpath," + kLibraryFolder});
    ASSERT_EQ(compiled.exitCode, 0) << compiled.errors;
    ExpectRosters({program});
  }
};

TEST_F(CompiledExamples, TheOneInCRuns) {
  CompileAndRun("cc", "-std=c99", "print_store.c");
}

TEST_F(CompiledExamples, TheOneInCppRuns) {
  CompileAndRun("c++", "-std=c++17", "print_store.cpp");
}

TEST_F(Examples, TheOneInPythonRuns) {
  const RunResult python =
      RunProgram({"python3", "-c", "import ctypes, sys; print(ctypes.sizeof(ctypes.c_void_p))"});
  if (python.output != std::to_string(sizeof(void*)) + "\n") {
    GTEST_SKIP() << "no python3 of this word size";
  }
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the interpreter is not built with the sanitizer";
#endif
  ExpectRosters({"env", "KIVSTORE_LIBRARY=" + kLibraryFolder + "/libkivstore.so", "python3",
                 kSource + "/examples/print_store.py"});
}

TEST(PublicHeader, CompilesAsStrictCAndCpp) {
  const TempFolder folder;
  for (const char* const file : {"host.c", "host.cpp"}) {
    folder.WriteFile(file,
                     "#include <kivstore/general_proc.h>\n"
                     "int main(void) { SGeneralParams p; p.command = KIV_PRODUCT_ID; return "
                     "p.command != 78; }\n");
  }
  for (const auto& [compiler, standard, file] :
       std::vector<std::array<std::string, 3> >{{"cc", "-std=c99", "host.c"},
                                                {"cc", "-std=c17", "host.c"},
                                                {"c++", "-std=c++11", "host.cpp"},
                                                {"c++", "-std=c++20", "host.cpp"}}) {
    const RunResult run =
        Compile({compiler, standard, "-pedantic-errors", "-fsyntax-only", folder.Path(file)});
    EXPECT_EQ(run.exitCode, 0) << standard << "\n" << run.errors;
  }
}

#endif

}  // namespace
}  // namespace kivtest
