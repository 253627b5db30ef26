// The distance tool: while it is on, the snap point under the cursor is
// marked with the symbol of its kind; two clicks on snap points measure the
// distance between them.
#include <epoxy/gl.h>

#include <cstdio>

#include "Viewer.h"

namespace {

// Strokes of the marker of a kind, in pixels about the point (y down).
std::vector<std::vector<CPoint>> markerOf(CRenderObject::SnapMode k) {
  const int r = 6;
  switch (k) {
    case CRenderObject::kSnapEndPoint: return {{{-r, -r}, {r, -r}, {r, r}, {-r, r}, {-r, -r}}};
    case CRenderObject::kSnapMidPoint: return {{{0, -r}, {r, r}, {-r, r}, {0, -r}}};
    case CRenderObject::kSnapCenter:
      return {{{r, 0}, {4, 4}, {0, r}, {-4, 4}, {-r, 0}, {-4, -4}, {0, -r}, {4, -4}, {r, 0}}};
    case CRenderObject::kSnapIntersection: return {{{-r, -r}, {r, r}}, {{-r, r}, {r, -r}}};
    case CRenderObject::kSnapPerpendicular: return {{{-r, -r}, {-r, r}, {r, r}}, {{-r, 0}, {0, 0}, {0, r}}};
    case CRenderObject::kSnapNearest: return {{{-r, -r}, {r, -r}, {-r, r}, {r, r}, {-r, -r}}};
    case CRenderObject::kSnapNode: return {{{0, -r}, {r, 0}, {0, r}, {-r, 0}, {0, -r}}};
    default: return {{{-r, -r}, {r, -r}, {r, r}, {-r, r}, {-r, -r}}, {{-r, -r}, {r, r}}};
  }
}

}  // namespace

void Viewer::measureMove(int x, int y) {
  m_scene.setSnapMode(CRenderObject::kSnapAll);
  m_snapped = m_scene.snap(CPoint(x, y), 12, m_scene.getPickPrecision(), m_snapPoint, m_snapKind);
}

void Viewer::measureClick() {
  if (!m_snapped) return;
  if (m_measured != 1) {
    m_from = m_snapPoint;
    m_measured = 1;
    // Perpendicular feet are taken from the first point.
    m_scene.setSnapFirstPt(true, m_from);
    return;
  }
  m_to = m_snapPoint;
  m_measured = 2;
  std::printf("kxview: distance %.6f from (%.4f, %.4f, %.4f) to (%.4f, %.4f, %.4f)\n", m_from.distanceTo(m_to),
              m_from.x, m_from.y, m_from.z, m_to.x, m_to.y, m_to.z);
  std::fflush(stdout);
}

void Viewer::drawMeasure() {
  beginOverlay();
  glLineWidth(2.0f);
  if (m_measured > 0) {
    const CPoint a = m_scene.world2screen(m_from);
    const CPoint b = m_measured == 2 ? m_scene.world2screen(m_to) : m_scene.world2screen(m_snapPoint);
    if (m_measured == 2 || m_snapped) {
      glColor3f(0.3f, 1.0f, 0.3f);
      glBegin(GL_LINES);
      glVertex2d(a.x, a.y);
      glVertex2d(b.x, b.y);
      glEnd();
    }
  }
  if (m_snapped) {
    const CPoint at = m_scene.world2screen(m_snapPoint);
    glColor3f(1.0f, 0.86f, 0.0f);
    for (const std::vector<CPoint>& stroke : markerOf(m_snapKind)) {
      glBegin(GL_LINE_STRIP);
      for (const CPoint& d : stroke) glVertex2d(at.x + d.x + 0.5, at.y + d.y + 0.5);
      glEnd();
    }
  }
  endOverlay();
}
