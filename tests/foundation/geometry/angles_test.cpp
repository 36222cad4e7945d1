// Turning points around a centre.
#include "foundation/geometry/angles.h"

#include <gtest/gtest.h>

#include <limits>

namespace kivstore {
namespace {

TEST(RotatePoint, TakesDegreesAndTruncatesEachProductByItself) {
  double sine = 0, cosine = 0;
  SinCos(30.0, sine, cosine);
  EXPECT_NEAR(sine, 0.5, 1e-9);
  EXPECT_NEAR(cosine, 0.8660254037844386, 1e-9);
  SPoint point;
  // dx -3, dy 3: the products -1.5 and 1.5 truncate to -1 and 1.
  RotatePoint(point, 7, 8, 10, 5, 0.5, 0.5);
  EXPECT_TRUE(point.x == 8 && point.y == 5);
  RotatePoint(point, INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 1e300, -1e300);
  RotatePoint(point, 0, 0, 0, 0, std::numeric_limits<double>::infinity(), 1.0);
  EXPECT_EQ(point.x, 0) << "any point is safe";
}

}  // namespace
}  // namespace kivstore
