// `completion`: what a shell sources to complete kivadmin's lines, and the answers that it asks
// for.
#include <iostream>

#include "hosts/common/unicode.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {
namespace {

enum class Shell { kBash, kZsh, kFish };

struct CompletionArguments {
  Shell shell = Shell::kBash;
};

// Each asks with the words behind the program's name, up to the one that is being typed; what is no
// answer is completed as a file. A name with blanks is quoted, unless a quotation is open. zsh may
// be told by `source`, or find the script in a folder of its completions and run it as the
// function.
constexpr const char* kBash = R"sh(_kivadmin() {
  local word=${COMP_WORDS[COMP_CWORD]} line
  COMPREPLY=()
  while IFS= read -r line; do
    case $word in
      [\"\']*) COMPREPLY+=("$line") ;;
      *) COMPREPLY+=("$(printf %q "$line")") ;;
    esac
  done < <(kivadmin __complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _kivadmin kivadmin
)sh";
constexpr const char* kZsh = R"sh(#compdef kivadmin
_kivadmin() {
  local -a answers
  answers=("${(@f)$(kivadmin __complete "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
  if [[ -n $answers ]]; then compadd -a answers; else _files; fi
}
if [[ $funcstack[1] = _kivadmin ]]; then _kivadmin; else compdef _kivadmin kivadmin; fi
)sh";
constexpr const char* kFish = R"sh(function __kivadmin_complete
  set -l typed (commandline -opc) (commandline -ct)
  kivadmin __complete $typed[2..-1] 2>/dev/null
end
complete -c kivadmin -a '(__kivadmin_complete)'
)sh";

void PrintScript(const CommonOptions&, const CompletionArguments& arguments) {
  std::cout << (arguments.shell == Shell::kBash  ? kBash
                : arguments.shell == Shell::kZsh ? kZsh
                                                 : kFish);
}

// What a shell hands over as it was typed.
std::string Unquoted(std::string word) {
  std::erase_if(word, [](char c) { return c == '"' || c == '\'' || c == '\\'; });
  return word;
}

void PrintNames(const Session& session, const Roster& roster, const std::string& begun) {
  const std::string key = kivhost::FoldCase(begun);
  for (const kivstore::SLoginNameObj& entry : roster.list) {
    const std::string name = session.Show(entry.firstName);
    if (kivhost::FoldCase(name).starts_with(key)) {
      std::cout << name << '\n';
    }
  }
}

// The teachers or classes of the store that the line is about.
void PrintNamesFor(const kivhost::Completion& completion, const std::string& begun) {
  const bool ofTeachers = completion.option.ends_with("teacher");
  if (completion.root.empty() || !(ofTeachers || completion.option.ends_with("class"))) {
    return;
  }
  CommonOptions common;
  common.root = completion.root;
  const Session session(common, Session::Access::kLook);
  if (ofTeachers) {
    PrintNames(session, Teachers(session), begun);
    return;
  }
  // The classes of --to-class are those of --to-teacher, if it is there.
  auto teacher = completion.values.find("--teacher");
  if (completion.option == "--to-class" && completion.values.contains("--to-teacher")) {
    teacher = completion.values.find("--to-teacher");
  }
  ChooseTeacher(session, teacher != completion.values.end() ? teacher->second : "");
  PrintNames(session, Classes(session), begun);
}

}  // namespace

void AddCompletionCommand(const Command& app, CommonOptions& common) {
  const Command command = app.AddCommand(
      "completion",
      "Print what completes kivadmin's lines in a shell, names of teachers and classes included:\n"
      "source <(kivadmin completion bash) in ~/.bashrc, and likewise for the others");
  CompletionArguments& arguments = AddRun(command, common, PrintScript);
  command
      .AddChoice<Shell>("SHELL", arguments.shell, "The shell",
                        {{"bash", Shell::kBash}, {"zsh", Shell::kZsh}, {"fish", Shell::kFish}})
      .Require();
}

void PrintCompletions(const kivhost::CommandLine& app, std::vector<std::string> typed) {
  for (std::string& word : typed) {
    word = Unquoted(word);
  }
  const kivhost::Completion completion = app.Complete(typed);
  for (const std::string& word : completion.words) {
    std::cout << word << '\n';
  }
  PrintNamesFor(completion, typed.empty() ? "" : typed.back());
}

}  // namespace kivadmin
