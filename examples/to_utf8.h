/* Texts of a store in UTF-8, by what the system has: iconv, or the code pages of Windows. */
#ifndef TO_UTF8_H
#define TO_UTF8_H

#include <stddef.h>
#include <string.h>

/* A name of 51 bytes, each a character of at most 4 bytes, and the NUL. */
enum { UTF8_NAME_SIZE = 51 * 4 + 1 };

#if defined(_WIN32)
#include <stdlib.h>
#include <windows.h>

/* "windows-1252" and its like; 0 if Windows does not know it. */
static unsigned code_page(const char* charset) {
  const size_t digits = strcspn(charset, "0123456789");
  const unsigned page = (unsigned)atoi(charset + digits);
  return IsValidCodePage(page) ? page : 0;
}

static int is_charset(const char* charset) {
  return code_page(charset) != 0;
}

static const char* to_utf8(const char* charset, const char* name, char* utf8) {
  wchar_t wide[UTF8_NAME_SIZE] = {0};
  MultiByteToWideChar(code_page(charset), 0, name, -1, wide, UTF8_NAME_SIZE);
  utf8[0] = '\0';
  WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, UTF8_NAME_SIZE, NULL, NULL);
  return utf8;
}

#else
#include <iconv.h>

static int is_charset(const char* charset) {
  const iconv_t converter = iconv_open("UTF-8", charset);
  return converter != (iconv_t)-1 && iconv_close(converter) == 0;
}

/* `utf8` has room for UTF8_NAME_SIZE; what is no character becomes U+FFFD. */
static const char* to_utf8(const char* charset, const char* name, char* utf8) {
  const iconv_t converter = iconv_open("UTF-8", charset);
  char bytes[52];
  char* in = bytes;
  char* out = utf8;
  size_t left = strlen(name), room = UTF8_NAME_SIZE - 1;
  memcpy(bytes, name, left + 1);
  while (iconv(converter, &in, &left, &out, &room) == (size_t)-1 && left > 0 && room >= 3) {
    memcpy(out, "\xEF\xBF\xBD", 3);
    out += 3, room -= 3;
    in++, left--;
  }
  *out = '\0';
  iconv_close(converter);
  return utf8;
}
#endif

#endif
