// The view volume behind a screen rectangle, as rectangle picking uses it.
#include <cmath>

#include "SceneFixture.h"

namespace {

typedef std::vector<std::vector<double>> Planes;

double side(const std::vector<double>& p, const AcGePoint3d& q) { return p[0] * q.x + p[1] * q.y + p[2] * q.z + p[3]; }

bool insideAll(const Planes& planes, const AcGePoint3d& q) {
  for (const auto& p : planes)
    if (side(p, q) < 0.0) return false;
  return true;
}

}  // namespace

class RectFrustum : public SceneFixture {
 protected:
  void SetUp() override {
    open(800, 600);
    scene.render();
  }
  AcGePoint3d at(int x, int y, double depth) {
    AcGePoint3d nearPt, farPt;
    scene.getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint(x, y), nearPt, farPt);
    return nearPt + (farPt - nearPt) * depth;
  }
};

TEST_F(RectFrustum, FiveInwardPlanesInFrustumOrderForAnyCornerPair) {
  Planes planes;
  scene.getFrustumPlaneFrom2Pt(CPoint(500, 100), CPoint(700, 250), planes);
  ASSERT_EQ(planes.size(), 5u);
  for (const auto& p : planes) EXPECT_NEAR(std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]), 1.0, 1e-9);
  // Right, left, bottom, top (rows grow downwards), then near.
  EXPECT_LT(side(planes[0], at(710, 175, 0.5)), 0.0);
  EXPECT_LT(side(planes[1], at(490, 175, 0.5)), 0.0);
  EXPECT_LT(side(planes[2], at(600, 260, 0.5)), 0.0);
  EXPECT_LT(side(planes[3], at(600, 90, 0.5)), 0.0);
  for (int p = 0; p < 4; ++p) EXPECT_GT(side(planes[size_t(p)], at(600, 175, 0.5)), 0.0) << p;
  // The near plane is the view's own: just inside it counts, just outside not.
  EXPECT_TRUE(insideAll(planes, at(600, 175, 1e-3)));
  EXPECT_FALSE(insideAll(planes, at(600, 175, -1e-3)));
  EXPECT_NEAR(planes[4][2], scene.getFrustumPlanes()[4][2], 1e-6);

  const CPoint corners[][2] = {{{700, 250}, {500, 100}}, {{500, 250}, {700, 100}}, {{700, 100}, {500, 250}}};
  for (const auto& c : corners) {
    Planes other;
    scene.getFrustumPlaneFrom2Pt(c[0], c[1], other);
    ASSERT_EQ(other.size(), 5u);
    for (size_t p = 0; p < 5; ++p)
      for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(other[p][k], planes[p][k], 1e-9);
  }
}

TEST_F(RectFrustum, AgreesWithProjectionInATurnedView) {
  scene.camera()->RotateCaremaRight(-0.8, AcGePoint3d(2, 3, 0));
  scene.camera()->RotateCaremaRealWorldZ(0.5, AcGePoint3d(2, 3, 0));
  scene.render();
  Planes planes;
  scene.getFrustumPlaneFrom2Pt(CPoint(620, 80), CPoint(250, 410), planes);
  ASSERT_EQ(planes.size(), 5u);
  int in = 0, out = 0;
  for (double x = -120; x <= 120; x += 7.3)
    for (double y = -120; y <= 120; y += 6.1)
      for (double z = -60; z <= 60; z += 30) {
        const AcGePoint3d q(x, y, z);
        const CPoint s = scene.world2screen(q);
        const bool onEdge = std::abs(s.x - 250) <= 1 || std::abs(s.x - 620) <= 1 || std::abs(s.y - 80) <= 1 ||
                            std::abs(s.y - 410) <= 1;
        if (onEdge) continue;  // screen coordinates are truncated
        const bool seen = s.x > 250 && s.x < 620 && s.y > 80 && s.y < 410;
        EXPECT_EQ(insideAll(planes, q), seen) << x << ", " << y << ", " << z;
        (seen ? in : out)++;
      }
  EXPECT_GT(in, 50);
  EXPECT_GT(out, 50);
}

TEST(RectFrustumUnbound, NoMatricesGiveNoPlanes) {
  CSceneMgr s;  // never drawn: the stored matrices are all zero
  Planes planes(3);
  s.getFrustumPlaneFrom2Pt(CPoint(1, 2), CPoint(3, 4), planes);
  EXPECT_TRUE(planes.empty());
}
