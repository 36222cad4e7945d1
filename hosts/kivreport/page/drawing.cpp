#include "hosts/kivreport/page/drawing.h"

#include <cmath>
#include <cstdlib>

namespace kivreport {

std::string Drawn(double number) {
  const long tenths = std::lround(std::abs(number) * 10);
  const long rest = tenths % 10;
  return (number < 0 && tenths > 0 ? "-" : "") + std::to_string(tenths / 10) +
         (rest == 0 ? "" : "." + std::to_string(rest));
}

std::string DrawnText(double x, double y, const std::string& text) {
  return "<text x=\"" + Drawn(x) + "\" y=\"" + Drawn(y) + "\">" + text + "</text>";
}

}  // namespace kivreport
