// Point and rectangle picking, and the hit and highlight flags they feed.
#include <algorithm>
#include <cmath>

#include "kxrender/CSceneMgr.h"
#include "objects/RenderObjectPick.h"
#include "shapes/PickVolume.h"

namespace {

struct Hit {
  double distance;
  unsigned obj;
  unsigned shape;
  CRenderShape::ShapeType kind;
};

bool kept(CSceneMgr::PickType type, CRenderShape::ShapeType kind) {
  if (type == 1) return kind == CRenderShape::kPline;
  if (type == 2) return kind == CRenderShape::kPgon || kind == CRenderShape::kFace;
  return true;
}

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

}  // namespace

bool CSceneMgr::pick(CPoint const& pt, unsigned int& objId, unsigned int& shapeIndex, PickType type, int* extra,
                     bool flag) {
  if (m_objSetMgr.numObjs() == 0) return false;
  if (pt.x < 0 || pt.y < 0 || pt.x >= m_viewport[2] || pt.y >= m_viewport[3]) return false;
  AcGePoint3d nearPt, farPt;
  getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  if (!finite(nearPt) || !finite(farPt)) return false;
  const double tol = getPickPrecision();
  // A negative aperture would turn the candidate rectangle round into a
  // window selection: it counts as none.
  const int half = std::max(0, m_pickPixelPrecision) / 2;
  std::vector<unsigned int> ids;
  if (!pick(CPoint(pt.x + half + 1, pt.y + half + 1), CPoint(pt.x - half, pt.y - half), ids)) return false;

  std::vector<Hit> hits;
  for (size_t i = ids.size(); i-- > 0;) {
    const CRenderObject* obj = m_objSetMgr.getObj(ids[i]);
    if (!obj) continue;
    double distance = 0.0;
    AcGePoint3d at;
    unsigned shape = 0;
    if (!obj->intersectRay(nearPt, farPt, tol, flag, distance, at, shape)) continue;
    // After every hit at the same distance: the one met first stays first.
    const auto pos =
        std::upper_bound(hits.begin(), hits.end(), distance, [](double d, const Hit& h) { return d < h.distance; });
    hits.insert(pos, Hit{distance, ids[i], shape, obj->getShape(shape).getShpType()});
  }
  hits.erase(std::remove_if(hits.begin(), hits.end(), [type](const Hit& h) { return !kept(type, h.kind); }),
             hits.end());
  if (hits.empty()) return false;
  objId = hits.front().obj;
  shapeIndex = hits.front().shape;
  if (extra) *extra = static_cast<int>(hits.size());
  return true;
}

bool CSceneMgr::pick(CPoint const& p1, CPoint const& p2, std::vector<unsigned int>& ids) {
  if (m_objSetMgr.numObjs() == 0) return false;
  const bool window = p1.x < p2.x;
  CRect rect(std::min(p1.x, p2.x), std::min(p1.y, p2.y), std::max(p1.x, p2.x), std::max(p1.y, p2.y));
  if (rect.left == rect.right || rect.top == rect.bottom) return false;
  // Only what the view shows can be selected.
  rect.left = std::max<LONG>(rect.left, 0);
  rect.top = std::max<LONG>(rect.top, 0);
  rect.right = std::min<LONG>(rect.right, m_viewport[2]);
  rect.bottom = std::min<LONG>(rect.bottom, m_viewport[3]);
  if (rect.left >= rect.right || rect.top >= rect.bottom) return false;

  const CPickVolume::ViewData view = CPickVolume::makeViewData(m_modelViewMatrix, m_projMatrix, m_viewport);
  const CPickVolume volume(rect, view);
  if (!volume.valid()) return false;
  const std::vector<std::vector<double>> planes = volume.planes();
  std::vector<CRenderObject*> candidates;
  m_objSetMgr.getObjsInFrustum(candidates, &planes);

  std::vector<unsigned int> found;
  found.reserve(candidates.size());
  for (const CRenderObject* obj : candidates) {
    if (!obj || !obj->isVisible()) continue;
    const bool in = window ? kxpick::objectInRect(*obj, rect, view, volume)
                           : kxpick::objectCrossesRect(*obj, rect, view, volume, obj->getRenderMode());
    if (in) found.push_back(obj->getId());
  }
  if (found.empty()) return false;
  std::sort(found.begin(), found.end());
  ids.swap(found);
  return true;
}

void CSceneMgr::setHit(unsigned int objId, unsigned int shapeIndex, bool on) {
  CRenderObject* obj = m_objSetMgr.getObj(objId);
  if (obj && shapeIndex < obj->numShp()) obj->getShps()[shapeIndex].setHit(on);
}

void CSceneMgr::setHighLight(unsigned int objId, unsigned int shapeIndex, bool on) {
  CRenderObject* obj = m_objSetMgr.getObj(objId);
  if (obj && shapeIndex < obj->numShp()) obj->getShps()[shapeIndex].setHighLight(on);
}
