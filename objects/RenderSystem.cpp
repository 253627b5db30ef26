#include "kxrender/CRenderSystem.h"

#include "support/GLTable.h"

namespace {
// 32 rows of 32 bits; neighbouring rows are shifted by one bit, so every
// other pixel of a highlighted fill lets the colour below show through.
constexpr unsigned char kRowA = 0xAA;
constexpr unsigned char kRowB = 0x55;
#define KX_ROW_PAIR kRowA, kRowA, kRowA, kRowA, kRowB, kRowB, kRowB, kRowB
const unsigned char kCheckerboard[128] = {
    KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR,
    KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR, KX_ROW_PAIR};
#undef KX_ROW_PAIR
}  // namespace

CRenderSystem* CRenderSystem::m_singleton = nullptr;
// Constant-initialised: shapes may draw highlights before any singleton
// exists, so the pattern must not depend on createSingleton.
const unsigned char* CRenderSystem::m_stipple = kCheckerboard;

void CRenderSystem::createSingleton() {
  if (!m_singleton) m_singleton = new CRenderSystem();
}

void CRenderSystem::destroySingleton() {
  delete m_singleton;
  m_singleton = nullptr;
}

void CRenderSystem::drawPt(const AcGePoint3d& p) { kgl->Vertex3d(p.x, p.y, p.z); }

void CRenderSystem::drawPLine(const std::vector<AcGePoint3d>& pts) {
  for (const AcGePoint3d& p : pts) kgl->Vertex3d(p.x, p.y, p.z);
}

// Same vertices as drawPLine: the primitive is whatever the caller opened.
void CRenderSystem::drawTriangleStrip(const std::vector<AcGePoint3d>& pts) { drawPLine(pts); }

void CRenderSystem::drawPLine(const std::vector<AcGePoint3d>& pts, double width, CColor& clr) {
  kgl->LineWidth(static_cast<GLfloat>(width));
  kgl->Color4ub(clr.r, clr.g, clr.b, clr.a);
  kgl->Begin(GL_LINE_STRIP);
  drawPLine(pts);
  kgl->End();
}
