// Text between the 16-bit characters of Windows and its code pages.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kivhost {

inline std::wstring ToWide(UINT codePage, std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  const int length = MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), size);
  wide.resize(static_cast<size_t>(length > 0 ? length : 0));
  return wide;
}

// What the code page lacks becomes its default character.
inline std::string FromWide(UINT codePage, std::wstring_view text) {
  const int size = static_cast<int>(text.size());
  const UINT page = codePage == CP_ACP ? GetACP() : codePage;
  const DWORD flags = page == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;  // UTF-8 takes no flag
  const int room =
      WideCharToMultiByte(codePage, flags, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(room > 0 ? room : 0), '\0');
  WideCharToMultiByte(codePage, flags, text.data(), size, bytes.data(), room, nullptr, nullptr);
  return bytes;
}

}  // namespace kivhost
