// Shadow volume geometry: welding, silhouette edges, caps and extrusion.
#include "objects/ShadowVolume.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"

namespace {

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Beyond this a coordinate cannot be welded on the precision grid.
constexpr double kMaxCoordinate = 1e12;

// Point lights scale the casting triangles away from themselves by at most
// this much: a light grazing an object would otherwise send its far ends
// out of float range.
constexpr double kMaxScale = 1e6;

void put(std::vector<float>& out, const AcGePoint3d& p) {
  out.push_back(static_cast<float>(p.x));
  out.push_back(static_cast<float>(p.y));
  out.push_back(static_cast<float>(p.z));
}

uint64_t edgeKey(unsigned a, unsigned b) { return (uint64_t(a) << 32) | b; }

}  // namespace

ShadowLight ShadowLight::fromFloats(const float* p) {
  ShadowLight l;
  if (!p) return l;
  for (int i = 0; i < 4; ++i)
    if (!std::isfinite(p[i])) return l;
  if (p[3] == 0.0f) {
    // Shining from (x, y, z): the light travels the other way.
    const AcGeVector3d from(p[0], p[1], p[2]);
    const double len = from.length();
    if (!(len > 0.0) || !std::isfinite(len)) return l;
    l.travel = from / -len;
    l.directional = true;
  } else {
    l.position = AcGePoint3d(p[0] / double(p[3]), p[1] / double(p[3]), p[2] / double(p[3]));
    if (!finite(l.position)) return l;
    l.directional = false;
  }
  l.valid = true;
  return l;
}

size_t ShadowVolumeBuilder::KeyHash::operator()(const Key& k) const {
  return std::hash<int64_t>()(k.x * 73856093 ^ k.y * 19349663 ^ k.z * 83492791);
}

unsigned ShadowVolumeBuilder::weld(const AcGePoint3d& p) {
  // Shapes of one object meet at corners that each shape computed through
  // its own plane: equal to the system precision, rarely to the bit.
  const double q = CRenderSysUtils::PRECISION;
  const Key k{std::llround(p.x / q), std::llround(p.y / q), std::llround(p.z / q)};
  const auto found = m_index.emplace(k, static_cast<unsigned>(m_points.size()));
  if (found.second) m_points.push_back(p);
  return found.first->second;
}

void ShadowVolumeBuilder::addTriangle(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
  for (const AcGePoint3d* p : {&a, &b, &c})
    if (!finite(*p) || std::fabs(p->x) > kMaxCoordinate || std::fabs(p->y) > kMaxCoordinate ||
        std::fabs(p->z) > kMaxCoordinate)
      return;
  const unsigned ia = weld(a), ib = weld(b), ic = weld(c);
  if (ia == ib || ib == ic || ic == ia) return;  // no area at the welding precision
  m_tris.insert(m_tris.end(), {ia, ib, ic});
}

bool ShadowVolumeBuilder::build(const ShadowLight& light, const AcGePoint3d& lo, const AcGePoint3d& hi,
                                std::vector<float>& out) const {
  out.clear();
  if (!light.valid || m_tris.empty() || !finite(lo) || !finite(hi)) return false;

  AcGePoint3d objLo = m_points.front(), objHi = m_points.front();
  for (const AcGePoint3d& p : m_points) {
    objLo.set(std::min(objLo.x, p.x), std::min(objLo.y, p.y), std::min(objLo.z, p.z));
    objHi.set(std::max(objHi.x, p.x), std::max(objHi.y, p.y), std::max(objHi.z, p.z));
  }
  // The region to cover: receivers, and the caster itself.
  AcGePoint3d boxLo(std::min(lo.x, objLo.x), std::min(lo.y, objLo.y), std::min(lo.z, objLo.z));
  AcGePoint3d boxHi(std::max(hi.x, objHi.x), std::max(hi.y, objHi.y), std::max(hi.z, objHi.z));
  const double margin = 0.01 * boxLo.distanceTo(boxHi) + 1e-3;

  // Extrusion: every far point must lie past the region, strictly, so that
  // no far cap lies on a receiver at the region's border.
  std::vector<AcGePoint3d> far(m_points.size());
  if (light.directional) {
    // The exit distance along the light is the least over the axes of a
    // linear function of the point; its largest value over the triangles
    // is bounded by that least over the axes of each function's largest
    // value at a vertex.
    const double d[3] = {light.travel.x, light.travel.y, light.travel.z};
    double t = INFINITY;
    for (int i = 0; i < 3; ++i) {
      if (std::fabs(d[i]) < 1e-12) continue;
      const double bound = d[i] > 0 ? (&boxHi.x)[i] : (&boxLo.x)[i];
      double most = 0.0;
      for (const AcGePoint3d& p : m_points) most = std::max(most, (bound - (&p.x)[i]) / d[i]);
      t = std::min(t, most);
    }
    t += margin;
    for (size_t i = 0; i < m_points.size(); ++i) far[i] = m_points[i] + light.travel * t;
  } else {
    const AcGePoint3d& l = light.position;
    const double eps = CRenderSysUtils::PRECISION;
    if (l.x >= objLo.x - eps && l.x <= objHi.x + eps && l.y >= objLo.y - eps && l.y <= objHi.y + eps &&
        l.z >= objLo.z - eps && l.z <= objHi.z + eps)
      return false;  // a light inside the object: no volume can bound its shadow
    // Nearest any casting point can be to the light, farthest a receiver.
    const AcGePoint3d nearest(std::clamp(l.x, objLo.x, objHi.x), std::clamp(l.y, objLo.y, objHi.y),
                              std::clamp(l.z, objLo.z, objHi.z));
    double reach = 0.0;
    for (int c = 0; c < 8; ++c)
      reach = std::max(reach, l.distanceTo(AcGePoint3d(c & 1 ? boxHi.x : boxLo.x, c & 2 ? boxHi.y : boxLo.y,
                                                       c & 4 ? boxHi.z : boxLo.z)));
    const double s = std::min(kMaxScale, std::max(1.0, (reach + margin) / l.distanceTo(nearest)));
    for (size_t i = 0; i < m_points.size(); ++i) far[i] = l + (m_points[i] - l) * s;
  }

  // Closed: every directed edge is matched by its reverse.
  std::unordered_map<uint64_t, int> directed;
  directed.reserve(m_tris.size());
  for (size_t i = 0; i < m_tris.size(); i += 3)
    for (int k = 0; k < 3; ++k) ++directed[edgeKey(m_tris[i + k], m_tris[i + (k + 1) % 3])];
  bool closed = true;
  for (const auto& e : directed) {
    const auto rev = directed.find(edgeKey(unsigned(e.first), unsigned(e.first >> 32)));
    if (rev == directed.end() || rev->second != e.second) {
      closed = false;
      break;
    }
  }

  // Caps, with each triangle turned to the light; the net use of each
  // undirected edge (positive: from the lower id) leaves the silhouette.
  std::vector<unsigned> caps;
  caps.reserve(m_tris.size());
  std::unordered_map<uint64_t, int> net;
  net.reserve(m_tris.size());
  for (size_t i = 0; i < m_tris.size(); i += 3) {
    unsigned a = m_tris[i], b = m_tris[i + 1], c = m_tris[i + 2];
    const AcGePoint3d &pa = m_points[a], &pb = m_points[b], &pc = m_points[c];
    const AcGeVector3d n = (pb - pa).crossProduct(pc - pa);
    const AcGeVector3d toward = light.directional ? light.travel : (pa - light.position);
    const double facing = n.dotProduct(toward);
    // Seen edge-on from the light: it casts no area.
    if (!(std::fabs(facing) > 1e-9 * n.length() * toward.length())) continue;
    if (facing > 0.0) {
      if (closed) continue;
      std::swap(b, c);
    }
    caps.insert(caps.end(), {a, b, c});
    for (const auto& e : {std::make_pair(a, b), std::make_pair(b, c), std::make_pair(c, a)}) {
      if (e.first < e.second)
        ++net[edgeKey(e.first, e.second)];
      else
        --net[edgeKey(e.second, e.first)];
    }
  }
  if (caps.empty()) return false;

  out.reserve((caps.size() * 2 + net.size() * 6) * 3);
  for (size_t i = 0; i < caps.size(); i += 3) {
    const unsigned a = caps[i], b = caps[i + 1], c = caps[i + 2];
    put(out, m_points[a]);
    put(out, m_points[b]);
    put(out, m_points[c]);
    put(out, far[c]);
    put(out, far[b]);
    put(out, far[a]);
  }
  for (const auto& e : net) {
    unsigned a = unsigned(e.first >> 32), b = unsigned(e.first);
    if (e.second < 0) std::swap(a, b);
    // A side on the edge a -> b of a cap, facing away from the cap.
    for (int k = std::abs(e.second); k > 0; --k) {
      put(out, m_points[b]);
      put(out, m_points[a]);
      put(out, far[a]);
      put(out, m_points[b]);
      put(out, far[a]);
      put(out, far[b]);
    }
  }
  return true;
}

// Lines and text have no area; inner roof faces are tagged not to cast.
bool castsShadow(const CRenderShape& s) {
  if (!s.getVisible()) return false;
  if (s.getShpType() != CRenderShape::kPgon && s.getShpType() != CRenderShape::kFace) return false;
  return !s.is("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6", "\xE5\x86\x85\xE9\x9D\xA2");  // 坡屋顶 = 内面
}

static void addPolygon(ShadowVolumeBuilder& b, const CRenderShape& s, const AcGeMatrix3d* m) {
  const std::vector<double>& v = s.getGlPts();
  const size_t count = v.size() / 3;
  auto raw = [&](uint16_t i) { return AcGePoint3d(v[3 * i], v[3 * i + 1], v[3 * i + 2]); };
  for (const std::vector<uint16_t>& strip : s.getStrips()) {
    for (size_t k = 0; k + 2 < strip.size(); ++k) {
      uint16_t i0 = strip[k], i1 = strip[k + 1], i2 = strip[k + 2];
      if (i0 >= count || i1 >= count || i2 >= count) continue;
      // Counter-clockwise about the normal, whatever the strip's winding,
      // so that the faces of one solid meet in opposite edges.
      if ((raw(i1) - raw(i0)).crossProduct(raw(i2) - raw(i0)).dotProduct(s.getUcs()) < 0.0) std::swap(i1, i2);
      if (m)
        b.addTriangle(*m * raw(i0), *m * raw(i1), *m * raw(i2));
      else
        b.addTriangle(raw(i0), raw(i1), raw(i2));
    }
  }
}

static void addFace(ShadowVolumeBuilder& b, const CRenderShape& s, const AcGeMatrix3d* m) {
  const std::vector<AcGePoint3d>* v = s.getFaceVertexArray();
  const std::vector<int>* idx = s.getFaceTriangleIndexArray();
  if (!v || !idx) return;
  const int count = static_cast<int>(v->size());
  const double lift = s.getZOffset();  // faces are drawn lifted by it
  for (size_t k = 0; k + 2 < idx->size(); k += 3) {
    AcGePoint3d p[3];
    bool ok = true;
    for (int j = 0; j < 3; ++j) {
      const int i = (*idx)[k + j];
      ok = ok && i >= 0 && i < count;
      if (!ok) break;
      p[j] = (*v)[size_t(i)] + AcGeVector3d(0, 0, lift);
      if (m) p[j] = *m * p[j];
    }
    if (ok) b.addTriangle(p[0], p[1], p[2]);
  }
}

void addCasterTriangles(ShadowVolumeBuilder& b, const CRenderShape& s, const AcGeMatrix3d* m) {
  if (s.getShpType() == CRenderShape::kPgon)
    addPolygon(b, s, m);
  else
    addFace(b, s, m);
}
