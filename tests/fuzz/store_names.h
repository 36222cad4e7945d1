// The names that a store's tree is made of, so that an input tells them in one byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kivtest {

inline constexpr const char* kStoreNames[] = {
    "Classes.zep", "Students",     "Shared",   "index.kiv",    "index.lok", "options.kiv",
    "options.lok", "longname.kiv", "last.kiv", "autogame.zep", "a",         "b",
    "AnnLee",      "Room12",       "Hill",     "Default",      "TDefault"};
inline constexpr size_t kStoreNameCount = std::size(kStoreNames);
// Any byte from the count on: the name itself follows.
inline constexpr uint8_t kOtherName = 0xFF;

// What stands at a place.
inline constexpr uint8_t kPlaceIsFolder = 1;
inline constexpr uint8_t kPlaceIsHidden = 2;
inline constexpr uint8_t kPlaceIsReadOnly = 4;
inline constexpr uint8_t kPlaceIsHeld = 8;  // by another workstation

}  // namespace kivtest
