// The render system singleton: its checkerboard stipple and the immediate
// drawing helpers.
#include <gtest/gtest.h>

#include "kxrender/CRenderSystem.h"
#include "support/GLRecorder.h"

namespace {
std::vector<std::string> texts(const GLRecorder& rec) {
  std::vector<std::string> out;
  for (const auto& c : rec.calls()) out.push_back(c.text());
  return out;
}
}  // namespace

TEST(RenderSystemStipple, CheckerboardRowsAlternateStartingWithAA) {
  const unsigned char* p = CRenderSystem::getStipple();  // no singleton needed
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p, CRenderSystem::m_stipple);
  for (int row = 0; row < 32; ++row)
    for (int k = 0; k < 4; ++k) EXPECT_EQ(p[row * 4 + k], row % 2 ? 0x55 : 0xAA) << row << "," << k;
}

TEST(RenderSystemSingleton, CreatedOnceAndDestroyed) {
  CRenderSystem::destroySingleton();
  EXPECT_EQ(CRenderSystem::getSingleton(), nullptr);
  CRenderSystem::createSingleton();
  CRenderSystem* first = CRenderSystem::getSingleton();
  ASSERT_NE(first, nullptr);
  CRenderSystem::createSingleton();
  EXPECT_EQ(CRenderSystem::getSingleton(), first);
  CRenderSystem::destroySingleton();
  EXPECT_EQ(CRenderSystem::getSingleton(), nullptr);
  CRenderSystem::destroySingleton();  // twice is harmless
  EXPECT_EQ(CRenderSystem::getSingleton(), nullptr);
  EXPECT_NE(CRenderSystem::getStipple(), nullptr);
}

TEST(RenderSystemDrawing, PointsAndStripsEmitOnlyVertices) {
  CRenderSystem::createSingleton();
  CRenderSystem* rs = CRenderSystem::getSingleton();
  GLRecorder rec(false);
  rs->drawPt(AcGePoint3d(1, 2, 3));
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glVertex3d(1, 2, 3)"}));

  const std::vector<AcGePoint3d> pts = {{0, 0, 0}, {1, 0.5, 0}, {2, 0, -1}};
  const std::vector<std::string> three = {"glVertex3d(0, 0, 0)", "glVertex3d(1, 0.5, 0)", "glVertex3d(2, 0, -1)"};
  rec.clear();
  rs->drawPLine(pts);
  EXPECT_EQ(texts(rec), three);
  rec.clear();
  rs->drawTriangleStrip(pts);
  EXPECT_EQ(texts(rec), three);
  rec.clear();
  rs->drawPLine(std::vector<AcGePoint3d>{});
  EXPECT_TRUE(rec.calls().empty());
  CRenderSystem::destroySingleton();
}

TEST(RenderSystemDrawing, WidePolylineSetsWidthColourAndOneStrip) {
  CRenderSystem::createSingleton();
  CRenderSystem* rs = CRenderSystem::getSingleton();
  GLRecorder rec(false);
  CColor c(10, 20, 30, 40);
  rs->drawPLine({{1, 1, 0}, {2, 3, 0}}, 2.5, c);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glLineWidth(2.5)", "glColor4ub(10, 20, 30, 40)", "glBegin(3)",
                                                  "glVertex3d(1, 1, 0)", "glVertex3d(2, 3, 0)", "glEnd()"}));
  rec.clear();
  rs->drawPLine({}, 1.0, c);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glLineWidth(1)", "glColor4ub(10, 20, 30, 40)", "glBegin(3)",
                                                  "glEnd()"}));
  CRenderSystem::destroySingleton();
}
