// Changing parts of a string, and taking parts of it.
#include <algorithm>
#include <cstring>
#include <utility>

#include "foundation/text/string.h"
#include "platform/base/bytes.h"

namespace kivstore {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

char Lower(char c) {
  return static_cast<char>(FoldLower(static_cast<unsigned char>(c)));
}

char Upper(char c) {
  return static_cast<char>(FoldUpper(static_cast<unsigned char>(c)));
}

// Whether `count` characters from `start` lie within `length`; never overflows.
bool IsRange(int start, int count, int length) {
  return start >= 0 && count > 0 && start <= length && count <= length - start;
}

}  // namespace

void SString::SetAt(int index, char character) {
  if (IsInside(index) && MakeUnique()) {
    text[index] = character;
  }
}

void SString::Fill(int start, char character, int count) {
  if (IsRange(start, count, GetLength()) && MakeUnique()) {
    std::memset(text + start, character, static_cast<size_t>(count));
  }
}

void SString::Overwrite(int start, const char* bytes, int count) {
  if (bytes != nullptr && IsRange(start, count, GetLength()) && MakeUnique()) {
    std::memmove(text + start, bytes, static_cast<size_t>(count));
  }
}

void SString::Insert(int index, char character) {
  Insert(index, &character, 1);
}

void SString::Insert(int index, const SString& other) {
  Insert(index, other.text, other.GetLength());
}

void SString::Insert(int index, const char* source, int count) {
  if (index < 0 || index > GetLength() || source == nullptr || count <= 0) {
    return;
  }
  if (index == GetLength()) {
    Append(count, source);
    return;
  }
  const auto at = static_cast<size_t>(index);
  AssignJoined(View().substr(0, at), {source, static_cast<size_t>(count)}, View().substr(at));
}

void SString::Delete(int start, int count) {
  if (!IsInside(start) || count <= 0 || !MakeUnique()) {
    return;
  }
  const int removed = std::min(count, GetLength() - start);
  const int behind = start + removed;
  std::memmove(text + start, text + behind, static_cast<size_t>(GetLength() - behind));
  SetLength(GetLength() - removed);
}

void SString::DeleteLeft(int count) {
  Delete(0, count);
}

void SString::DeleteRight(int count) {
  const int removed = std::clamp(count, 0, GetLength());
  Delete(GetLength() - removed, removed);
}

SString SString::Left(int count) const {
  return Mid(0, count);
}

SString SString::Right(int count) const {
  return Mid(GetLength() - std::clamp(count, 0, GetLength()));
}

SString SString::Mid(int start) const {
  return Mid(start, GetLength());
}

SString SString::Mid(int start, int count) const {
  const int first = std::clamp(start, 0, GetLength());
  const int taken = std::clamp(count, 0, GetLength() - first);
  return taken == GetLength() ? *this : SString(text + first, taken);
}

void SString::MakeUpper() {
  if (MakeUnique()) {
    std::transform(text, text + GetLength(), text, Upper);
  }
}

void SString::MakeLower() {
  if (MakeUnique()) {
    std::transform(text, text + GetLength(), text, Lower);
  }
}

void SString::Capitalize() {
  SetAt(0, Upper(GetAt(0)));
}

void SString::Reverse() {
  if (MakeUnique()) {
    std::reverse(text, text + GetLength());
  }
}

void SString::TrimLeft() {
  const size_t start = View().find_first_not_of(kWhiteSpace);
  DeleteLeft(start == View().npos ? GetLength() : static_cast<int>(start));
}

void SString::TrimRight() {
  const auto kept = static_cast<int>(View().find_last_not_of(kWhiteSpace) + 1);
  DeleteRight(GetLength() - kept);
}

int SString::Replace(const char* find, const char* with) {
  const std::string_view what = ViewOf(find);
  const std::string_view source = View();
  const size_t first = what.empty() ? source.npos : source.find(what);
  if (first == source.npos) {
    return 0;
  }
  int matches = 1;
  const size_t behind = first + what.size();
  for (size_t at = behind; (at = source.find(what, at)) != source.npos; at += what.size()) {
    ++matches;
  }
  if (matches == 1) {
    AssignJoined(source.substr(0, first), ViewOf(with), source.substr(behind));
    return 1;
  }
  return ReplaceAll(what, ViewOf(with), matches) ? matches : 0;
}

bool SString::ReplaceAll(std::string_view what, std::string_view with, int matches) {
  const auto count = static_cast<uint64_t>(matches);
  const uint64_t length = View().size() - count * what.size() + count * with.size();
  SString result;
  if (result.GetBuffer(static_cast<int>(std::min<uint64_t>(length, kMaxLength))) == nullptr) {
    return false;
  }
  size_t done = 0;
  for (size_t at; (at = View().find(what, done)) != View().npos; done = at + what.size()) {
    result.Append(static_cast<int>(at - done), text + done);
    result.Append(static_cast<int>(std::min<size_t>(with.size(), kMaxLength)), with.data());
  }
  result.Append(GetLength() - static_cast<int>(done), text + done);
  *this = std::move(result);
  return true;
}

void SString::Replace(int start, int count, const char* with) {
  if (start < 0 || start > GetLength()) {
    return;
  }
  const int behind = start + std::clamp(count, 0, GetLength() - start);
  AssignJoined(View().substr(0, static_cast<size_t>(start)), ViewOf(with),
               View().substr(static_cast<size_t>(behind)));
}

SString SString::Quoted(const SString& source) {
  SString quoted;
  quoted.AssignJoined("\"", source.View(), "\"");
  return quoted;
}

void SString::Surround(const char* open, const char* close) {
  AssignJoined(ViewOf(open), View(), ViewOf(close));
}

}  // namespace kivstore
