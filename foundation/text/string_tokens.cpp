// Taking a text apart: tokens, fields, path pieces, mnemonics.

#include "foundation/text/string.h"

namespace kivstore {
namespace {

std::string_view DelimitersOf(const char* delimiters) {
  return delimiters != nullptr ? std::string_view(delimiters) : std::string_view(" \t\r\n");
}

// From `start` to the next delimiter or the end.
std::string_view RunFrom(std::string_view source, size_t start, std::string_view delimiters) {
  const size_t end = source.find_first_of(delimiters, start);
  return source.substr(start, end == source.npos ? end : end - start);
}

// The NUL behind every text is what follows a last "&".
bool IsMnemonic(const char* at) {
  return *at == '&' && at[1] != '\0' && at[1] != ' ';
}

}  // namespace

bool SString::NextToken(SString& out, int& position, const char* delimiters) const {
  const SString source(*this);  // out may be this string
  out.Empty();
  if (position < 0 || position >= source.GetLength()) {
    return false;
  }
  const std::string_view set = DelimitersOf(delimiters);
  const size_t start = source.View().find_first_not_of(set, static_cast<size_t>(position));
  if (start == std::string_view::npos) {
    return false;
  }
  const std::string_view token = RunFrom(source.View(), start, set);
  out.Assign(static_cast<int>(token.size()), token.data());
  position = static_cast<int>(start + token.size());
  return true;
}

bool SString::NextField(SString& out, int& position, const char* delimiters) const {
  if (position < 0 || position >= GetLength()) {
    return false;
  }
  const std::string_view field =
      RunFrom(View(), static_cast<size_t>(position), DelimitersOf(delimiters));
  position += static_cast<int>(field.size());
  out.Assign(static_cast<int>(field.size()), field.data());
  return true;
}

SString SString::CutField(char character) {
  const int at = Find(character);
  if (at == kNotFound) {
    SString whole(*this);
    Empty();
    return whole;
  }
  SString field = Left(at);
  DeleteLeft(at + 1);
  return field;
}

void SString::StripToBackslash() {
  const int at = ReverseFind('\\');
  if (at != kNotFound) {
    DeleteRight(GetLength() - at - 1);
  }
}

void SString::StripExtension() {
  const int at = ReverseFind('.');
  if (at != kNotFound) {
    DeleteRight(GetLength() - at);
  }
}

SString SString::GetExtension() const {
  const int at = ReverseFind('.');
  return at != kNotFound ? Mid(at) : SString();
}

char SString::FindMnemonic(int& index) const {
  for (int at = 0; at < GetLength(); ++at) {
    if (IsMnemonic(text + at)) {
      index = at + 1;
      return text[index];
    }
  }
  index = kNotFound;
  return '\0';
}

void SString::RemoveMnemonics() {
  if (!MakeUnique()) {
    return;
  }
  int kept = 0;
  for (int at = 0; at < GetLength(); ++at) {
    if (!IsMnemonic(text + at)) {
      text[kept++] = text[at];
    }
  }
  SetLength(kept);
}

}  // namespace kivstore
