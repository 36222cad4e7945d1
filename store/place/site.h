// The site that a store serves: its kind, who is selected, and whom the store asks for what only
// the application knows. Every operation of the store takes one. There are no threads here: one
// caller at a time.
//
// A site outlives the calls that use it: its kind, the teacher latch and the note that the store
// failed stay, the selected teacher and what a command remembers go with EndCall.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "store/place/failure.h"
#include "store/place/login_name.h"

namespace kivstore {

class SKivTeacherOptionsDob;

// What the store asks of the application, and what it tells it. A notification comes after the
// change is made; no operation depends on its answer.
class ISiteOwner {
 public:
  // The folder that holds the store.
  virtual SString GetDataPath() const = 0;
  // The teacher options in force; null without any.
  virtual const SKivTeacherOptionsDob* GetOptionsInForce() const = 0;
  // Ahead of a message that asks for a disk.
  virtual void PrepareMessage() = 0;

  virtual bool OnStudentRenamed(const SString& classDisplay, const SString& oldLast,
                                const SString& oldFirst, const SString& newLast,
                                const SString& newFirst, const SString& teacher) = 0;
  virtual bool OnClassRenamed(const SString& oldDisplay, const SString& newName,
                              const SString& teacher) = 0;
  virtual bool OnStudentMoved(const SString& sourceClass, const SString& destinationClass,
                              const SString& last, const SString& first,
                              const SString& sourceTeacher, const SString& destinationTeacher) = 0;
  virtual bool OnTeacherRenamed(const SString& oldDisplay, const SString& newName) = 0;
  virtual bool OnClassMoved(const SString& sourceTeacher, const SString& destinationTeacher,
                            const SString& name) = 0;

 protected:
  ~ISiteOwner() = default;
};

// The kinds of site (gSiteMode). Any other number: a single user, with no class level in the
// options and no count of a list.
inline constexpr int32_t kSiteShared = 1;          // on the network, no teachers named
inline constexpr int32_t kSiteLocal = 3;           // multi-user on one machine, no locks
inline constexpr int32_t kSiteSharedTeachers = 4;  // on the network, with teachers

class SSite {
 public:
  SSite() = default;
  SSite(const SSite&) = delete;
  SSite& operator=(const SSite&) = delete;

  // The application of the calls to come; null for none.
  void SetOwner(ISiteOwner* newOwner) { owner = newOwner; }
  ISiteOwner* GetOwner() const { return owner; }
  // A mode with teachers sets the latch, which nothing but ClearTeacherTier clears.
  void SetSiteMode(int32_t mode);
  void ClearTeacherTier() { teacherTier = 0; }
  // Forgets what lasts no longer than a call.
  void EndCall();

  int32_t GetSiteMode() const { return siteMode; }
  // Locks are in force, and the disk is asked anew after steps that others may race.
  bool IsShared() const { return siteMode == kSiteShared || siteMode == kSiteSharedTeachers; }
  bool IsMultiUser() const { return IsShared() || siteMode == kSiteLocal; }
  // The store has a layer of teachers above its classes (gTeacherTier).
  bool HasTeacherTier() const { return teacherTier != 0; }

  // The selected teacher (gCurrentTeacher); null for none. A null entry clears the selection;
  // otherwise the entry is copied into the one object there is, whoever points at it.
  const SLoginNameObj* GetCurrentTeacher() const { return currentTeacher.get(); }
  void SelectTeacher(const SLoginNameObj* entry);

  // Where the tree begins. `removable` asks for the place of removable data, which is the same one
  // as long as gDataPathOverride is empty, and it stays empty here.
  SString GetDataRoot(bool removable = false) const;
  const SString& GetDataPathOverride() const { return dataPathOverride; }
  // Null without an application or options.
  const SKivTeacherOptionsDob* GetOptionsInForce() const;

  // The first reason noted since the last ClearFailure is the one that is kept: what fails later
  // fails because of it. Of its texts the last one composed is.
  const SFailure& GetFailure() const { return failure; }
  void ClearFailure();
  // What is noted as missing right after a look that could not be made is told as what stopped the
  // look; and what is missing, gone or damaged because a link or a pipe is in the way, as that.
  void NoteFailure(FailureKind kind, const SString& path, ListKind list,
                   SystemError system = SystemError::kNone);
  // Of the file operation that has just failed.
  void NoteFileFailure(ListKind list);
  // What an operation that answered true could not do all the same: a list or a name that it could
  // not write, a rest that it could not remove. The first since ClearFailure.
  const SFailure& GetShortfall() const { return shortfall; }
  void NoteShortfall(ListKind list);

  // The system's own words.
  void TellFailure(const SString& text) { failure.text = text; }

  // That the store could not be reached has been told (gStoreFailed): nothing tells it twice.
  bool HasStoreFailed() const { return storeFailed; }
  void NoteStoreFailed() { storeFailed = true; }

  // The selected teacher's class list, once this call has counted it, under its lock, as not empty:
  // it needs no second count, and no second look at its folder. An invalid spec until then. What
  // takes an entry out of a list forgets it.
  const SFileSpec& GetCountedClasses() const { return countedClasses; }
  void NoteCountedClasses(const SFileSpec& folder) { countedClasses = folder; }
  void ForgetCountedClasses() { countedClasses.Reset(); }

 private:
  ISiteOwner* owner = nullptr;
  int32_t siteMode = 0;
  uint8_t teacherTier = 0;
  bool storeFailed = false;
  std::unique_ptr<SLoginNameObj> currentTeacher;
  SString dataPathOverride;
  SFileSpec countedClasses;
  SFailure failure;
  SFailure shortfall;
  uint32_t failuresBefore = 0;  // of files, before the last ClearFailure
};

}  // namespace kivstore
