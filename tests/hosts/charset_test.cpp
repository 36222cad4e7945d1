// Character sets answer the same on every system, whoever converts there.
#include "hosts/common/charset.h"

#include <gtest/gtest.h>

namespace kivhost {
namespace {

TEST(Charset, TextsOfAStoreComeAsUtf8AndGoBack) {
  const std::tuple<const char*, std::string, const char*> cases[] = {
      {"windows-1252", "Jos\xE9 \x80 \x9F", "José € Ÿ"},
      {"cp1252", "\xDF", "ß"},
      {"iso-8859-1", "\xA4\xE9", "¤é"},
      {"cp850", "\x82\x94", "éö"},
      {"koi8-r", "\xF0\xC5\xD4", "Пет"},
      {"utf-8", "J\xC3\xB6rg", "Jörg"},
      {"windows-1252", "", ""},
  };
  for (const auto& [set, bytes, utf8] : cases) {
    const auto charset = NeedCharset(set);
    EXPECT_EQ(charset->ToUtf8(bytes), utf8) << set;
    EXPECT_EQ(charset->FromUtf8(utf8), bytes) << set;
  }
}

TEST(Charset, WhatHasNoPlaceIsMarkedOrRefused) {
  const auto charset = Charset::Open("windows-1252");
  EXPECT_EQ(charset->ToUtf8("a\x81\x9D!"), "a\xEF\xBF\xBD\xEF\xBF\xBD!");
  for (const char* text : {"Пет", "\xF0\x9F\x98\x80", "\xEF\xBF\xBD", "broken \xC3", "\xFF"}) {
    EXPECT_EQ(charset->FromUtf8(text), std::nullopt) << text;
  }
  EXPECT_EQ(Charset::Open("utf-8")->FromUtf8("broken \xC3"), std::nullopt);
  for (const char* name : {"", "windows-", "windows-1252x", "no such set", "iso-8859-99"}) {
    EXPECT_EQ(Charset::Open(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace kivhost
