// The lean list writer: the pictures of the shape drawers with few state
// changes (see RetainedLean.h).
#include "objects/RetainedLean.h"

#include "kxrender/CSimpleMatrix.h"
#include "support/GLTable.h"

namespace kxretained {

namespace {
// The depth ranges of the object pass and of the line overlay.
constexpr double kPassNear = 0.1, kOverlayNear = 0.09995, kFar = 1.0;
constexpr float kFaceLineWidth = 1.2f;

bool fits(const std::vector<uint16_t>& strip, size_t vertexCount) {
  for (uint16_t i : strip)
    if (i >= vertexCount) return false;
  return true;
}
}  // namespace

bool canWrite(const CRenderShape& s) {
  return !s.getHit() && !s.getHighLight() && !s.isDotLine() && !s.hasTexture() &&
         s.getShpType() != CRenderShape::kText;
}

void LeanWriter::begin(Prim p) {
  if (m_prim == p) return;
  end();
  kgl->Begin(p == kTriangles ? GL_TRIANGLES : GL_LINES);
  m_prim = p;
}

void LeanWriter::end() {
  if (m_prim == kNone) return;
  kgl->End();
  m_prim = kNone;
}

void LeanWriter::depthOverlay(bool on) {
  if (m_overlay == on) return;
  end();
  kgl->DepthRange(on ? kOverlayNear : kPassNear, kFar);
  m_overlay = on;
}

void LeanWriter::fillState(float factor, float units) {
  depthOverlay(false);
  if (m_offsetKnown && factor == m_factor && units == m_units) return;
  end();
  kgl->PolygonOffset(factor, units);
  m_offsetKnown = true;
  m_factor = factor;
  m_units = units;
}

void LeanWriter::lineState(float width, bool overlay) {
  depthOverlay(overlay);
  if (m_widthKnown && width == m_width) return;
  end();
  kgl->LineWidth(width);
  m_widthKnown = true;
  m_width = width;
}

void LeanWriter::colour(const CColor& c) {
  m_rgba[0] = c.r;
  m_rgba[1] = c.g;
  m_rgba[2] = c.b;
  m_rgba[3] = m_alpha;
}

void LeanWriter::vertex(float x, float y, float z) {
  // Every vertex carries the full set, so the whole list keeps one vertex
  // layout and Mesa never splits it for a format change.
  kgl->Color4ub(m_rgba[0], m_rgba[1], m_rgba[2], m_rgba[3]);
  kgl->Normal3f(m_normal[0], m_normal[1], m_normal[2]);
  kgl->Vertex3f(x, y, z);
}

void LeanWriter::contourLines(const std::vector<AcGePoint3d>& c, float zLift) {
  begin(kLines);
  for (size_t i = 1; i < c.size(); ++i) {
    vertex(static_cast<float>(c[i - 1].x), static_cast<float>(c[i - 1].y), static_cast<float>(c[i - 1].z + zLift));
    vertex(static_cast<float>(c[i].x), static_cast<float>(c[i].y), static_cast<float>(c[i].z + zLift));
  }
}

void LeanWriter::polygonFill(const CRenderShape& s) {
  const std::vector<double>& v = s.getGlPts();
  const size_t count = v.size() / 3;
  fillState(s.getOffsetFactor(), s.getOffsetUnits());
  begin(kTriangles);
  auto put = [&](uint16_t i) {
    vertex(static_cast<float>(v[3 * i]), static_cast<float>(v[3 * i + 1]), static_cast<float>(v[3 * i + 2]));
  };
  for (const std::vector<uint16_t>& strip : s.getStrips()) {
    if (!fits(strip, count)) continue;
    // A strip's triangles in the order GL takes them: odd ones swap their
    // first two vertices to keep the winding.
    for (size_t k = 0; k + 2 < strip.size(); ++k) {
      const bool odd = k & 1;
      put(strip[odd ? k + 1 : k]);
      put(strip[odd ? k : k + 1]);
      put(strip[k + 2]);
    }
  }
}

void LeanWriter::face(const CRenderShape& s) {
  const std::vector<AcGePoint3d>& v = *s.getFaceVertexArray();
  const std::vector<int>& idx = *s.getFaceTriangleIndexArray();
  const std::vector<AcGeVector3d>& n = *s.getFaceNormalArray();
  const float z = s.getZOffset();
  colour(s.getClr());
  if (m_mode == 0) {
    lineState(kFaceLineWidth, false);
    for (const auto& line : s.getHitLine()) contourLines(line, 0.0f);
    return;
  }
  // Fills keep the offset render() set for the face.
  fillState(s.getOffsetFactor(), s.getOffsetUnits());
  begin(kTriangles);
  auto valid = [](int i, size_t size) { return i >= 0 && static_cast<size_t>(i) < size; };
  for (size_t t = 0; t + 3 <= idx.size(); t += 3) {
    bool ok = true;
    for (size_t k = 0; k < 3; ++k) ok = ok && valid(idx[t + k], v.size()) && valid(idx[t + k], n.size());
    if (!ok) continue;
    for (size_t k = 0; k < 3; ++k) {
      const size_t i = static_cast<size_t>(idx[t + k]);
      m_normal[0] = static_cast<float>(n[i].x);
      m_normal[1] = static_cast<float>(n[i].y);
      m_normal[2] = static_cast<float>(n[i].z);
      vertex(static_cast<float>(v[i].x), static_cast<float>(v[i].y), static_cast<float>(v[i].z + z));
    }
  }
  if (!s.getShowBorder()) return;
  // The border keeps the last triangle's normal, as the face's own list does.
  colour(s.getBorderColor());
  lineState(s.getBorderWidth(), true);
  for (const auto& line : s.getHitLine()) contourLines(line, z);
}

void LeanWriter::shape(const CRenderShape& s, const double* viewScale) {
  const CRenderShape::ShapeType type = s.getShpType();
  if (type != CRenderShape::kPline && type != CRenderShape::kPgon && type != CRenderShape::kFace) return;
  if (s.getPts().empty() && type != CRenderShape::kFace) return;
  const AcGeVector3d& ucs = s.getUcs();
  m_normal[0] = static_cast<float>(ucs.x);
  m_normal[1] = static_cast<float>(ucs.y);
  m_normal[2] = static_cast<float>(ucs.z);
  if (type == CRenderShape::kFace) {
    if (s.getFaceVertexArray() && s.getFaceTriangleIndexArray() && s.getFaceNormalArray()) face(s);
    return;
  }
  const bool shaded = m_mode == 2 || m_mode == 4;
  if (m_mode != 0 && !shaded) return;
  const float width = s.lineWidth(viewScale);
  if (m_mode == 0 || type == CRenderShape::kPline) {
    // Wire frame draws every contour; a shaded polyline only its points,
    // lifted over the faces.
    colour(s.getClr());
    lineState(width, m_mode != 0);
    contourLines(s.getPts(), 0.0f);
    if (m_mode == 0)
      for (const auto& hole : s.getHoles()) contourLines(hole, 0.0f);
    return;
  }
  if (s.getGlPts().empty()) return;
  colour(s.getClr());
  polygonFill(s);
  if (!s.getShowBorder()) return;
  colour(s.getBorderColor());
  lineState(width, false);
  contourLines(s.getPts(), 0.0f);
  for (const auto& hole : s.getHoles()) contourLines(hole, 0.0f);
}

void LeanWriter::pushMatrix(const CSimpleMatrix& m) {
  end();
  kgl->PushMatrix();
  m.MultOpenGLMatrix();
}

void LeanWriter::popMatrix() {
  end();
  kgl->PopMatrix();
}

void LeanWriter::finish() {
  end();
  depthOverlay(false);
}

}  // namespace kxretained
