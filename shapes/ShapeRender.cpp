// Drawing entry point and the drawers of polylines and polygons.
#include <cmath>

#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSystem.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

using namespace kxshape;

namespace kxshape {
void drawContour(const std::vector<AcGePoint3d>& pts) {
  kgl->VertexPointer(3, GL_DOUBLE, 0, pts.data());
  kgl->DrawArrays(GL_LINE_STRIP, 0, static_cast<GLsizei>(pts.size()));
}
}  // namespace kxshape

namespace {
// Strips come from the triangulation and index glPts; one that does not
// fit (glPts changed size under it) is skipped rather than read past.
bool stripFits(const std::vector<uint16_t>& strip, size_t vertexCount) {
  for (uint16_t i : strip)
    if (i >= vertexCount) return false;
  return true;
}

void drawStripElements(const std::vector<uint16_t>& strip) {
  kgl->DrawElements(GL_TRIANGLE_STRIP, static_cast<GLsizei>(strip.size()), GL_UNSIGNED_SHORT, strip.data());
}
}  // namespace

void CRenderShape::setDotLineState(const CRenderObject*) {
  kgl->Enable(GL_LINE_STIPPLE);
  kgl->LineStipple(1, 0x0F0F);
}

void CRenderShape::backDotLineState(const CRenderObject*) { kgl->Disable(GL_LINE_STIPPLE); }

float CRenderShape::lineWidth(const double* viewScale) const {
  if (!isBorderWidthScaled() || !viewScale || !std::isfinite(*viewScale)) return getBorderWidth();
  // The width grows with the view scale so borders keep their weight when
  // zooming in, up to a maximum.
  const double w = m_rare->borderWidth * (*viewScale) / 15.0;
  return w > m_rare->borderMaxWidth ? m_rare->borderMaxWidth : static_cast<float>(w);
}

void CRenderShape::render(int mode, CRenderObject* obj, const double* viewScale, bool flag) {
  if (m_type != kPline && m_type != kPgon && m_type != kText && m_type != kFace) return;
  if (m_pts.empty() && m_type != kText && m_type != kFace) return;
  if (!obj || !obj->getObjSet()) return;
  const CSceneMgr* scene = sceneOf(obj);
  // The shadow passes set their own offsets; leave them alone then.
  if (!scene || !scene->isShadow()) kgl->PolygonOffset(m_offsetFactor, m_offsetUnits);
  if (m_type == kText) {
    renderText(obj);
    return;
  }
  kgl->Normal3d(m_ucs.x, m_ucs.y, m_ucs.z);
  if (mode == 0) {
    if (m_type == kPline || m_type == kPgon) renderWireFrame(obj, viewScale, flag);
  } else if (mode == 2 || mode == 4) {
    if (m_type == kPline) renderShaded_Pline(obj, viewScale, flag);
    else if (m_type == kPgon) renderShaded_Pgon(obj, viewScale, flag);
  }
  if (m_type == kFace) renderFace(obj, mode);
}

void CRenderShape::renderWireFrame(CRenderObject* obj, const double* viewScale, bool) {
  kgl->LineWidth(lineWidth(viewScale));
  kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, sceneAlpha(obj));
  if (m_hit) setDotLineState(obj);
  drawContour(m_pts);
  for (const auto& hole : m_holes) drawContour(hole);
  if (m_hit) backDotLineState(obj);
}

void CRenderShape::renderShaded_Pline(CRenderObject* obj, const double* viewScale, bool) {
  const float width = lineWidth(viewScale);
  if (m_hit || m_highLight || m_dotLine) {
    // Drawn after all objects with the selection look, so the dashes and
    // contrast colour are not hidden by later faces.
    if (obj) obj->addOutlineShape(this);
    return;
  }
  kgl->LineWidth(width);
  kgl->VertexPointer(3, GL_DOUBLE, 0, m_pts.data());
  kgl->PushAttrib(kAttribMask);
  kgl->DepthRange(kOverlayNear, kOverlayFar);
  kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, sceneAlpha(obj));
  kgl->DrawArrays(GL_LINE_STRIP, 0, static_cast<GLsizei>(m_pts.size()));
  kgl->PopAttrib();
}

void CRenderShape::renderShaded_Pgon(CRenderObject* obj, const double* viewScale, bool flag) {
  if (!obj || !obj->getObjSet() || m_glPts.empty()) return;
  const unsigned char alpha = sceneAlpha(obj);
  const size_t vertexCount = m_glPts.size() / 3;
  const float width = lineWidth(viewScale);
  kgl->LineWidth(width);

  kgl->VertexPointer(3, GL_DOUBLE, 0, m_glPts.data());
  // Texture coordinates are read for every vertex; too few of them would
  // make GL read past the array, so such a shape is drawn untextured.
  const bool textured = hasTexture() && getTexCoords().size() >= 2 * vertexCount;
  if (textured) {
    kgl->Enable(GL_TEXTURE_2D);
    kgl->BindTexture(GL_TEXTURE_2D, getTexture());
    kgl->EnableClientState(GL_TEXTURE_COORD_ARRAY);
    kgl->TexCoordPointer(2, GL_FLOAT, 0, getTexCoords().data());
    kgl->Color4ub(255, 255, 255, alpha);
  } else {
    kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, alpha);
  }

  for (const auto& strip : m_strips) {
    if (!stripFits(strip, vertexCount)) continue;
    if (strip.size() == 4) {
      // Quads are the common case; four immediate vertices cost less than
      // an element draw. Immediate vertices do not read the texture array,
      // so their coordinates are given one by one.
      kgl->Begin(GL_TRIANGLE_STRIP);
      for (uint16_t i : strip) {
        if (textured) kgl->TexCoord2f(getTexCoords()[2 * i], getTexCoords()[2 * i + 1]);
        kgl->Vertex3d(m_glPts[3 * i], m_glPts[3 * i + 1], m_glPts[3 * i + 2]);
      }
      kgl->End();
    } else {
      drawStripElements(strip);
    }
  }

  if (textured) {
    kgl->Disable(GL_TEXTURE_2D);
    kgl->DisableClientState(GL_TEXTURE_COORD_ARRAY);
  }

  if (obj->renderedFlag1()) {
    glSelclr(m_clr);
    if (m_highLight && !flag) {
      // Every other pixel in the contrast colour, in front of the fill.
      kgl->PushAttrib(kAttribMask);
      kgl->DepthRange(0.0, 0.4);
      kgl->PolygonOffset(-1.0f, -1.0f);
      kgl->Enable(GL_POLYGON_STIPPLE);
      kgl->PolygonStipple(CRenderSystem::getStipple());
      for (const auto& strip : m_strips)
        if (stripFits(strip, vertexCount)) drawStripElements(strip);
      kgl->Disable(GL_POLYGON_STIPPLE);
      kgl->PopAttrib();
    }
  }

  if (obj->renderedFlag2()) {
    const CColor& border = getBorderColor();
    if (m_hit) {
      setDotLineState(obj);
      glSetBorderClr(border);
      kgl->LineWidth(1.0f);
    } else if (!m_showBorder) {
      return;
    } else {
      kgl->Color4ub(border.r, border.g, border.b, alpha);
    }
    drawContour(m_pts);
    for (const auto& hole : m_holes) drawContour(hole);
    if (m_hit) backDotLineState(obj);
  }
}

void CRenderShape::glSelclr(const CColor& c) {
  const int sum = c.r + c.g + c.b;
  if (sum > 550) kgl->Color3ub(0, 0, 255);
  else kgl->Color3ub(255, 255, 255);
}

void CRenderShape::glSetBorderClr(const CColor& c) {
  // Red and green inverted, blue kept: a bluish border stays bluish but
  // turns away from the fill's own tint.
  if (c.b < 230) kgl->Color3ub(0, 0, 255);
  else kgl->Color3ub(static_cast<GLubyte>(255 - c.r), static_cast<GLubyte>(255 - c.g), c.b);
}
