#include "shapes/PolygonTessellator.h"

#include <cmath>
#include <cstdint>

namespace {
// Vertex ids travel through GLU as its per-vertex data pointer; id + 1 keeps
// them non-null, since a null result of the combine callback means failure.
void* toData(uint32_t id) { return reinterpret_cast<void*>(static_cast<uintptr_t>(id) + 1); }
uint32_t toId(void* data) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(data) - 1); }
PolygonTessellator& self(void* p) { return *static_cast<PolygonTessellator*>(p); }
}  // namespace

PolygonTessellator& PolygonTessellator::local() {
  thread_local PolygonTessellator tessellator;
  return tessellator;
}

PolygonTessellator::~PolygonTessellator() {
  if (m_tess) kgl->gluDeleteTess(m_tess);
}

bool PolygonTessellator::beginPolygon(GLenum windingRule) {
  if (!m_tess) {
    // Not kept when null (a recording table that does not forward gives
    // none), so a later call tries again.
    GLUtesselator* t = kgl->gluNewTess();
    if (!t) return false;
    kgl->gluTessCallback(t, GLU_TESS_BEGIN_DATA, reinterpret_cast<_GLUfuncptr>(&onBegin));
    kgl->gluTessCallback(t, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(&onVertex));
    kgl->gluTessCallback(t, GLU_TESS_END_DATA, reinterpret_cast<_GLUfuncptr>(&onEnd));
    kgl->gluTessCallback(t, GLU_TESS_COMBINE_DATA, reinterpret_cast<_GLUfuncptr>(&onCombine));
    kgl->gluTessCallback(t, GLU_TESS_ERROR_DATA, reinterpret_cast<_GLUfuncptr>(&onError));
    // Odd winding fills what a parity rule fills: holes nested in holes
    // come back filled, and crossings of a contour alternate.
    kgl->gluTessProperty(t, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    m_winding = GLU_TESS_WINDING_ODD;
    // Contours arrive in plane coordinates; a fixed normal saves GLU its
    // own estimate and makes every triangle counter-clockwise about +z.
    kgl->gluTessNormal(t, 0.0, 0.0, 1.0);
    m_tess = t;
  }
  if (windingRule != m_winding) {
    kgl->gluTessProperty(m_tess, GLU_TESS_WINDING_RULE, windingRule);
    m_winding = windingRule;
  }
  m_failed = false;
  m_coords.clear();
  m_ids.clear();
  m_stripEnds.clear();
  kgl->gluTessBeginPolygon(m_tess, this);
  return true;
}

void PolygonTessellator::beginContour() { kgl->gluTessBeginContour(m_tess); }

void PolygonTessellator::addVertex(double x, double y) {
  // GLU copies the coordinates at once, so a local array is enough.
  GLdouble c[3] = {x, y, 0.0};
  kgl->gluTessVertex(m_tess, c, toData(newVertex(x, y)));
}

void PolygonTessellator::endContour() { kgl->gluTessEndContour(m_tess); }

bool PolygonTessellator::endPolygon() {
  kgl->gluTessEndPolygon(m_tess);
  if (m_failed) {
    m_ids.clear();
    m_stripEnds.clear();
    return false;
  }
  return true;
}

uint32_t PolygonTessellator::newVertex(double x, double y) {
  m_coords.push_back(x);
  m_coords.push_back(y);
  return static_cast<uint32_t>(m_coords.size() / 2 - 1);
}

void PolygonTessellator::emitStrip(std::initializer_list<uint32_t> ids) {
  m_ids.insert(m_ids.end(), ids);
  m_stripEnds.push_back(m_ids.size());
}

// Collinear contour points make GLU emit triangles without area. They
// cover nothing, so they are left out: a flat polygon then yields no strips
// at all, and a plan with aligned rooms loses a quarter of its triangles.
// The test is relative (sine of the corner below 1e-12), so slivers thinner
// than any pixel count as flat whatever the polygon's size.
bool PolygonTessellator::flat(uint32_t a, uint32_t b, uint32_t c) const {
  const double ux = vertexX(b) - vertexX(a), uy = vertexY(b) - vertexY(a);
  const double vx = vertexX(c) - vertexX(a), vy = vertexY(c) - vertexY(a);
  return std::fabs(ux * vy - uy * vx) <= 1e-12 * (ux * ux + uy * uy + vx * vx + vy * vy);
}

// A GL strip draws its odd triangles with the first two vertices swapped to
// keep one turning sense. A run of kept triangles must therefore start on
// an even one; an odd first triangle goes out alone, in its drawn order.
void PolygonTessellator::emitStripRuns(const std::vector<uint32_t>& v) {
  const size_t tris = v.size() - 2;
  size_t k = 0;
  while (k < tris) {
    if (flat(v[k], v[k + 1], v[k + 2])) {
      ++k;
    } else if (k % 2) {
      emitStrip({v[k + 1], v[k], v[k + 2]});
      ++k;
    } else {
      size_t end = k;
      while (end + 1 < tris && !flat(v[end + 1], v[end + 2], v[end + 3])) ++end;
      m_ids.insert(m_ids.end(), v.begin() + k, v.begin() + end + 3);
      m_stripEnds.push_back(m_ids.size());
      k = end + 1;
    }
  }
}

// A fan c, r1, r2, ... is cut into strips r(i), r(i+1), c, r(i+2) of two
// triangles each: the strip's second triangle, drawn with its first two
// vertices swapped, is (c, r(i+1), r(i+2)) in the fan's own turning sense,
// so no degenerate joining triangles are needed.
void PolygonTessellator::emitFan(const std::vector<uint32_t>& v) {
  const uint32_t c = v[0];
  size_t i = 1;
  while (i + 1 < v.size()) {
    if (flat(c, v[i], v[i + 1])) {
      ++i;
    } else if (i + 2 < v.size() && !flat(c, v[i + 1], v[i + 2])) {
      emitStrip({v[i], v[i + 1], c, v[i + 2]});
      i += 2;
    } else {
      emitStrip({c, v[i], v[i + 1]});
      ++i;
    }
  }
}

// GLU hands over strips, fans and lists of lone triangles; all become
// strips here.
void PolygonTessellator::closePrimitive() {
  const std::vector<uint32_t>& v = m_primitiveIds;
  if (v.size() < 3) return;
  switch (m_primitive) {
    case GL_TRIANGLE_STRIP:
      emitStripRuns(v);
      break;
    case GL_TRIANGLE_FAN:
      emitFan(v);
      break;
    case GL_TRIANGLES:
      for (size_t i = 0; i + 2 < v.size(); i += 3)
        if (!flat(v[i], v[i + 1], v[i + 2])) emitStrip({v[i], v[i + 1], v[i + 2]});
      break;
    default:
      break;  // outlines only come with GLU_TESS_BOUNDARY_ONLY, never set here
  }
}

void GLAPIENTRY PolygonTessellator::onBegin(GLenum type, void* p) {
  self(p).m_primitive = type;
  self(p).m_primitiveIds.clear();
}

void GLAPIENTRY PolygonTessellator::onVertex(void* vertex, void* p) { self(p).m_primitiveIds.push_back(toId(vertex)); }

void GLAPIENTRY PolygonTessellator::onEnd(void* p) { self(p).closePrimitive(); }

// Where contours cross or touch, GLU needs a vertex of its own there; only
// its position matters to the strips.
void GLAPIENTRY PolygonTessellator::onCombine(GLdouble coords[3], void* data[4], GLfloat[4], void** out, void* p) {
  double x = coords[0], y = coords[1];
  self(p).refineCrossing(data, x, y);
  *out = toData(self(p).newVertex(x, y));
}

// GLU places a crossing by interpolating along the sweep, which is off by
// up to about 1e-8 of the edge length; the triangles' areas would be off as
// much. The two edges' own line intersection is exact to rounding. It is
// used only where it agrees with GLU's point, since nearly parallel edges
// make it ill-conditioned and GLU's choice then is the safer one.
void PolygonTessellator::refineCrossing(void* const data[4], double& x, double& y) const {
  for (int i = 0; i < 4; ++i)
    if (!data[i]) return;  // a merge of coincident vertices, not a crossing
  const uint32_t a = toId(data[0]), b = toId(data[1]), c = toId(data[2]), d = toId(data[3]);
  const double ex = vertexX(b) - vertexX(a), ey = vertexY(b) - vertexY(a);
  const double fx = vertexX(d) - vertexX(c), fy = vertexY(d) - vertexY(c);
  const double denom = ex * fy - ey * fx;
  if (denom == 0.0) return;
  const double gx = vertexX(c) - vertexX(a), gy = vertexY(c) - vertexY(a);
  const double t = (gx * fy - gy * fx) / denom;
  const double px = vertexX(a) + t * ex, py = vertexY(a) + t * ey;
  const double span = std::fabs(ex) + std::fabs(ey) + std::fabs(fx) + std::fabs(fy);
  if (!std::isfinite(px) || !std::isfinite(py) || std::fabs(px - x) + std::fabs(py - y) > 1e-6 * span) return;
  x = px;
  y = py;
}

void GLAPIENTRY PolygonTessellator::onError(GLenum, void* p) { self(p).m_failed = true; }
