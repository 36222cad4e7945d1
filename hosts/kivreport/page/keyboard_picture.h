// The keystrokes of a student's saved game on a drawn keyboard.
#pragma once

#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// Each key is the darker the larger its share of errors is, which it tells; in words the drawing
// names the weakest.
std::string KeyboardPicture(const Keys& keys, const Words& words);

// "12 %".
std::string ErrorShare(const KeyCount& count);

}  // namespace kivreport
