// Texture coordinates of points of a planar outline.
#include <gtest/gtest.h>

#include "kxrender/CTextureCoord.h"

static bool at(const AcGePoint2d& p, double s, double t) { return std::fabs(p.x - s) < 1e-12 && std::fabs(p.y - t) < 1e-12; }

TEST(TextureCoord, OutlinesWithoutAPlaneAreRefusedAndKeepTheOldOne) {
  CTextureCoord tc;
  EXPECT_TRUE(std::isfinite(tc.getTextureCoord(AcGePoint3d(1, 2, 3)).y));  // no rectangle yet: finite
  const std::vector<AcGePoint3d> wall = {{0, 3, 0}, {4, 3, 0}, {4, 3, 1}, {1, 3, 1}, {1, 3, 3}, {0, 3, 3}};
  ASSERT_TRUE(tc.setPts(wall));
  const AcGeMatrix3d before = tc.getWorldToPlane();
  for (const std::vector<AcGePoint3d>& bad : std::vector<std::vector<AcGePoint3d>>{
           {{0, 0, 0}, {1, 1, 1}}, {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}},
           {{0, 0, 0}, {1, 0, 0}, {2, 0.000001, 0}},  // within 1e-5 of the line
           {{5, 5, 5}, {5, 5, 5}, {1, 0, 0}}})        // no first direction
    EXPECT_FALSE(tc.setPts(bad)) << bad.size();
  EXPECT_TRUE(tc.getWorldToPlane().isEqualTo(before));
  const AcGePoint2d a = tc.getTextureCoord2(wall[0]), b = tc.getTextureCoord2(AcGePoint3d(4, 3, 3));  // spans 0..1
  EXPECT_TRUE(std::fabs(std::fabs(a.x - b.x) - 1) < 1e-12 && std::fabs(std::fabs(a.y - b.y) - 1) < 1e-12);
  EXPECT_TRUE(tc.setPts({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {3, 2, 0}}));  // a later point spans the plane
}

TEST(TextureCoord, RepeatsScaleAndANegativeVIsDropped) {
  const struct { float u, v; AcGePoint3d p; double s, t; } rows[] = {
      {1, 1, {0, 0, 5}, 0, 1}, {1, 1, {2, 2, 5}, 1, 0}, {1, 1, {1, 0.5, 5}, 0.5, 0.75},  // t runs down from the top
      {3, 0.5f, {2, 0, 5}, 3, 0.5}, {-2, -1, {0, 0, 5}, 0, 1}, {-2, -1, {2, 2, 5}, -2, 0}};  // v < 0 dropped, u < 0 kept
  CTextureCoord tc;
  ASSERT_TRUE(tc.setPts({{0, 0, 5}, {2, 0, 5}, {2, 2, 5}, {0, 2, 5}}));
  for (const auto& r : rows) {
    tc.setUV(r.u, r.v);
    EXPECT_TRUE(at(tc.getTextureCoord(r.p), r.s, r.t)) << r.u << " " << r.v << " (" << r.p.x << ", " << r.p.y << ")";
  }
  EXPECT_TRUE(at(tc.getTextureCoord2(AcGePoint3d(2, 0, 5)), 1, 1));  // unscaled
}
