// Angle helpers for what turns on a screen.
#pragma once

#include <cstdint>

namespace kivstore {

struct SPoint {
  int32_t x = 0, y = 0;
};
struct SSize {
  int32_t cx = 0, cy = 0;
};
struct SRect {
  int32_t left = 0, top = 0, right = 0, bottom = 0;
};

void SinCos(double degrees, double& sine, double& cosine);

// (x, y) turned around the centre; each product is truncated towards zero by itself.
void RotatePoint(SPoint& out, int32_t x, int32_t y, int32_t centreX, int32_t centreY, double sine,
                 double cosine);

}  // namespace kivstore
