// Render object: shapes, box and sphere, per-shape state, levels of detail.
#include <algorithm>
#include <cmath>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"

namespace {

bool finiteBox(const CRenderShape& s) {
  AcGePoint3d lo, hi;
  s.getBox(lo, hi);
  return std::isfinite(lo.x) && std::isfinite(lo.y) && std::isfinite(lo.z) && std::isfinite(hi.x) &&
         std::isfinite(hi.y) && std::isfinite(hi.z);
}

// Whether a shape has geometry to measure: an unfilled or empty shape keeps
// its box at the origin, which must not drag the object's box there.
bool hasExtent(const CRenderShape& s) {
  switch (s.getShpType()) {
    case CRenderShape::kText:
      return s.getTextInfo() != nullptr;
    case CRenderShape::kFace:
      return (s.getFaceVertexArray() && !s.getFaceVertexArray()->empty()) || !s.getPts().empty();
    default:
      return !s.getPts().empty();
  }
}

}  // namespace

CRenderObject::CRenderObject(const CRenderObject& o) { copyFrom(o); }

CRenderObject& CRenderObject::operator=(const CRenderObject& o) {
  if (this != &o) copyFrom(o);
  return *this;
}

void CRenderObject::copyFrom(const CRenderObject& o) {
  // Shapes replaced or dropped by the assignment would take their compiled
  // lists with them: hand those to the scene first.
  releaseAllShapeLists();
  releaseShadowVolume();
  m_shapes = o.m_shapes;
  // An object in a set keeps its place there; a fresh copy takes the source's.
  if (!m_inSet) {
    m_id = o.m_id;
    m_objSet = o.m_objSet;
  }
  m_externId = o.m_externId;
  m_renderMode = o.m_renderMode;
  m_ptMin = o.m_ptMin;
  m_ptMax = o.m_ptMax;
  m_ptCenter = o.m_ptCenter;
  m_radius = o.m_radius;
  copySanpCurves(o);
  if (m_extra || o.m_extra) {
    // The curves are the copies just made; everything else is plain.
    Extra& e = extra();
    const Extra& src = o.extraOrNone();
    e.snapPoints = src.snapPoints;
    e.snapPointsExa = src.snapPointsExa;
    e.snapExaCenter = src.snapExaCenter;
    e.snapExaRadius = src.snapExaRadius;
    e.lodShps = src.lodShps;
    e.lodExaShapeNum = src.lodExaShapeNum;
    e.lodUnitsPerPixel = src.lodUnitsPerPixel;
    e.maxUnitsPerPixel = src.maxUnitsPerPixel;
    e.hasMaxUnitsPerPixel = src.hasMaxUnitsPerPixel;
    e.grips = src.grips;
  }
  snapChanged();
  m_faceSnap = o.m_faceSnap;
  m_xdata = o.m_xdata;
  m_exaGeoShapNum = o.m_exaGeoShapNum;
  clearSmpMat();
  for (const CSimpleMatrix* m : o.m_smpMats) m_smpMats.push_back(m ? new CSimpleMatrix(*m) : nullptr);
  m_visible = o.m_visible;
  m_color = o.m_color;
  m_generateShadow = o.m_generateShadow;
  m_trackerXor = o.m_trackerXor;
  m_renderedFlag1 = o.m_renderedFlag1;
  m_renderedFlag2 = o.m_renderedFlag2;
}

CRenderObject::~CRenderObject() {
  releaseAllShapeLists();
  releaseShadowVolume();
  clearSnapCurves();
  clearSmpMat();
}

void CRenderObject::releaseShapeLists(std::vector<CRenderShape>::iterator first,
                                      std::vector<CRenderShape>::iterator last) {
  // The context may not be current here: hand the lists to the scene, which
  // deletes them at the start of its next frame.
  CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
  for (; first != last; ++first) {
    if (scene && first->getFaceDisplayList()) scene->addRemovedDispList(first->getFaceDisplayList());
    first->reValueDispList();
  }
}

void CRenderObject::releaseAllShapeLists() {
  releaseRetainedList();
  releaseShapeLists(m_shapes.begin(), m_shapes.end());
  if (m_extra)
    for (std::vector<CRenderShape>& level : m_extra->lodShps) releaseShapeLists(level.begin(), level.end());
}

CRenderObject::Extra& CRenderObject::extra() {
  if (!m_extra) m_extra.reset(new Extra);
  return *m_extra;
}

const CRenderObject::Extra& CRenderObject::noExtra() {
  static const Extra none;
  return none;
}

void CRenderObject::clearShape() {
  m_shadow.stale = true;
  releaseShapeLists(m_shapes.begin(), m_shapes.end());
  m_shapes.clear();
}

void CRenderObject::resize(unsigned n) {
  m_shadow.stale = true;
  if (n < m_shapes.size()) releaseShapeLists(m_shapes.begin() + n, m_shapes.end());
  m_shapes.resize(n);
}

// Stands in for an element of an empty list: callers may read or write it,
// and it is reset before each use so nothing leaks between them.
static CRenderShape& noShape() {
  static CRenderShape none;
  none = CRenderShape();
  return none;
}

CRenderShape& CRenderObject::getShape(unsigned i) {
  if (m_shapes.empty()) return noShape();
  return m_shapes[i < m_shapes.size() ? i : m_shapes.size() - 1];
}

const CRenderShape& CRenderObject::getShape(unsigned i) const {
  if (m_shapes.empty()) return noShape();
  return m_shapes[i < m_shapes.size() ? i : m_shapes.size() - 1];
}

void CRenderObject::endAddShape() {
  while (!m_shapes.empty() && m_shapes.back().getShpType() >= 101) {
    releaseShapeLists(m_shapes.end() - 1, m_shapes.end());
    m_shapes.pop_back();
  }
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    if (!finiteBox(m_shapes[i]) || m_shapes[i].getShpType() > 100) {
      const auto at = m_shapes.begin() + static_cast<std::ptrdiff_t>(i);
      releaseShapeLists(at, at + 1);
      m_shapes.erase(at);
      --i;
    }
  }
  // Objects stay for the life of the model: trim the spare capacity, if
  // any (hosts that reserved exactly pay no copy). Shapes move, so compiled
  // lists go with them.
  if (m_shapes.capacity() > m_shapes.size()) {
    std::vector<CRenderShape> fitted;
    fitted.reserve(m_shapes.size());
    for (CRenderShape& s : m_shapes) fitted.push_back(std::move(s));
    m_shapes.swap(fitted);
  }
  calBox();
  if (m_exaGeoShapNum > m_shapes.size()) m_exaGeoShapNum = static_cast<unsigned>(m_shapes.size());
  if (m_shapes.empty()) return;
  bool same = true;
  for (const CRenderShape& s : m_shapes) same = same && s.getClr() == m_shapes.front().getClr();
  if (same) {
    m_color = m_shapes.front().getClr();
    return;
  }
  updateSnapExaSphere();
}

void CRenderObject::calBox() {
  // Instanced shapes are seen only through their matrices; measuring them
  // there keeps culling right for objects drawn by instancing.
  m_shadow.stale = true;  // shapes were set or moved
  AcGeBoundBlock3d box;
  std::vector<AcGeMatrix3d> mats;
  for (const CSimpleMatrix* m : m_smpMats)
    if (m) mats.push_back(m->GetAcgeMatrix());
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    const CRenderShape& s = m_shapes[i];
    if (!hasExtent(s) || !finiteBox(s)) continue;
    AcGePoint3d a, b;
    s.getBox(a, b);
    if (i < m_exaGeoShapNum && !mats.empty()) {
      for (const AcGeMatrix3d& m : mats) box.extend(AcGeBoundBlock3d(a, b).transformBy(m));
    } else {
      box.extend(a).extend(b);
    }
  }
  AcGePoint3d lo, hi;
  if (!box.isEmpty()) box.getMinMaxPoints(lo, hi);
  m_ptMin = lo;
  m_ptMax = hi;
  m_ptCenter = lo + (hi - lo) * 0.5;
  m_radius = static_cast<float>(m_ptCenter.distanceTo(lo));
}

size_t CRenderObject::numTriangles() const {
  size_t n = 0;
  for (const CRenderShape& s : m_shapes) n += s.numTriangles();
  return n;
}

bool CRenderObject::getShapeHit(const unsigned& i) const { return !m_shapes.empty() && getShape(i).getHit(); }

bool CRenderObject::getShapeHighLight(const unsigned& i) const {
  return !m_shapes.empty() && getShape(i).getHighLight();
}

CColor CRenderObject::getShapeColor(const unsigned& i) const {
  return m_shapes.empty() ? CColor() : getShape(i).getClr();
}

CColor CRenderObject::getShapeBorderColor(const unsigned& i) const {
  return m_shapes.empty() ? CColor() : getShape(i).getBorderColor();
}

void CRenderObject::setShapeColor(unsigned i, const CColor& c) {
  if (!m_shapes.empty()) getShape(i).setClr(c);
}

void CRenderObject::hit(bool b) {
  for (CRenderShape& s : m_shapes) s.setHit(b);
}

void CRenderObject::highLight(bool b) {
  for (CRenderShape& s : m_shapes) s.setHighLight(b);
}

namespace {
bool tagged(const CRenderShape& s, const std::map<CString, CString>& tags) {
  for (const auto& kv : tags)
    if (s.is(kv.first, kv.second)) return true;
  return false;
}
}  // namespace

void CRenderObject::hit(const std::map<CString, CString>& tags) {
  for (CRenderShape& s : m_shapes)
    if (tagged(s, tags)) s.setHit(true);
}

void CRenderObject::highLight(const std::map<CString, CString>& tags) {
  for (CRenderShape& s : m_shapes)
    if (tagged(s, tags)) s.setHighLight(true);
}

void CRenderObject::setLodLevel(unsigned n) {
  if (!m_extra && n == 0) return;
  Extra& e = extra();
  for (size_t level = n; level < e.lodShps.size(); ++level)
    releaseShapeLists(e.lodShps[level].begin(), e.lodShps[level].end());
  e.lodShps.resize(n);
  e.lodExaShapeNum.resize(n, 0);
  e.lodUnitsPerPixel.resize(n, 0.0f);
}

std::vector<CRenderShape>& CRenderObject::getLodShpss(unsigned level) {
  static std::vector<CRenderShape> none;
  if (!m_extra || m_extra->lodShps.empty()) {
    none.clear();
    return none;
  }
  std::vector<std::vector<CRenderShape>>& all = m_extra->lodShps;
  return all[level < all.size() ? level : all.size() - 1];
}

unsigned& CRenderObject::getLodExaShapeNum(unsigned level) {
  static unsigned none;
  none = 0;
  if (!m_extra || m_extra->lodExaShapeNum.empty()) return none;
  std::vector<unsigned>& all = m_extra->lodExaShapeNum;
  return all[std::min<size_t>(level, all.size() - 1)];
}

float& CRenderObject::getLodUnitsPerPixel(unsigned level) {
  static float none;
  none = 0.0f;
  if (!m_extra || m_extra->lodUnitsPerPixel.empty()) return none;
  std::vector<float>& all = m_extra->lodUnitsPerPixel;
  return all[std::min<size_t>(level, all.size() - 1)];
}

double CRenderObject::distanceToCamera() const {
  const CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
  if (!scene) return 0.0;
  const AcGeVector3d eye = scene->camera()->GetVLocation();
  AcGeVector3d dir = scene->camera()->GetVForward();
  const double len = dir.length();
  if (!(len > 0.0)) return 0.0;
  dir /= len;
  // Signed distance along the line of sight: negative behind the eye.
  return (m_ptCenter.asVector() - eye).dotProduct(dir);
}
