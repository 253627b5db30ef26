// The render system singleton: its checkerboard stipple and the immediate
// drawing helpers.
#include <gtest/gtest.h>

#include <functional>

#include "kxrender/CRenderSystem.h"
#include "support/GLRecorder.h"

TEST(RenderSystem, StippleRowsAlternateStartingWithAA) {
  const unsigned char* p = CRenderSystem::getStipple();  // no singleton needed
  for (int i = 0; i < 128; ++i) EXPECT_EQ(p[i], i / 4 % 2 ? 0x55 : 0xAA) << "row " << i / 4;
}

TEST(RenderSystem, OneSingletonWhoseDrawingHelpersEmitTheirCalls) {
  CRenderSystem::createSingleton();
  CRenderSystem* rs = CRenderSystem::getSingleton();
  CRenderSystem::createSingleton();  // made once
  EXPECT_EQ(CRenderSystem::getSingleton(), rs);
  CColor c(10, 20, 30, 40);
  const std::vector<AcGePoint3d> pts = {{0, 0, 0}, {1, 0.5, 0}, {2, 0, -1}};
  const std::vector<std::string> three = {"glVertex3d(0, 0, 0)", "glVertex3d(1, 0.5, 0)", "glVertex3d(2, 0, -1)"};
  const struct {
    const char* name;
    std::function<void()> draw;
    std::vector<std::string> calls;
  } rows[] = {
      {"point", [&] { rs->drawPt(AcGePoint3d(1, 2, 3)); }, {"glVertex3d(1, 2, 3)"}},
      {"pline", [&] { rs->drawPLine(pts); }, three},
      {"strip", [&] { rs->drawTriangleStrip(pts); }, three},
      {"empty pline", [&] { rs->drawPLine(std::vector<AcGePoint3d>{}); }, {}},
      {"wide pline", [&] { rs->drawPLine({{1, 1, 0}, {2, 3, 0}}, 2.5, c); },
       {"glLineWidth(2.5)", "glColor4ub(10, 20, 30, 40)", "glBegin(3)", "glVertex3d(1, 1, 0)", "glVertex3d(2, 3, 0)",
        "glEnd()"}},
      {"wide empty", [&] { rs->drawPLine({}, 1.0, c); },
       {"glLineWidth(1)", "glColor4ub(10, 20, 30, 40)", "glBegin(3)", "glEnd()"}},
  };
  for (const auto& row : rows) {
    GLRecorder rec(false);
    row.draw();
    std::vector<std::string> got;
    for (const GLCall& call : rec.calls()) got.push_back(call.text());
    EXPECT_EQ(got, row.calls) << row.name;
  }
  CRenderSystem::destroySingleton();
  CRenderSystem::destroySingleton();  // harmless
  EXPECT_EQ(CRenderSystem::getSingleton(), nullptr);
}
