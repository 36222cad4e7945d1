#include "store/place/failure_report.h"

#include "foundation/application.h"
#include "foundation/site_mode.h"
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

SString CheckDriveText() {
  SString drive = gDataPathOverride;
  if (drive.EndsWith("\\", true)) {
    drive.DeleteRight(1);
  }
  SString text;
  text.Substitute(SString::FromResource(kTextCheckDrive), drive);
  return text;
}

}  // namespace

DropMessageHook gDropMessage = [](const SString&) {};

bool UsesLocalDisk() {
  const SKivTeacherOptionsDob* const options = gApp != nullptr ? gApp->options : nullptr;
  return options != nullptr && !options->UseSystemIODialogs.value &&
         !options->CentralFileLocation.value;
}

bool ReportFileFailure(int16_t code) {
  SString text = TextOf(code);
  if (text.IsEmpty()) {
    return false;
  }
  if (UsesLocalDisk()) {
    gApp->PrepareMessage();
    text += kSentenceBreak + CheckDriveText();
  } else if (IsSharedSite()) {
    text += kSentenceBreak + SString::FromResource(kTextCheckNetwork);
  }
  DropMessage(text);
  return true;
}

}  // namespace kivstore
