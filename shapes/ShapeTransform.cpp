// Moving a shape as a whole, thickening a face mesh, and texture
// coordinates of a polygon's triangulated vertices.
#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CRenderShape.h"
#include "shapes/TextPlacement.h"

// Everything the shape holds follows the matrix, the triangulation
// included, so nothing has to be cut again. The face display list is left
// to the caller to release.
void CRenderShape::transformBy(const AcGeMatrix3d& m) {
  touchDrawStamp();
  m_ucs.transformBy(m).normalize();
  for (AcGePoint3d& p : m_pts) p.transformBy(m);
  for (auto& h : m_holes)
    for (AcGePoint3d& p : h) p.transformBy(m);
  for (size_t i = 0; i + 2 < m_glPts.size(); i += 3) {
    AcGePoint3d p(m_glPts[i], m_glPts[i + 1], m_glPts[i + 2]);
    p.transformBy(m);
    m_glPts[i] = p.x;
    m_glPts[i + 1] = p.y;
    m_glPts[i + 2] = p.z;
  }
  if (m_textInfo) {
    TextInfo& t = *m_textInfo;
    t.dir1.transformBy(m);
    t.dir2.transformBy(m);
    t.position.transformBy(m);
    t.height *= m.scale();
    takeGlyphs(t);
    placeText(t);
  }
  // Shared arrays belong to their owner, who moves them once for all the
  // shapes that use them.
  if (!m_shareVertexData) {
    if (meshVertices())
      for (AcGePoint3d& p : *meshVertices()) p.transformBy(m);
    if (meshNormals())
      for (AcGeVector3d& n : *meshNormals()) n.transformBy(m);
  }
  if (m_rare) m_rare->faceBvh.reset();
  if (m_rare)
    for (auto& line : m_rare->hitLines)
    for (AcGePoint3d& p : line) p.transformBy(m);
  calArea();
  calBox();
}

// Moves every vertex along its own normal; with unit normals the surface is
// offset by exactly d. The normals are used as they are.
void CRenderShape::offsetFaceVertex(double d) {
  touchDrawStamp();
  if (!meshVertices() || !meshNormals()) return;
  std::vector<AcGePoint3d>& v = *meshVertices();
  const std::vector<AcGeVector3d>& n = *meshNormals();
  const size_t count = std::min(v.size(), n.size());
  for (size_t i = 0; i < count; ++i) v[i] += n[i] * d;
  if (m_rare) m_rare->faceBvh.reset();
}

// uv holds one coordinate per contour point: the outer contour, then, when
// given, the holes in their stored order. Each triangulated vertex takes the
// coordinate of the first contour point at its place; a vertex made where
// contours cross, or one whose point has no entry in uv, gets (0, 0).
void CRenderShape::setTextureCoord(std::vector<AcGePoint2d> uv) {
  touchDrawStamp();
  if (m_rare) m_rare->texCoords.clear();
  if (m_pts.empty()) return;
  std::vector<float>& texCoords = rare().texCoords;
  AcGeMatrix3d toPlane;
  toPlane.setToWorldToPlane(AcGePlane(m_pts[0], m_ucs));
  AcGeTol tol;
  tol.setEqualPoint(1e-5);

  std::vector<AcGePoint3d> contour;
  contour.reserve(m_pts.size());
  for (const AcGePoint3d& p : m_pts) contour.push_back(toPlane * p);
  for (const auto& h : m_holes)
    for (const AcGePoint3d& p : h) contour.push_back(toPlane * p);

  const size_t vertices = m_glPts.size() / 3;
  texCoords.reserve(vertices * 2);
  for (size_t v = 0; v < vertices; ++v) {
    const AcGePoint3d q = toPlane * AcGePoint3d(m_glPts[3 * v], m_glPts[3 * v + 1], m_glPts[3 * v + 2]);
    AcGePoint2d t(0.0, 0.0);
    for (size_t i = 0; i < contour.size(); ++i) {
      if (contour[i].isEqualTo(q, tol)) {
        if (i < uv.size()) t = uv[i];
        break;
      }
    }
    texCoords.push_back(static_cast<float>(t.x));
    texCoords.push_back(static_cast<float>(t.y));
  }
}
