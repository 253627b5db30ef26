// Hit tests of a render object: its visible shapes, the instanced ones
// under each instance matrix, as the object draws them.
#include "objects/RenderObjectPick.h"

#include <cmath>

#include "kxrender/CRenderObject.h"
#include "shapes/PickVolume.h"

namespace {

// The shapes drawn plainly start at `first`; those before it are drawn only
// under the instance matrices (and so not at all without one).
unsigned firstPlain(const CRenderObject& o) {
  const unsigned n = o.numShp();
  return o.getExaGeoShapNum() < n ? o.getExaGeoShapNum() : n;
}

// Calls fn(shapeIndex, shape, volume) for every drawn shape under each
// matrix it is drawn with; stops and answers true when fn does.
template <class Fn>
bool eachDrawn(const CRenderObject& o, const CRect& rect, const kxpick::ViewData& view, const CPickVolume& plain,
               Fn fn) {
  const std::vector<CRenderShape>& shapes = o.getShps();
  const unsigned first = firstPlain(o);
  if (first > 0) {
    for (const CSimpleMatrix* m : o.getSmpMat()) {
      if (!m) continue;
      const AcGeMatrix3d mat = m->GetAcgeMatrix();
      const CPickVolume v(rect, view, &mat);
      for (unsigned i = 0; i < first; ++i)
        if (shapes[i].getVisible() && fn(i, shapes[i], v)) return true;
    }
  }
  for (unsigned i = first; i < shapes.size(); ++i)
    if (shapes[i].getVisible() && fn(i, shapes[i], plain)) return true;
  return false;
}

// Whether some shape the object draws has geometry to select.
bool drawsGeometry(const CRenderObject& o) {
  const std::vector<CRenderShape>& shapes = o.getShps();
  bool instances = false;
  for (const CSimpleMatrix* m : o.getSmpMat()) instances = instances || m;
  for (unsigned i = instances ? 0 : firstPlain(o); i < shapes.size(); ++i)
    if (shapes[i].getVisible() && shapes[i].hasPickGeometry()) return true;
  return false;
}

// The object's box holds all it draws (instances included): wholly outside
// the volume, nothing crosses; wholly inside, everything with geometry is
// inside. Big selections are mostly settled here, without the shapes.
int byBox(const CRenderObject& o, const CPickVolume& v) {
  const int c = v.classifyBox(o.ptMin(), o.ptMax());
  if (c == 2) return drawsGeometry(o) ? 2 : 0;
  return c;
}

}  // namespace

bool kxpick::objectCrossesRect(const CRenderObject& obj, const CRect& rect, const ViewData& view,
                               const CPickVolume& plain, int mode) {
  if (!plain.valid()) return false;
  const int c = byBox(obj, plain);
  if (c != 1) return c == 2;
  return eachDrawn(obj, rect, view, plain, [mode](unsigned, const CRenderShape& s, const CPickVolume& v) {
    return s.intersectVolume(v, mode);
  });
}

bool kxpick::objectInRect(const CRenderObject& obj, const CRect& rect, const ViewData& view, const CPickVolume& plain) {
  if (!plain.valid()) return false;
  const int c = byBox(obj, plain);
  if (c != 1) return c == 2;
  bool any = false;
  // Shapes with nothing to select (a text without outlines) do not count.
  const bool outside = eachDrawn(obj, rect, view, plain, [&any](unsigned, const CRenderShape& s, const CPickVolume& v) {
    if (!s.hasPickGeometry()) return false;
    any = true;
    return !s.allInVolume(v);
  });
  return any && !outside;
}

bool CRenderObject::intersectRay(const AcGePoint3d& p1, const AcGePoint3d& p2, double tol, bool flag, double& distance,
                                 AcGePoint3d& hitPt, unsigned& shapeIndex) const {
  const AcGeVector3d dir = p2 - p1;
  const double len = dir.length();
  if (!(len > 0.0) || !std::isfinite(len) || !std::isfinite(tol)) return false;
  const AcGeVector3d unit = dir / len;
  const int mode = static_cast<int>(m_renderMode);
  bool found = false;
  double best = 0.0;
  auto consider = [&](unsigned i, const AcGePoint3d& hit) {
    const double d = (hit - p1).dotProduct(unit);
    if (!std::isfinite(d) || (found && !(d < best))) return;
    found = true;
    best = d;
    hitPt = hit;
    shapeIndex = i;
  };
  const unsigned first = firstPlain(*this);
  if (first > 0) {
    for (const CSimpleMatrix* m : m_smpMats) {
      if (!m) continue;
      const AcGeMatrix3d mat = m->GetAcgeMatrix();
      AcGeMatrix3d inv;
      if (!mat.inverse(inv)) continue;  // a flattening matrix draws nothing to hit
      const AcGePoint3d q1 = inv * p1, q2 = inv * p2;
      for (unsigned i = 0; i < first; ++i) {
        AcGePoint3d hit;
        if (m_shapes[i].getVisible() && m_shapes[i].intersectRay(q1, q2, hit, tol, mode, flag)) consider(i, mat * hit);
      }
    }
  }
  for (unsigned i = first; i < m_shapes.size(); ++i) {
    AcGePoint3d hit;
    if (m_shapes[i].getVisible() && m_shapes[i].intersectRay(p1, p2, hit, tol, mode, flag)) consider(i, hit);
  }
  if (found) distance = best;
  return found;
}

bool CRenderObject::intersectRect(const CRect& rect, const std::vector<std::vector<double>>& view, int mode) const {
  return kxpick::objectCrossesRect(*this, rect, view, CPickVolume(rect, view),
                                   mode < 0 ? static_cast<int>(m_renderMode) : mode);
}

bool CRenderObject::allInRect(const CRect& rect, const std::vector<std::vector<double>>& view) const {
  return kxpick::objectInRect(*this, rect, view, CPickVolume(rect, view));
}
