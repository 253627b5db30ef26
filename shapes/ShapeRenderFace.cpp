// Face meshes: drawn through a display list compiled on first use, with
// the selection look applied outside the list.
#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSystem.h"
#include "shapes/FaceTriangles.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

using namespace kxshape;

namespace {
// The triangles of a mesh in immediate mode, lifted by zOffset. Whole
// triangles only: one bad index drops its triangle instead of reading
// outside the arrays.
void emitTriangles(const std::vector<AcGePoint3d>& v, const std::vector<int>& idx,
                   const std::vector<AcGeVector3d>& n, const std::vector<AcGePoint2d>* uv, float zOffset) {
  kgl->Begin(GL_TRIANGLES);
  forEachFaceCorner(idx, v.size(), n.size(), [&](size_t i) {
    kgl->Normal3f(static_cast<GLfloat>(n[i].x), static_cast<GLfloat>(n[i].y), static_cast<GLfloat>(n[i].z));
    if (uv) kgl->TexCoord2f(static_cast<GLfloat>((*uv)[i].x), static_cast<GLfloat>((*uv)[i].y));
    kgl->Vertex3f(static_cast<GLfloat>(v[i].x), static_cast<GLfloat>(v[i].y), static_cast<GLfloat>(v[i].z + zOffset));
  });
  kgl->End();
}

void emitEdges(const std::vector<std::vector<AcGePoint3d>>& lines, float zOffset) {
  for (const auto& line : lines) {
    kgl->Begin(GL_LINE_STRIP);
    for (const AcGePoint3d& p : line) kgl->Vertex3d(p.x, p.y, p.z + zOffset);
    kgl->End();
  }
}
}  // namespace

void CRenderShape::renderFace(CRenderObject* obj, int mode) {
  if (isFaceDataNull()) return;
  const unsigned char alpha = sceneAlpha(obj);

  kgl->LineWidth(kFaceLineWidth);
  if (m_hit && obj && obj->getObjSet()) obj->addOutlineShape(this);
  kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, alpha);

  if (m_highLight) {
    kgl->PushAttrib(kAttribMask);
    kgl->DepthRange(kOverlayNear, kOverlayFar);
    glSelclr(m_clr);
    kgl->Enable(GL_POLYGON_STIPPLE);
    kgl->PolygonStipple(CRenderSystem::getStipple());
  }

  if (mode == 0) {
    // A hit face's edges are drawn later, dashed, with the other outlines.
    if (!m_hit)
      for (const auto& line : getHitLine()) drawContour(line);
  } else if (m_faceDisplayList != 0 && kgl->IsList(m_faceDisplayList)) {
    kgl->CallList(m_faceDisplayList);
  } else {
    m_faceDisplayList = kgl->GenLists(1);
    if (kgl->IsList(m_faceDisplayList)) {
      // The scene alpha and the border are baked into the list: changing
      // either needs releaseDisplayList. Hit and highlight stay outside.
      kgl->NewList(m_faceDisplayList, GL_COMPILE_AND_EXECUTE);
      const bool textured = hasTexture() && meshTexCoords() && meshTexCoords()->size() == meshVertices()->size();
      if (textured) {
        kgl->Enable(GL_TEXTURE_2D);
        kgl->BindTexture(GL_TEXTURE_2D, getTexture());
      }
      emitTriangles(*meshVertices(), *meshTriangleIndices(), *meshNormals(), textured ? meshTexCoords() : nullptr,
                    m_zOffset);
      if (textured) kgl->Disable(GL_TEXTURE_2D);
      if (m_showBorder) {
        kgl->PushAttrib(kAttribMask);
        kgl->DepthRange(kOverlayNear, kOverlayFar);
        kgl->LineWidth(getBorderWidth());
        const CColor& border = getBorderColor();
        kgl->Color4ub(border.r, border.g, border.b, alpha);
        emitEdges(getHitLine(), m_zOffset);
        kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, alpha);
        kgl->LineWidth(kFaceLineWidth);
        kgl->PopAttrib();
      }
      kgl->EndList();
    }
  }

  if (m_highLight) {
    kgl->PopAttrib();
    kgl->Disable(GL_POLYGON_STIPPLE);
  }
}

void CRenderShape::releaseDisplayList() {
  // Name 0 is never a list; skipping it keeps releases free of GL calls
  // for shapes that never compiled one.
  if (m_faceDisplayList != 0 && kgl->IsList(m_faceDisplayList)) kgl->DeleteLists(m_faceDisplayList, 1);
  m_faceDisplayList = 0;
}
