#include "store/place/failure_report.h"

#include "platform/text_numbers.h"
#include "records/teacher_options_dob.h"

namespace kivstore {
namespace {

constexpr char kSentenceBreak[] = "  ";

struct FailureText {
  int16_t code;
  int text;
};
constexpr FailureText kFailureTexts[] = {
    {kFailSave, kTextFileNotSaved},         {kFailOpen, kTextFileNotOpened},
    {kFailDelete, kTextSelectedNotDeleted}, {kFailRename, kTextFileNotRenamed},
    {kFailRead, kTextFileNotRead},          {kFailWrite, kTextFileNotWritten}};

SString TextOf(int16_t code) {
  for (const FailureText& failure : kFailureTexts) {
    if (failure.code == code) {
      return SString::FromResource(failure.text);
    }
  }
  return SString();
}

SString CheckDriveText(const SString& drive) {
  SString text;
  text.Substitute(SString::FromResource(kTextCheckDrive), drive);
  return text;
}

SString OverridingDrive(const SSite& site) {
  SString drive = site.GetDataPathOverride();
  if (drive.EndsWith("\\", true)) {
    drive.DeleteRight(1);
  }
  return drive;
}

SString DriveOf(const SString& path) {
  return path.GetAt(1) == ':' ? path.Left(2) : SString();
}

void PrepareMessage(const SSite& site) {
  if (site.GetOwner() != nullptr) {
    site.GetOwner()->PrepareMessage();
  }
}

}  // namespace

bool UsesLocalDisk(const SSite& site) {
  const SKivTeacherOptionsDob* const options = site.GetOptionsInForce();
  return options != nullptr && !options->UseSystemIODialogs.value &&
         !options->CentralFileLocation.value;
}

bool ReportFileFailure(SSite& site, int16_t code) {
  SString text = TextOf(code);
  if (text.IsEmpty()) {
    return false;
  }
  if (UsesLocalDisk(site)) {
    PrepareMessage(site);
    text += kSentenceBreak + CheckDriveText(OverridingDrive(site));
  } else if (site.IsShared()) {
    text += kSentenceBreak + SString::FromResource(kTextCheckNetwork);
  }
  site.TellFailure(text);
  return true;
}

void ReportStoreFailure(SSite& site, const SFileSpec& spec, ListKind list, bool removable) {
  site.NoteFailure(FailureKind::kMissing, spec.IsValid() ? spec.GetPath() : site.GetDataRoot(),
                   list);
  if (removable) {
    PrepareMessage(site);
    site.TellFailure(CheckDriveText(DriveOf(site.GetDataRoot(true))));
  } else if (!site.HasStoreFailed()) {
    site.NoteStoreFailed();
    SString text;
    text.FormatResource(kTextNoDataFiles, site.GetDataRoot().GetText());
    site.TellFailure(text);
  }
}

}  // namespace kivstore
