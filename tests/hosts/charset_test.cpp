// Character sets answer the same on every system, whoever converts there.
#include "hosts/common/charset.h"

#include <gtest/gtest.h>

namespace kivhost {
namespace {

TEST(Charset, TextsOfAStoreComeAsUtf8AndGoBack) {
  const struct {
    const char* set;
    std::string bytes;
    const char* utf8;
  } cases[] = {
      {"windows-1252", "Jos\xE9 \x80 \x9F", "José € Ÿ"},
      {"WINDOWS-1252", "plain", "plain"},
      {"cp1252", "\xDF", "ß"},
      {"iso-8859-1", "\xA4\xE9", "¤é"},
      {"ISO-8859-15", "\xA4", "€"},
      {"cp850", "\x82\x94", "éö"},
      {"koi8-r", "\xF0\xC5\xD4", "Пет"},
      {"utf-8", "J\xC3\xB6rg", "Jörg"},
      {"windows-1252", "", ""},
  };
  for (const auto& c : cases) {
    const auto charset = Charset::Open(c.set);
    ASSERT_NE(charset, nullptr) << c.set;
    EXPECT_EQ(charset->ToUtf8(c.bytes), c.utf8) << c.set;
    EXPECT_EQ(charset->FromUtf8(c.utf8), c.bytes) << c.set;
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
