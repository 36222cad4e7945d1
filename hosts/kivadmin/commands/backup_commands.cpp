// `backup` and `restore`: a store in a zip file, and back.
#include <filesystem>
#include <iostream>

#include "hosts/common/counted.h"
#include "hosts/common/interruption.h"
#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/backups/backup_writer.h"
#include "hosts/kivadmin/backups/store_restoring.h"
#include "hosts/kivadmin/backups/student_restoring.h"
#include "hosts/kivadmin/checking/store_check.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;

struct BackupArguments {
  std::string file;
  bool incomplete = false;
};

struct RestoreArguments {
  std::string file;
  EntryNames who;
  bool replace = false;
};

void TellLeftOut(const BackupManifest& manifest) {
  std::cout << std::flush;
  for (const BackupManifest::Unread& unread : manifest.unread) {
    std::cerr << "kivadmin: left out: " << unread.why << '\n';
  }
}

void NeedComplete(const BackupManifest& manifest, const std::string& file) {
  if (!manifest.unread.empty()) {
    throw HostError(
        kNoStore, file + ": is not complete: " + kivhost::Counted(manifest.unread.size(), "part") +
                      " of the store could not be read");
  }
}

std::string AtWorkText(size_t atWork) {
  return atWork == 0 ? ""
                     : "; " + kivhost::Counted(atWork, "student was", "students were") + " at work";
}

// Each step of something that takes long: Ctrl-C ends it there.
std::function<void()> StepOf(kivhost::ProgressBar& bar, const kivhost::Interruption& interruption,
                             const char* what) {
  return [&bar, &interruption, what] {
    bar.Advance();
    interruption.NeedNone(what);
  };
}

void Backup(const CommonOptions& common, const BackupArguments& arguments) {
  const Session session(common, Session::Access::kLook);
  kivhost::ZipWriter zip(arguments.file, common.force);
  kivhost::ProgressBar bar("classes", StoreCheck::CountClasses(session), false);
  const kivhost::Interruption interruption;
  BackupWriter writer(session, zip, arguments.incomplete,
                      StepOf(bar, interruption, "no backup was made"));
  const BackupManifest manifest = writer.Run();
  zip.Finish();
  session.Say("backed up " + manifest.Counts() + " to " + arguments.file + ": " +
              kivhost::Counted(static_cast<size_t>(manifest.files), "file") +
              AtWorkText(writer.CountAtWork()));
  TellLeftOut(manifest);
  NeedComplete(manifest, arguments.file);
}

void RestoreOne(const CommonOptions& common, const RestoreArguments& arguments) {
  const BackupReader backup(arguments.file);
  const Session session(common, Session::Access::kChange);
  session.Say(RestoreStudent(
      session, backup,
      {arguments.who.teacher, arguments.who.group, arguments.who.student, arguments.replace}));
}

// The folder of a new store, which goes again if nothing comes of it.
class NewRoot {
 public:
  NewRoot(const std::string& root, bool isToBeMade) : root(root) {
    std::error_code error;
    isMade = isToBeMade && fs::create_directories(fs::path(root), error);
    if (error) {
      throw HostError(kNoStore, root + ": " + error.message());
    }
  }
  ~NewRoot() {
    std::error_code ignored;
    if (isMade) {
      fs::remove(fs::path(root), ignored);
    }
  }
  NewRoot(const NewRoot&) = delete;
  NewRoot& operator=(const NewRoot&) = delete;

  void Keep() { isMade = false; }

 private:
  std::string root;
  bool isMade;
};

// A backup tells itself what kind of store it is of, and kivstore.conf in it the character set.
CommonOptions OptionsFor(const CommonOptions& common, const BackupReader& backup) {
  const BackupManifest& manifest = backup.GetManifest();
  if ((common.kind && *common.kind != manifest.kind) ||
      (common.charset && !kivhost::EqualNoCase(*common.charset, manifest.charset))) {
    throw HostError(kWrongUsage, backup.GetPath() + ": is of a store of the kind " +
                                     NameOf(manifest.kind) + " in " + manifest.charset +
                                     "; leave --kind and --charset out");
  }
  CommonOptions options = common;
  options.kind = manifest.kind;
  options.charset.reset();
  return options;
}

void RestoreAll(const CommonOptions& common, const RestoreArguments& arguments) {
  const BackupReader backup(arguments.file);
  const CommonOptions options = OptionsFor(common, backup);
  const std::string root = kivhost::HeldRoot(common.root);
  NeedEmptyRoot(root);
  NewRoot place(root, !common.dryRun);
  const Session session(options, Session::Access::kLayOut);
  const BackupManifest& manifest = backup.GetManifest();
  kivhost::ProgressBar bar("files", static_cast<size_t>(manifest.files), false);
  const kivhost::Interruption interruption;
  RestoreStore(session, backup, StepOf(bar, interruption, "nothing was restored"));
  place.Keep();
  session.Say("restored " + manifest.Counts() + " as of " + manifest.when + " from " +
              arguments.file + " to " + root);
  TellLeftOut(manifest);
  NeedComplete(manifest, arguments.file);
}

void Restore(const CommonOptions& common, const RestoreArguments& arguments) {
  if (!arguments.who.student.empty()) {
    RestoreOne(common, arguments);
  } else if (arguments.replace || !arguments.who.group.empty() || !arguments.who.teacher.empty()) {
    throw HostError(kWrongUsage, "--teacher, --class and --replace go with --student");
  } else {
    RestoreAll(common, arguments);
  }
}

}  // namespace

void AddBackupCommands(const Command& app, CommonOptions& common) {
  const Command backup = app.AddCommand(
      "backup",
      "Copy the whole store into a zip file, while others work in it: each list under its lock.\n"
      "The file appears when all of it has been read back.");
  BackupArguments& ofBackup = AddRun(backup, common, Backup);
  AddStoreArguments(backup, common);
  backup.AddOption("FILE", ofBackup.file, "The zip file; one that is there stays without --force")
      .Require();
  backup.AddFlag("--incomplete", ofBackup.incomplete,
                 "Leave out what cannot be read, and tell it; exit code 3 then");

  const Command restore = app.AddCommand(
      "restore",
      "Make a store of a backup, where none is; or put one student of it back into the store,\n"
      "into the class of that name, with options and games.");
  RestoreArguments& ofRestore = AddRun(restore, common, Restore);
  restore.AddOption("FILE", ofRestore.file, "The zip file that backup wrote").Require();
  AddChangeArguments(restore, common, true);
  const CommandOption group = AddClassOption(restore, ofRestore.who);
  AddStudentOption(restore, ofRestore.who).Needs(group);
  AddTeacherOption(restore, ofRestore.who);
  restore.AddFlag("--replace", ofRestore.replace,
                  "Set aside who has the student's name now; undelete brings that one back");
}

}  // namespace kivadmin
