// Turning points around a centre.
#include "foundation/angles.h"

#include <gtest/gtest.h>

#include <limits>

namespace kivstore {
namespace {

TEST(SinCos, TakesDegrees) {
  double sine = 0, cosine = 0;
  SinCos(30.0, sine, cosine);
  EXPECT_NEAR(sine, 0.5, 1e-9);
  EXPECT_NEAR(cosine, 0.8660254037844386, 1e-9);
}

TEST(RotatePoint, TruncatesEachProductByItself) {
  SPoint point;
  RotatePoint(point, 13, 7, 10, 5, 0.5, 0.5);
  // dx 3, dy 2: the products 1.5 and 1 truncate to 1 and 1.
  EXPECT_EQ(point.x, 10);
  EXPECT_EQ(point.y, 7);
  RotatePoint(point, 7, 5, 10, 5, 0.5, 0.5);  // dx -3: -1.5 truncates to -1
  EXPECT_EQ(point.x, 9);
  EXPECT_EQ(point.y, 4);
}

TEST(RotatePoint, AnyPointIsSafe) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  SPoint point;
  RotatePoint(point, INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 1e300, -1e300);
  RotatePoint(point, 0, 0, 0, 0, kInfinity, 1.0);  // 0 times infinity
  EXPECT_EQ(point.x, 0);
}

}  // namespace
}  // namespace kivstore
