// The system's one string class: a reference-counted, copy-on-write byte string.
//
// An SString is one pointer wide. It points at the first text byte of a heap block:
//
//   refs      32 bits, signed   strings that share the block; negative: locked, never shared
//   length    16 bits, signed   text bytes, without the NUL
//   capacity  16 bits, signed   text bytes the block can hold, without the NUL
//   text, then one NUL byte
//
// so a block for n characters takes n + 9 bytes. Every empty string points at one static block that
// is never counted and never freed. Texts that were made together lie in one piece of memory
// (text_block.h): the top bit of the capacity says so, and nobody notices but who frees them.
//
// Bytes are bytes of the system's 8-bit character set and compare unsigned; nothing here knows
// multi-byte sequences. A text holds at most kMaxLength characters: what goes beyond is dropped.
// No operation fails loudly: an index outside the text does nothing or is clamped, as each
// operation says, and when no memory can be had the string keeps its value. Strings are not shared
// among threads.
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/base/small_blocks.h"

// Lets the compiler check a pattern against its arguments.
#if defined(__MINGW32__)
#define KIVSTORE_PRINTF(pattern, arguments) __attribute__((format(gnu_printf, pattern, arguments)))
#elif defined(__GNUC__)
#define KIVSTORE_PRINTF(pattern, arguments) __attribute__((format(printf, pattern, arguments)))
#else
#define KIVSTORE_PRINTF(pattern, arguments)
#endif

namespace kivstore {

class SString {
 public:
  static constexpr int kMaxLength = 0x7FFE;
  static constexpr int kNotFound = -1;

  SString() noexcept : text(EmptyText()) {}
  SString(const SString& other) noexcept : text(other.text) {
    if (Header()->refs > 0) {
      ++Header()->refs;
    } else {
      text = NewText(other.text, other.GetLength());
    }
  }
  SString(SString&& other) noexcept : text(other.text) { other.text = EmptyText(); }
  // A null text is empty.
  SString(const char* source) noexcept;  // NOLINT: a text is a string
  SString(const char* bytes, int count) noexcept;
  SString(char character, int count) noexcept;
  explicit SString(std::string_view source) noexcept;
  ~SString() { ReleaseBlock(); }

  SString& operator=(const SString& other) { return Assign(other); }
  SString& operator=(SString&& other) noexcept {
    if (this == &other || IsLocked() || other.IsLocked()) {
      return Assign(other);
    }
    Adopt(other.text);
    other.text = EmptyText();
    return *this;
  }
  SString& operator=(const char* source) { return Assign(source); }
  SString& operator=(char character) { return Assign(character); }

  // Access. GetAt of an index outside the text is NUL.
  const char* GetText() const { return text; }
  int GetLength() const { return Header()->length; }
  int GetCapacity() const { return Header()->capacity & ~kJointMark; }
  int32_t GetRefs() const { return Header()->refs; }
  bool IsEmpty() const { return GetLength() == 0; }
  char GetAt(int index) const { return IsInside(index) ? text[index] : '\0'; }
  void SetAt(int index, char character);
  std::string_view View() const { return {text, static_cast<size_t>(GetLength())}; }

  // Leaves the string on the shared empty block.
  void Release() { Adopt(EmptyText()); }
  // As Release, but a locked string is emptied in place.
  void Empty();

  // Assignment. An unshared block that is big enough is used again. Assigning from or into a locked
  // string copies the bytes; otherwise assigning a string shares its block.
  SString& Assign(int count, const char* bytes) {
    if (!IsEmptyBlock() || bytes == nullptr) {
      return AssignOver(count, bytes);
    }
    text = NewText(bytes, std::clamp(count, 0, kMaxLength));
    return *this;
  }
  SString& Assign(const char* source);
  SString& Assign(const SString& other) {
    if (this == &other) {
      return *this;
    }
    if ((IsLocked() && !IsEmptyBlock()) || other.IsLocked()) {
      return Assign(other.GetLength(), other.text);
    }
    ++other.Header()->refs;
    Adopt(other.text);
    return *this;
  }
  SString& Assign(char character);

  // Appending clamps to kMaxLength and, when the block has no room, moves to one of the exact size.
  SString& Append(int count, const char* bytes);
  SString& Append(const char* source);
  SString& Append(const SString& other);
  SString& Append(char character);
  SString& operator+=(const SString& other) { return Append(other); }
  SString& operator+=(const char* source) { return Append(source); }
  SString& operator+=(char character) { return Append(character); }
  static SString Concat(std::string_view a, std::string_view b);

  // Direct access to a block of at least `count` characters of room that this string alone uses;
  // null, with the string as it was, if that cannot be had. ReleaseBuffer sets the length
  // afterwards, at most the capacity; -1 takes it from the NUL.
  char* GetBuffer(int count);
  void ReleaseBuffer(int count = -1);
  char* GetBufferSetLength(int count);
  void FreeExtra();
  // A locked block is never shared and its address stays: refs is -1 until UnlockBuffer.
  char* LockBuffer();
  void UnlockBuffer();

  // Nothing happens unless start is 0 or more, count above 0 and start + count within the length.
  void Fill(int start, char character, int count);
  void Overwrite(int start, const char* bytes, int count);

  // An index equal to the length appends; one outside the text does nothing.
  void Insert(int index, char character);
  void Insert(int index, const SString& other);
  void Insert(int index, const char* source, int count);

  void Delete(int start, int count);
  void DeleteLeft(int count);
  void DeleteRight(int count);

  SString Left(int count) const;
  SString Right(int count) const;
  SString Mid(int start) const;
  SString Mid(int start, int count) const;
  SString SpanIncluding(const char* set) const;
  SString SpanExcluding(const char* set) const;

  // Indices, or kNotFound. Without caseSensitive, characters compare through upper case (A to Z).
  int Find(char character) const;
  int ReverseFind(char character) const;
  int FindOneOf(const char* set) const;
  int Find(const char* what, bool caseSensitive) const;
  int ReverseFind(const char* what, bool caseSensitive) const;
  bool StartsWith(const SString& prefix, bool caseSensitive) const;
  bool EndsWith(const SString& suffix, bool caseSensitive) const;

  void MakeUpper();
  void MakeLower();
  void Capitalize();
  void Reverse();
  void TrimLeft();
  void TrimRight();

  // Replaces every occurrence in one pass and returns how many there were.
  int Replace(const char* find, const char* with);
  void Replace(int start, int count, const char* with);

  // Tokens between runs of delimiters, and fields between single ones; a null delimiters means
  // " \t\r\n". NextField leaves position on the delimiter: the caller steps over it.
  bool NextToken(SString& out, int& position, const char* delimiters) const;
  bool NextField(SString& out, int& position, const char* delimiters) const;
  // The text before the first `character`, cut off this string together with that character.
  // Without one, the whole string, which leaves this one empty.
  SString CutField(char character);

  void StripToBackslash();
  void StripExtension();
  SString GetExtension() const;

  // The character behind the first "&" that is followed by neither NUL nor a space, and its index;
  // NUL and kNotFound if there is none.
  char FindMnemonic(int& index) const;
  void RemoveMnemonics();
  static SString Quoted(const SString& source);
  void Surround(const char* open, const char* close);

  // Below, equal to or above 0, by unsigned bytes; CompareNoCase folds A to Z to lower case first.
  int Compare(const SString& other) const;
  int CompareNoCase(const SString& other) const;
  // Not below low and not above high; an empty limit is none. With prefix, high's last byte is
  // raised by one first, so that every string that begins with high passes.
  bool IsBetween(const SString& low, const SString& high, bool prefix) const;
  bool IsBetweenNoCase(const SString& low, const SString& high, bool prefix) const;

  // Numbers. ToLong and ToULong go on past a character that is no digit and then answer false;
  // too many digits wrap. ToHex stops at the first character that is no digit, with what came
  // before in the 32-bit out; the 16-bit forms set out only for a value that fits, the signed one
  // taking 0xFFFF8000 to 0x7FFF. ToDouble is true if the number is the whole text.
  void FromLong(int32_t value);
  void FromULong(uint32_t value);
  bool ToLong(int32_t& out) const;
  bool ToULong(uint32_t& out) const;
  bool ToHex(uint32_t& out) const;
  bool ToHex(int16_t& out) const;
  bool ToHex(uint16_t& out) const;
  void FromDouble(double value, int decimals);
  bool ToDouble(double& out) const;

  // printf into at most 511 characters. FormatResource takes the pattern from the string table; an
  // id that does not exist empties the string.
  void Format(const char* pattern, ...) KIVSTORE_PRINTF(2, 3);
  void FormatResource(int id, ...);

  // The string table's entry. False, with the string as it was, if there is none.
  bool LoadResource(int id);
  static SString FromResource(int id);

  // Replaces %1 to %5 by the arguments, one argument after the other on the growing text: a mark
  // inside an argument is replaced by a later one.
  void Substitute(const SString& pattern, const SString& a1);
  void Substitute(const SString& pattern, const SString& a1, const SString& a2);
  void Substitute(const SString& pattern, const SString& a1, const SString& a2, const SString& a3);
  void Substitute(const SString& pattern, const SString& a1, const SString& a2, const SString& a3,
                  const SString& a4);
  void Substitute(const SString& pattern, const SString& a1, const SString& a2, const SString& a3,
                  const SString& a4, const SString& a5);

 private:
  friend class STextBlock;

  static constexpr int kJointMark = 0x8000;
  struct BlockHeader {
    int32_t refs;
    int16_t length;
    uint16_t capacity;
  };
  static constexpr size_t kBlockOverhead = sizeof(BlockHeader) + 1;
  struct EmptyBlock {
    BlockHeader header;
    char nul;
  };

  static EmptyBlock emptyBlock;

  static char* EmptyText() noexcept {
    return reinterpret_cast<char*>(&emptyBlock) + sizeof(BlockHeader);
  }
  // The text of a new block of exactly this capacity, with the NUL set; null when there is no
  // memory or the capacity is beyond a string's. Capacity 0 gives the shared empty block.
  static char* Alloc(int capacity, int length) noexcept {
    if (capacity <= 0 || capacity > kMaxLength) {
      return capacity <= 0 ? EmptyText() : nullptr;
    }
    auto* const header =
        static_cast<BlockHeader*>(AllocateSmall(static_cast<size_t>(capacity) + kBlockOverhead));
    if (header == nullptr) {
      return nullptr;
    }
    *header = {1, static_cast<int16_t>(length), static_cast<uint16_t>(capacity)};
    char* const blockText = reinterpret_cast<char*>(header + 1);
    blockText[length] = '\0';
    return blockText;
  }
  // A new block with this text, the shared empty one if none can be had.
  static char* NewText(const char* bytes, int length) noexcept;
  static void FreeBlock(char* blockText) noexcept {
    BlockHeader* const header = reinterpret_cast<BlockHeader*>(blockText) - 1;
    if ((header->capacity & kJointMark) != 0) {
      return FreeJoint(header);
    }
    FreeSmall(header, static_cast<size_t>(header->capacity) + kBlockOverhead);
  }
  static void FreeJoint(BlockHeader* header) noexcept;

  BlockHeader* Header() const { return reinterpret_cast<BlockHeader*>(text) - 1; }
  bool IsEmptyBlock() const { return text == EmptyText(); }
  bool IsShared() const { return Header()->refs > 1; }
  bool IsLocked() const { return Header()->refs < 0; }
  bool IsInside(int index) const { return index >= 0 && index < GetLength(); }
  // False if the string is shared and no block of its own can be had.
  bool MakeUnique();
  // Nothing on the shared empty block.
  void SetLength(int length) {
    if (!IsEmptyBlock()) {
      Header()->length = static_cast<int16_t>(length);
      text[length] = '\0';
    }
  }
  void ReleaseBlock() noexcept {
    if (!IsEmptyBlock() && --Header()->refs < 1) {
      FreeBlock(text);
    }
  }
  void Adopt(char* blockText) noexcept {
    ReleaseBlock();
    text = blockText;
  }
  SString& AssignOver(int count, const char* bytes);
  // Puts a new block in the place of the present one; a locked string takes its bytes only.
  void Take(char* blockText) noexcept;
  SString& AssignJoined(std::string_view a, std::string_view b, std::string_view c);
  // Of `matches` occurrences; false when there is no memory.
  bool ReplaceAll(std::string_view what, std::string_view with, int matches);
  void SubstituteAll(const SString& pattern, const SString* const* arguments, int count);

  char* text;
};

static_assert(sizeof(SString) == sizeof(char*), "a string is one pointer");

SString operator+(const SString& a, const SString& b);
SString operator+(const SString& a, const char* b);
SString operator+(const char* a, const SString& b);
SString operator+(const SString& a, char b);
SString operator+(char a, const SString& b);

// A null text is empty.
inline std::string_view ViewOf(const char* text) {
  return text != nullptr ? std::string_view(text) : std::string_view();
}

// Plain byte comparison, case-sensitive. The other operators, and those with the text in front,
// follow from these.
inline bool operator==(const SString& a, const SString& b) {
  return a.View() == b.View();
}
inline bool operator==(const SString& a, const char* b) {
  return a.View() == ViewOf(b);
}
inline std::strong_ordering operator<=>(const SString& a, const SString& b) {
  return a.View() <=> b.View();
}
inline std::strong_ordering operator<=>(const SString& a, const char* b) {
  return a.View() <=> ViewOf(b);
}

}  // namespace kivstore
