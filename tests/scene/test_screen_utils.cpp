// The screen queries of the geometric utilities that map world points
// through a scene. The scene's matrices come from a GL table that
// answers the matrix queries with a fixed view: world x, y in [0, 100] fill
// a 100 x 100 viewport, so a world point (x, y) lands on pixel (x, 100 - y).
#include <gtest/gtest.h>

#include <cstring>

#include "kxrender/CPoint.h"
#include "kxrender/CRect.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CSceneMgr.h"
#include "support/GLTable.h"

using U = CRenderSysUtils;

namespace {

void fixedDoubles(GLenum pname, GLdouble* v) {
  static const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  // glOrtho(0, 100, 0, 100, -1000, 1000), column-major.
  static const double ortho[16] = {0.02, 0, 0, 0, 0, 0.02, 0, 0, 0, 0, -0.001, 0, -1, -1, 0, 1};
  std::memcpy(v, pname == GL_PROJECTION_MATRIX ? ortho : identity, sizeof identity);
}

void fixedIntegers(GLenum, GLint* v) {
  static const GLint viewport[4] = {0, 0, 100, 100};
  std::memcpy(v, viewport, sizeof viewport);
}

class ScreenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_table = kxDriverGL();
    m_table.GetDoublev = fixedDoubles;
    m_table.GetIntegerv = fixedIntegers;
    m_saved = kgl;
    kgl = &m_table;
    m_scene.updateFrustumAndMatrix();
  }
  void TearDown() override { kgl = m_saved; }

  KxGLTable m_table;
  KxGLTable* m_saved = nullptr;
  CSceneMgr m_scene;
};

}  // namespace

TEST_F(ScreenTest, AllInRect) {
  CRect r(10, 10, 50, 50);
  EXPECT_FALSE(U::allInRect(nullptr, {}, r));
  EXPECT_TRUE(U::allInRect(&m_scene, {}, r));
  EXPECT_TRUE(U::allInRect(&m_scene, {AcGePoint3d(20, 60, 0), AcGePoint3d(50.5, 50.5, 7)}, r));
  EXPECT_FALSE(U::allInRect(&m_scene, {AcGePoint3d(20, 60, 0), AcGePoint3d(60, 60, 0)}, r));
}

TEST_F(ScreenTest, BoxToFrustumClasses) {
  CRect r(20, 20, 60, 60);  // world x 20..60, y 40..80
  EXPECT_EQ(U::boxToFrustum(nullptr, AcGePoint3d(), AcGePoint3d(1, 1, 1), r), 0);
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(30, 50, 0), AcGePoint3d(40, 60, 5), r), 1);
  // Edges count as inside.
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(20, 40, 0), AcGePoint3d(60, 80, 5), r), 1);
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(50, 50, 0), AcGePoint3d(90, 60, 5), r), 2);
  // No corner inside, but the box's image crosses the rectangle.
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(30, 10, 0), AcGePoint3d(40, 95, 0), r), 2);
  // The image encloses the rectangle.
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(0, 0, 0), AcGePoint3d(90, 95, 0), r), 3);
  // Sharing an edge with the rectangle's bounds is not strict enclosure.
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(10, 40, 0), AcGePoint3d(70, 90, 0), r), 2);
  EXPECT_EQ(U::boxToFrustum(&m_scene, AcGePoint3d(70, 10, 0), AcGePoint3d(90, 30, 0), r), 0);
}
