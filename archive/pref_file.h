// A text file of sections and keys (pref_scanner.h tells the form), held whole in one memory block
// and edited in place (pref_text.h): all other lines, their order, their case and whatever is no
// section or key stay as they are.
//
// Every failure is a false result, after which the text is as it was. What was changed goes back to
// the file on Close; a file that could not be written to its end keeps its old length, and only
// the last file failure tells of it. A file that gets shorter is written with line ends up to its
// old length and then cut, so that it never ends in a rest of the old text. While it is open the
// file is held: shared for reading, alone for writing.
//
// The virtual operations stand in an order that programs built apart from this one call them by.
#pragma once

#include <cstdint>

#include "archive/pref_text.h"
#include "foundation/files/file.h"
#include "foundation/memory/memory_block.h"
#include "foundation/text/string.h"

namespace kivstore {

class SPrefFile {
 public:
  static constexpr int32_t kRead = 0;
  static constexpr int32_t kWrite = 1;
  static constexpr int32_t kLongestText = SPrefText::kLongest;

  SPrefFile() = default;
  explicit SPrefFile(const SFileSpec& spec) : spec(spec) {}
  // A text that already lies in memory, open for reading. With `owns` the block goes on Close.
  SPrefFile(MemoryHandle handle, int32_t size, bool owns);
  SPrefFile(const SPrefFile&) = delete;
  SPrefFile& operator=(const SPrefFile&) = delete;

  virtual ~SPrefFile() { SPrefFile::Close(); }
  virtual void SetFile(const SFileSpec& newSpec);  // ignored while open
  // False if it is open already. Writing makes a missing file, where that can be.
  virtual bool Open(int32_t newAccessMode);
  virtual void Close();
  // Only when open for writing: a value other than the last one sends the text back to the file.
  virtual void SetChanged(bool value);

  // These open the file themselves if it is not open, and close it again. Names are matched without
  // regard to case, and a line that is found keeps its spelling.
  virtual bool GetValue(const char* section, const char* key, SString& value);
  // Makes the section and the key where they are missing. A value that no line can hold, for a line
  // break in it, and one that finds no room is refused, with the text as it was.
  virtual bool SetValue(const char* section, const char* key, const SString& value);
  // Up to the next "[", wherever in a line that stands.
  virtual bool DeleteSection(const char* section);
  virtual bool DeleteKey(const char* section, const char* key);

  bool IsOpen() const { return isOpen; }

 protected:
  // Close leaves the file as it is, whatever was changed so far.
  void DropChanges() { changed = false; }

  SFileSpec spec;

 private:
  class Opening;  // for the length of one operation

  bool OpenFile();
  bool Load(int32_t length, int32_t capacity);
  bool Fill();
  void Store();
  void Abandon();
  void ReleaseBlock();
  template <class Operation>
  bool Change(Operation operation);

  bool IsWritable() const { return isOpen && accessMode == kWrite; }

  SFile* file = nullptr;
  int32_t fileLength = 0;  // as it was opened
  MemoryHandle handle = nullptr;
  SPrefText text;
  int32_t accessMode = kRead;
  bool isOpen = false;
  bool changed = false;  // the text must go back to the file
  bool changedMark = false;
  bool ownsHandle = false;
};

}  // namespace kivstore
