#include "store/list/name_derivation.h"

#include <algorithm>

#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// Plain letters and digits: an accented letter goes like any other sign.
bool IsKept(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Takes out the bytes that `isDropped` picks, from the left, at most `most` of them.
template <class Pick>
void DropBytes(SString& text, int most, Pick isDropped) {
  const int length = text.GetLength();
  char* const bytes = text.GetBuffer(length);
  if (bytes == nullptr) {
    return;
  }
  char* const end = std::remove_if(bytes, bytes + length, [&](char c) {
    if (most <= 0 || !isDropped(c)) {
      return false;
    }
    --most;
    return true;
  });
  text.ReleaseBuffer(static_cast<int>(end - bytes));
}

SString ReducedName(const SString& first, const SString& last, const char* fallback, int width) {
  SString text = first + last;
  DropBytes(text, text.GetLength(), [](char c) { return !IsKept(c); });
  if (text.IsEmpty()) {
    text = fallback;
  }
  const std::string_view vowels = CachedText<kTextVowels>().View();
  DropBytes(text, text.GetLength() - width,
            [vowels](char c) { return vowels.find(c) != std::string_view::npos; });
  return text.Left(width);
}

// The step down is a look at the disk, so that a shared store needs no other.
void DownToCandidate(SFileSpec& spec, const SString& text, const SString& extension) {
  spec.Down(extension.IsEmpty() ? text : text + '.' + extension);
}

bool BelongsTo(SFileSpec folder, const SString& first, const SString& last) {
  SLoginNameObj owner;
  return folder.DownAssumed(CachedText<kTextLongNameFile>().GetText()) &&
         ReadLongName(folder, owner.firstName, owner.lastName) &&
         SameName(owner, first, last, false);
}

}  // namespace

SString DeriveName(SFileSpec& spec, const SString& first, const SString& last, const char* fallback,
                   int width, bool& exists, const SString& extension) {
  exists = false;
  SString text = ReducedName(first, last, fallback, width);
  if (!spec.IsExistingFolder()) {
    spec.Up();
  }
  DownToCandidate(spec, text, extension);
  int position = width - 1;
  int digit = -1;
  while (spec.Exists() && (position >= 0 || digit >= 0)) {
    exists = !extension.IsEmpty() || BelongsTo(spec, first, last);
    if (exists && extension.IsEmpty()) {
      break;
    }
    if (text.GetLength() < width) {
      text += '0';
    } else {
      NextVariant(text, position, digit);
    }
    spec.Up();
    DownToCandidate(spec, text, extension);
  }
  spec.Up();
  return text;
}

SString DeriveFolderName(SFileSpec& spec, const SString& first, const SString& last, bool& exists) {
  return DeriveName(spec, first, last, "Empty", kNameWidth, exists, SString());
}

SString DeriveFileName(SFileSpec& spec, const SString& name, bool& exists,
                       const SString& extension) {
  return DeriveName(spec, name, SString(), "UserFile", kNameWidth, exists, extension);
}

bool NextVariant(SString& text, int& position, int& digit) {
  const SString& digits = CachedText<kTextVariantDigits>();
  const int last = digits.GetLength() - 1;
  digit = std::min(std::max(digit, -1), last - 1) + 1;
  text.SetAt(position, digits.GetAt(digit));
  if (digit < last) {
    return false;
  }
  digit = -1;
  --position;
  return true;
}

}  // namespace kivstore
