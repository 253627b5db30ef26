// Texture coordinates of points of a planar outline.
#include <gtest/gtest.h>

#include "kxrender/CTextureCoord.h"

namespace {
bool at(const AcGePoint2d& p, double s, double t) { return std::fabs(p.x - s) < 1e-12 && std::fabs(p.y - t) < 1e-12; }
const std::vector<AcGePoint3d> kSquare = {{0, 0, 5}, {2, 0, 5}, {2, 2, 5}, {0, 2, 5}};
}  // namespace

TEST(TextureCoord, DefaultsAndOutlinesWithoutPlane) {
  CTextureCoord tc;
  EXPECT_TRUE(tc.getPicWidth() == 0 && tc.getPicHeight() == 0 && tc.getU() == 1.0f && tc.getV() == 1.0f);
  const AcGePoint2d none = tc.getTextureCoord(AcGePoint3d(1, 2, 3));  // no rectangle yet: finite
  EXPECT_TRUE(std::isfinite(none.x) && std::isfinite(none.y));

  ASSERT_TRUE(tc.setPts(kSquare));
  const AcGeMatrix3d before = tc.getWorldToPlane();
  EXPECT_FALSE(tc.setPts({{0, 0, 0}, {1, 1, 1}}));
  EXPECT_FALSE(tc.setPts({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}}));
  EXPECT_FALSE(tc.setPts({{0, 0, 0}, {1, 0, 0}, {2, 0.000001, 0}}));  // within 1e-5 of the line
  EXPECT_FALSE(tc.setPts({{5, 5, 5}, {5, 5, 5}, {1, 0, 0}}));        // no first direction
  EXPECT_TRUE(tc.getWorldToPlane().isEqualTo(before) && tc.getMaxPt().x == 2.0);
  EXPECT_TRUE(tc.setPts({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {3, 2, 0}}));  // a later point spans the plane
}

TEST(TextureCoord, SquareCornersRepeatsAndTheNegativeV) {
  CTextureCoord tc;
  ASSERT_TRUE(tc.setPts(kSquare));
  tc.setUV(1, 1);  // t runs down from the top edge
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(0, 0, 5)), 0, 1));
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(2, 2, 5)), 1, 0));
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(1, 0.5, 5)), 0.5, 0.75));
  tc.setUV(3, 0.5f);
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(2, 0, 5)), 3, 0.5));
  EXPECT_TRUE(at(tc.getTextureCoord2(AcGePoint3d(2, 0, 5)), 1, 1));  // unscaled
  tc.setUV(-2, -1);  // a negative v is dropped, a negative u is not
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(0, 0, 5)), 0, 1));
  EXPECT_TRUE(at(tc.getTextureCoord(AcGePoint3d(2, 2, 5)), -2, 0));
  CTextureCoord copy = tc;
  EXPECT_TRUE(at(copy.getTextureCoord(AcGePoint3d(2, 2, 5)), -2, 0));
}

TEST(TextureCoord, OutlineOfAWallSpansZeroToOne) {
  const std::vector<AcGePoint3d> l = {{0, 3, 0}, {4, 3, 0}, {4, 3, 1}, {1, 3, 1}, {1, 3, 3}, {0, 3, 3}};
  CTextureCoord tc;
  ASSERT_TRUE(tc.setPts(l));
  EXPECT_NEAR(tc.getMaxPt().x - tc.getMinPt().x, 4.0, 1e-12);
  EXPECT_NEAR(tc.getMaxPt().y - tc.getMinPt().y, 3.0, 1e-12);
  for (const AcGePoint3d& p : l) {
    const AcGePoint2d st = tc.getTextureCoord2(p);
    EXPECT_TRUE(st.x > -1e-12 && st.x < 1 + 1e-12 && st.y > -1e-12 && st.y < 1 + 1e-12);
  }
  const AcGePoint2d a = tc.getTextureCoord2(l[0]), b = tc.getTextureCoord2(AcGePoint3d(4, 3, 3));
  EXPECT_TRUE(std::fabs(std::fabs(a.x - b.x) - 1) < 1e-12 && std::fabs(std::fabs(a.y - b.y) - 1) < 1e-12);
}
