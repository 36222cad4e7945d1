// The style and the script of the page. The build makes them from page.css and page.js
// (embed.cmake), with the hashes by which the page's security policy admits them and nothing else.
#pragma once

namespace kivreport {

extern const char* const kPageStyle;
extern const char* const kPageStyleHash;  // "sha256-...", in base 64
extern const char* const kPageScript;
extern const char* const kPageScriptHash;

}  // namespace kivreport
