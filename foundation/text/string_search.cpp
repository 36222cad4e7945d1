// Searching and comparing.
#include <algorithm>

#include "foundation/text/string.h"
#include "platform/base/bytes.h"

namespace kivstore {
namespace {

int IndexOf(size_t position) {
  return position == std::string_view::npos ? SString::kNotFound : static_cast<int>(position);
}

bool SameUpper(char a, char b) {
  return FoldUpper(static_cast<unsigned char>(a)) == FoldUpper(static_cast<unsigned char>(b));
}

bool AreEqual(std::string_view a, std::string_view b, bool caseSensitive) {
  return caseSensitive ? a == b : EqualBytesNoCase(a, b);
}

SString Lowered(const SString& source) {
  SString lowered(source);
  lowered.MakeLower();
  return lowered;
}

// The least text above every text that begins with `limit`, as far as one byte can tell. A last
// byte of 255 cannot be raised, so the byte before it is.
void RaiseLastByte(SString& limit) {
  while (!limit.IsEmpty() &&
         static_cast<unsigned char>(limit.GetAt(limit.GetLength() - 1)) == 255) {
    limit.DeleteRight(1);
  }
  const int last = limit.GetLength() - 1;
  limit.SetAt(last, static_cast<char>(limit.GetAt(last) + 1));
}

}  // namespace

int SString::Find(char character) const {
  return IndexOf(View().find(character));
}

int SString::ReverseFind(char character) const {
  return IndexOf(View().rfind(character));
}

int SString::FindOneOf(const char* set) const {
  return IndexOf(View().find_first_of(ViewOf(set)));
}

int SString::Find(const char* what, bool caseSensitive) const {
  const std::string_view source = View();
  const std::string_view wanted = ViewOf(what);
  if (caseSensitive) {
    return IndexOf(source.find(wanted));
  }
  const auto found =
      std::search(source.begin(), source.end(), wanted.begin(), wanted.end(), SameUpper);
  return found == source.end() && !wanted.empty() ? kNotFound
                                                  : static_cast<int>(found - source.begin());
}

int SString::ReverseFind(const char* what, bool caseSensitive) const {
  const std::string_view source = View();
  const std::string_view wanted = ViewOf(what);
  if (caseSensitive || wanted.empty()) {
    return IndexOf(source.rfind(wanted));
  }
  const auto found =
      std::find_end(source.begin(), source.end(), wanted.begin(), wanted.end(), SameUpper);
  return found == source.end() ? kNotFound : static_cast<int>(found - source.begin());
}

bool SString::StartsWith(const SString& prefix, bool caseSensitive) const {
  return AreEqual(View().substr(0, prefix.View().size()), prefix.View(), caseSensitive);
}

bool SString::EndsWith(const SString& suffix, bool caseSensitive) const {
  const size_t length = suffix.View().size();
  return length <= View().size() &&
         AreEqual(View().substr(View().size() - length), suffix.View(), caseSensitive);
}

SString SString::SpanIncluding(const char* set) const {
  return Left(static_cast<int>(
      std::min(View().find_first_not_of(ViewOf(set)), static_cast<size_t>(kMaxLength))));
}

SString SString::SpanExcluding(const char* set) const {
  return Left(static_cast<int>(
      std::min(View().find_first_of(ViewOf(set)), static_cast<size_t>(kMaxLength))));
}

int SString::Compare(const SString& other) const {
  return CompareBytes(View(), other.View());
}

int SString::CompareNoCase(const SString& other) const {
  return CompareBytesNoCase(View(), other.View());
}

bool SString::IsBetween(const SString& low, const SString& high, bool prefix) const {
  SString limit(high);
  if (prefix) {
    RaiseLastByte(limit);
  }
  return Compare(low) >= 0 && (limit.IsEmpty() || Compare(limit) <= 0);
}

bool SString::IsBetweenNoCase(const SString& low, const SString& high, bool prefix) const {
  // Folded before the raise: 'Z' raised is no letter any more.
  return Lowered(*this).IsBetween(Lowered(low), Lowered(high), prefix);
}

}  // namespace kivstore
