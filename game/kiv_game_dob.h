// A game: one student's saved state. This is the product-neutral half of the record: whose it is,
// where its file lies, the options it runs under, and the flows by which games are opened, saved
// and started. SGameDob (game_dob.h) adds the progress.
//
// A game file ("autogame.zep" and others), numbers big-endian:
//
//   0   4   the bytes "Game"
//   4   4   data version; a file of another version is no game file
//   8       firstName, lastName, longFileName, each its bytes and one NUL
//       1   publicFile
//           the per-game options (game_options_dob.h), then the rest of game_dob.h
//
// No trailer, length or checksum; where it lies is not stored. A default game is 957 bytes long.
//
// A game has a host, the application. One without stands alone: it is loaded, transferred and
// compared, with options of the tutor's own kind, and its flows answer false. The host only ever
// asks LoadGame for the progress of a student; the flows are a playing tutor's.
#pragma once

#include <memory>

#include "archive/dob.h"
#include "archive/file_version.h"
#include "foundation/files/file_spec.h"
#include "foundation/files/file_type.h"
#include "foundation/text/string.h"
#include "game/game_host.h"
#include "records/game_options_dob.h"

namespace kivstore {

inline const SFileType& GameType() {
  return FindFileType(kFileTypeGame);
}

class SLockFile;

class SKivGameDob : public SDob {
 public:
  // The host's factory makes the options.
  explicit SKivGameDob(IGameHost* host = nullptr);
  SKivGameDob(const SKivGameDob& other);
  ~SKivGameDob() override;

  void Clear() override;
  void Serialize(IDobArchive& archive) override;
  void SetDirty(bool value) override;
  bool IsDirty() const override;
  SDateTime GetModified() const override;
  bool HasDifferences() const override;
  bool IsEqual(const SDob& other) const override;
  void Copy(const SDob& other) override;
  // A full copy too, dirty and options included: there is no stamp rule at this level.
  void Merge(const SDob& other) override;
  // Flags nothing: the options are handed the whole game, which they refuse.
  void MarkDifferences(const SDob& other) override;
  void ClearStamps() override;
  ClassId GetClassId() const override { return StaticClassId(); }
  bool IsA(const SDob& other) const override;
  SDob* CreateNew() const override { return nullptr; }
  uint32_t GetVersion() const override { return gFileVersion; }

  // `parent` is an opaque window reference that is only passed on. Flows answer whether they came
  // to their end.
  virtual const SString& GetStartScreen() const = 0;
  virtual void CopyGameFrom(const SKivGameDob&) {}
  virtual bool Save(bool forceDialog, void* parent);
  virtual bool SaveSharedCopy(void* parent);
  virtual bool Open(void* parent);
  virtual bool NewGame(void* parent) { return NewDefaultGame(parent); }
  virtual bool NewDefaultGame(void* parent);
  virtual bool NewGameWithOptions(const SDob& gameOptions, void* parent);
  virtual bool NewGameKeepingOptions(void* parent);
  // The loaded game becomes the application's pending game. A shared game, or one of another owner
  // that the user agreed to, becomes this owner's: dirty and without a file. This record stays,
  // clean; one that was itself the pending game is deleted by that.
  virtual bool LoadFile(const SFileSpec& spec, const SString& longName, void* parent);
  // Saves to `spec` and enters it into its folder's index; a failed first save leaves no file.
  // Only a shared game locks the folder's index.
  virtual bool SaveFile(SFileSpec& spec, const SString& longName, void* parent);
  virtual bool ConfirmClose(void* parent);
  // What a user interface overrides.
  virtual bool PickSaveFile(SFileSpec& spec, SString& longName, bool& shared, const SFileType& type,
                            void* parent);
  virtual bool PickOpenFile(SFileSpec& spec, SString& longName, const SFileType& type,
                            void* parent);
  virtual int AskSaveChanges(void* parent);
  virtual bool ConfirmForeignGame(void* parent);
  // Composes the text for the code and drops it.
  virtual void ReportError(int16_t code);
  // The application's current owner and options, at the start of a game; clean.
  virtual void Init(void* parent);
  virtual void OnActivated();
  virtual void OnLoaded() {}    // on the old game, when another was loaded
  virtual void OnReplaced() {}  // on the old game, when a default one was started

  const SFileSpec& GetFileSpec() const { return fileSpec; }
  SKivTeacherOptionsGameDob* GetOptions() const { return options; }
  const SString& GetLongFileName() const { return longFileName; }
  const SString& GetFirstName() const { return firstName; }
  const SString& GetLastName() const { return lastName; }
  // A new value makes the record dirty.
  void SetLongFileName(const SString& value) { SetText(longFileName, value); }
  void SetFirstName(const SString& value) { SetText(firstName, value); }
  void SetLastName(const SString& value) { SetText(lastName, value); }
  SString GetFirstNameUpper() const;
  SString GetLastNameUpper() const;
  SString GetFullName() const;
  SString GetFullNameUpper() const;  // the form in which owners are compared
  void SetPublicFile(bool value) { publicFile = value; }
  bool IsPublicFile() const { return publicFile; }

  // Silent. False for anything but a whole game file of this version; the record is untouched
  // unless the fault lies behind the header.
  bool LoadGame(const SFileSpec& spec);
  static bool IsGameFile(const SFileSpec& spec);
  bool IsSharedGameFile(const SFileSpec& spec) const;
  // Where a game goes that has no place yet.
  void DefaultGameFolder(SFileSpec& spec) const;

  static ClassId StaticClassId();

  SFileSpec fileSpec;    // invalid until the game was loaded or saved
  SString longFileName;  // the student's name for it, as in the folder's index
  SString firstName;     // the owner's
  SString lastName;
  bool publicFile = false;                       // a shared game, never overwritten by a student
  SKivTeacherOptionsGameDob* options = nullptr;  // owned; null only when memory ran out

  // Codes of ReportError beside those of a file failure.
  static constexpr int16_t kNotAGame = 0;
  static constexpr int16_t kNoMemory = 1;
  static constexpr int16_t kForeignGame = 2;
  static constexpr int16_t kIsShared = 3;
  // What AskSaveChanges answers that ConfirmClose tells apart; anything else lets the game go.
  static constexpr int kAskFailed = -1;
  static constexpr int kCancelClose = 2;
  static constexpr int kSaveFirst = 3;

  IGameHost* GetHost() const { return host; }

 protected:
  void ResetFields();
  void TransferFields(IDobArchive& archive);
  bool FieldsEqual(const SKivGameDob& other) const;
  void CopyFields(const SKivGameDob& other);
  void MergeFields(const SKivGameDob& other) { CopyFields(other); }
  void MarkFields(const SKivGameDob& other);
  void ForEachField(const auto&) {}  // no stamped fields

 private:
  using OwnedGame = std::unique_ptr<SKivGameDob>;

  void SetText(SString& text, const SString& value);
  bool PickPlace(SFileSpec& spec, SString& longName, bool& shared, void* parent);
  bool SaveCopy(SFileSpec& spec, const SString& longName, void* parent) const;
  OwnedGame MakeSharedCopy() const;
  bool StartGame(const SDob* gameOptions, bool replacing, void* parent);
  bool HandOver(SKivGameDob* game) const;
  void RequestGameChange();
  OwnedGame ReadGame(const SFileSpec& spec);
  bool TakeOwnership(SKivGameDob& game, const SFileSpec& spec, const SString& longName,
                     void* parent);
  void MakeOurs(SKivGameDob& game, const SString& longName) const;
  bool LockFolder(SLockFile& lock, const SFileSpec& spec) const;
  bool WriteGame(SFileSpec& spec, const SString& longName, SLockFile& lock);
  void NoteSaved(const SFileSpec& spec, const SString& longName);
  OwnedGame CreateGame() const;

  IGameHost* host;  // null: none
};

}  // namespace kivstore
