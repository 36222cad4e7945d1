// A text file of sections and keys (pref_scanner.h tells the form), held whole in one memory block
// and edited in place: nothing is parsed into a table, so all other lines, their order, their case
// and whatever is no section or key stay as they are.
//
// Every failure is a false result, after which the text is as it was. What was changed goes back to
// the file on Close; a file that could not be written to its end keeps its old length, and only
// the last file failure tells of it. While it is open the file is held: shared for reading, alone
// for writing.
//
// The virtual operations stand in an order that programs built apart from this one call them by.
#pragma once

#include <cstdint>

#include "foundation/files/file.h"
#include "foundation/memory/memory_block.h"
#include "foundation/text/string.h"

namespace kivstore {

struct SPrefScanner;

class SPrefFile {
 public:
  static constexpr int32_t kRead = 0;
  static constexpr int32_t kWrite = 1;
  static constexpr int32_t kLongestText = 0x4000000;  // 64 MiB; a longer file does not open

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
  // Makes the section and the key where they are missing; if that or the value finds no room, the
  // text stays as it was. A value is stored up to its first line break.
  virtual bool SetValue(const char* section, const char* key, const SString& value);
  // Up to the next "[", wherever in a line that stands.
  virtual bool DeleteSection(const char* section);
  virtual bool DeleteKey(const char* section, const char* key);

  bool IsOpen() const { return isOpen; }

 protected:
  SFileSpec spec;

 private:
  class Opening;  // for the length of one operation

  bool OpenFile();
  bool Load();
  bool Fill();
  void Store();
  void Abandon();
  void ReleaseBlock();

  bool IsWritable() const { return isOpen && accessMode == kWrite; }
  SPrefScanner ScannerAt(char* place) const;
  bool FindSection(const char* section);
  bool FindKey(const char* section, const char* key);
  bool NeedSection(const char* section);
  bool NeedKey(const char* key);
  void StepBackOverBreaks();
  void ReadValue(SString& value);
  bool WriteValue(const SString& value);

  bool Reserve(int64_t n);
  void Append(const char* bytes, size_t count);
  void OpenGap(int32_t n);       // at the cursor
  void CutTo(const char* from);  // from the cursor to `from`
  void TakeBack(char* from, int32_t n);

  SFile* file = nullptr;
  MemoryHandle handle = nullptr;
  char* text = nullptr;
  char* cursor = nullptr;
  char* end = nullptr;
  int32_t length = 0;
  int32_t capacity = 0;
  int32_t accessMode = kRead;
  bool isOpen = false;
  bool changed = false;  // the text must go back to the file
  bool changedMark = false;
  bool ownsHandle = false;
};

}  // namespace kivstore
