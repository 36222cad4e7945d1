#include "store/list/name_derivation.h"

#include <algorithm>

#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr const char* kFallback = "Empty";

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

// Varies the end of the text until it is free or the name's own; the last variant where none is.
SString FindFree(SString text, int width, const AskName& isTaken, const AskName& isOwn) {
  int position = width - 1;
  int digit = -1;
  while (isTaken(text) && (position >= 0 || digit >= 0) && !isOwn(text)) {
    if (text.GetLength() < width) {
      text += '0';
    } else {
      NextVariant(text, position, digit);
    }
  }
  return text;
}

}  // namespace

bool BelongsTo(SFileSpec folder, const SString& first, const SString& last) {
  SLoginNameObj owner;
  return folder.DownAssumed(CachedText<kTextLongNameFile>().GetText()) &&
         ReadLongName(folder, owner.firstName, owner.lastName) &&
         SameName(owner, first, last, false);
}

SString DeriveName(SFileSpec& spec, const SString& first, const SString& last, const char* fallback,
                   int width, bool& exists, const SString& extension) {
  exists = false;
  if (!spec.IsExistingFolder()) {
    spec.Up();
  }
  SFileSpec candidate;
  const AskName isTaken = [&](const SString& text) {
    candidate = spec;
    DownToCandidate(candidate, text, extension);
    return candidate.Exists();
  };
  const AskName isOwn = [&](const SString&) {
    exists = !extension.IsEmpty() || BelongsTo(candidate, first, last);
    return exists && extension.IsEmpty();
  };
  return FindFree(ReducedName(first, last, fallback, width), width, isTaken, isOwn);
}

SString DeriveFolderName(SFileSpec& spec, const SString& first, const SString& last, bool& exists) {
  return DeriveName(spec, first, last, kFallback, kNameWidth, exists, SString());
}

SString DeriveFolderName(const SString& first, const SString& last, const AskName& isTaken,
                         const AskName& isOwn) {
  return FindFree(ReducedName(first, last, kFallback, kNameWidth), kNameWidth, isTaken, isOwn);
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
