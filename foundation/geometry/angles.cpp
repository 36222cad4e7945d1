#include "foundation/geometry/angles.h"

#include <algorithm>
#include <cmath>

namespace kivstore {
namespace {

constexpr double kRadiansPerDegree = 0.017453292522222223;

// Towards zero; far outside any screen it stays at the end of the range.
int64_t Truncated(double product) {
  constexpr double kLimit = 1e12;
  return std::isnan(product) ? 0 : static_cast<int64_t>(std::clamp(product, -kLimit, kLimit));
}

}  // namespace

void SinCos(double degrees, double& sine, double& cosine) {
  const double radians = degrees * kRadiansPerDegree;
  sine = std::sin(radians);
  cosine = std::cos(radians);
}

void RotatePoint(SPoint& out, int32_t x, int32_t y, int32_t centreX, int32_t centreY, double sine,
                 double cosine) {
  const double dx = static_cast<double>(x) - centreX;
  const double dy = static_cast<double>(y) - centreY;
  out.x = static_cast<int32_t>(centreX + Truncated(dx * cosine) - Truncated(dy * sine));
  out.y = static_cast<int32_t>(centreY + Truncated(dy * cosine) + Truncated(dx * sine));
}

}  // namespace kivstore
