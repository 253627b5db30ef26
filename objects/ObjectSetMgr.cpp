// Object set: ids, ownership, static objects, the set's box, assist points
// and the spatial index.
#include "kxrender/CObjectSetMgr.h"

#include <cmath>
#include <exception>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/CSceneMgr.h"
#include "objects/BjSnap.h"
#include "objects/ObjectSearchTree.h"
#include "support/GLTable.h"

namespace {

// Thrown (as a heap pointer the catcher frees) when every id is taken.
class CObjectIdExhausted : public std::exception {
 public:
  const char* what() const noexcept override { return "渲染对象ID使用超出极限"; }
};

bool boxTooSmall(const AcGePoint3d& lo, const AcGePoint3d& hi) { return !((hi - lo).length() >= 1e-8); }

}  // namespace

CObjectSetMgr::CObjectSetMgr() : m_searchTree(new CObjectSearchTree), m_snapIndex(new CBjSnap) {}

CObjectSetMgr::CObjectSetMgr(const CObjectSetMgr& o) : m_searchTree(new CObjectSearchTree), m_snapIndex(new CBjSnap) {
  *this = o;
}

CObjectSetMgr& CObjectSetMgr::operator=(const CObjectSetMgr& o) {
  if (this == &o) return *this;
  clear();
  // Every object belongs to exactly one set, which frees it: a copy gets its
  // own copies of the objects, under the same ids, so either set can delete
  // or change objects without touching the other.
  for (const auto& kv : o.m_objects) {
    if (!kv.second) continue;
    CRenderObject* copy = new CRenderObject(*kv.second);
    copy->setId(kv.first);
    copy->setObjSet(this);
    copy->m_inSet = true;
    m_objects.emplace_hint(m_objects.end(), kv.first, copy);
  }
  for (const CStaticObject* so : o.m_staticObjects) {
    if (!so) continue;
    CStaticObject* copy = new CStaticObject(*so);
    copy->setVisible(so->getVisible());
    copy->setObjSet(this);
    copy->m_inSet = true;
    m_staticObjects.push_back(copy);
  }
  m_nextId = o.m_nextId;
  m_boxMin = o.m_boxMin;
  m_boxMax = o.m_boxMax;
  m_renderMode = o.m_renderMode;
  m_scene = o.m_scene;
  m_assistPts = o.m_assistPts;
  m_zNear = o.m_zNear;
  m_zFar = o.m_zFar;
  createSearchTree();
  m_snapIndex->markAll();
  return *this;
}

CObjectSetMgr::~CObjectSetMgr() { clear(); }

void CObjectSetMgr::clear() {
  releaseGroupDrawings();
  m_searchTree->clear();
  m_snapIndex->clear();
  for (auto& kv : m_objects) delete kv.second;
  for (CStaticObject* s : m_staticObjects) delete s;
  m_objects.clear();
  m_staticObjects.clear();
  m_outlineShapes.clear();
  m_frameObjects.clear();
}

unsigned CObjectSetMgr::addObject(CRenderObject* obj) {
  // An object already in a set (this one or another) is refused: two owners
  // would free it twice.
  if (!obj || obj->m_inSet) return 0;
  uint32_t attempts = 1;
  for (;;) {
    auto it = m_objects.lower_bound(m_nextId);
    if (it == m_objects.end() || it->first != m_nextId) {
      m_objects.emplace_hint(it, m_nextId, obj);
      obj->m_inSet = true;
      obj->setObjSet(this);
      obj->setId(m_nextId);
      m_searchTree->insert(obj);
      m_snapIndex->markDirty(m_nextId);
      return m_nextId++;
    }
    // After a wrap the first id tried is 2: the counter is set to 1 and
    // then stepped like any taken id.
    if (m_nextId == 0xFFFFFFFFu) m_nextId = 1;
    ++attempts;
    if (attempts >= m_idAttemptLimit) throw static_cast<std::exception*>(new CObjectIdExhausted);
    ++m_nextId;
  }
}

void CObjectSetMgr::addObject(const std::vector<CRenderObject*>& objs, std::vector<unsigned>& ids) {
  ids.clear();
  ids.resize(objs.size());
  for (size_t i = 0; i < objs.size(); ++i) {
    if (!objs[i]) {
      // A null entry shortens the list, so later ids no longer line up with
      // their objects; hosts rely on the count, not the positions.
      if (!ids.empty()) ids.pop_back();
      continue;
    }
    const unsigned id = addObject(objs[i]);
    if (i < ids.size()) ids[i] = id;
  }
  if (!objs.empty()) calBox();
}

void CObjectSetMgr::delObject(unsigned id) {
  auto it = m_objects.find(id);
  if (it == m_objects.end() || !it->second) return;
  m_searchTree->remove(it->second);
  delete it->second;
  m_objects.erase(it);
  m_snapIndex->markDirty(id);
}

void CObjectSetMgr::delObject(const std::vector<unsigned>& ids) {
  for (unsigned id : ids) delObject(id);
}

CRenderObject* CObjectSetMgr::getObj(unsigned id) const {
  auto it = m_objects.find(id);
  return it == m_objects.end() ? nullptr : it->second;
}

size_t CObjectSetMgr::numShapes() const {
  size_t n = 0;
  for (const auto& kv : m_objects)
    if (kv.second) n += kv.second->numShp();
  return n;
}

size_t CObjectSetMgr::numTriangles() const {
  size_t n = 0;
  for (const auto& kv : m_objects)
    if (kv.second) n += kv.second->numTriangles();
  return n;
}

unsigned CObjectSetMgr::addStaticObject(CStaticObject* obj) {
  if (!obj || obj->m_inSet) return 0;
  obj->m_inSet = true;
  obj->setObjSet(this);
  m_staticObjects.push_back(obj);
  calBox();
  return obj->getRenderList();
}

void CObjectSetMgr::delStaticObject(unsigned id) {
  for (auto it = m_staticObjects.begin(); it != m_staticObjects.end(); ++it) {
    if (*it && (*it)->getRenderList() == id) {
      CStaticObject* obj = *it;
      m_staticObjects.erase(it);
      obj->releaseDisplayList();
      delete obj;
      calBox();
      return;
    }
  }
}

void CObjectSetMgr::setStaticObjectVisible(unsigned id, bool visible) {
  for (CStaticObject* s : m_staticObjects) {
    if (s && s->getRenderList() == id) {
      s->setVisible(visible);
      return;
    }
  }
}

// The box of the objects, then of the static objects, skipping empty ones;
// false when nothing qualifies.
static bool measure(const std::map<unsigned, CRenderObject*>& objects, const std::vector<CStaticObject*>& statics,
                    AcGePoint3d& lo, AcGePoint3d& hi) {
  AcGeBoundBlock3d box;
  for (const auto& kv : objects) {
    const CRenderObject* o = kv.second;
    if (!o || o->numShp() == 0 || boxTooSmall(o->ptMin(), o->ptMax())) continue;
    box.extend(AcGeBoundBlock3d(o->ptMin(), o->ptMax()));
  }
  for (const CStaticObject* s : statics) {
    if (!s) continue;
    AcGePoint3d a, b;
    s->getBox(a, b);
    if (boxTooSmall(a, b)) continue;
    box.extend(AcGeBoundBlock3d(a, b));
  }
  if (box.isEmpty()) return false;
  box.getMinMaxPoints(lo, hi);
  return true;
}

void CObjectSetMgr::calBox() {
  AcGePoint3d lo, hi;
  if (measure(m_objects, m_staticObjects, lo, hi)) {
    m_boxMin = lo;
    m_boxMax = hi;
  }
  m_zFar = 1.0;
  m_zNear = m_boxMax.asVector().length() <= 100000.0 ? 0.09995 : 0.1;
}

void CObjectSetMgr::getBox0(AcGePoint3d& min, AcGePoint3d& max) const {
  if (!measureBox(min, max)) getBox(min, max);
}

bool CObjectSetMgr::measureBox(AcGePoint3d& min, AcGePoint3d& max) const {
  return measure(m_objects, m_staticObjects, min, max);
}

void CObjectSetMgr::pushAssistPt(const AcGePoint3d& pt, int type) {
  for (const auto& e : m_assistPts)
    if (e.first == type && e.second.isEqualTo(pt)) return;
  m_assistPts.emplace_back(type, pt);
  m_snapIndex->markAssistDirty();
}

void CObjectSetMgr::clearAssistPt(int type) {
  m_snapIndex->markAssistDirty();
  if (type < 0) {
    m_assistPts.clear();
    return;
  }
  std::vector<std::pair<int, AcGePoint3d>> kept;
  for (const auto& e : m_assistPts)
    if (e.first != type) kept.push_back(e);
  m_assistPts.swap(kept);
}

void CObjectSetMgr::getAssistPts(std::vector<AcGePoint3d>& out) const {
  out.clear();
  for (const auto& e : m_assistPts) out.push_back(e.second);
}

void CObjectSetMgr::renderAssistPt() {
  if (!m_scene || m_assistPts.empty()) return;
  kgl->PointSize(6.0f);
  kgl->Color3ub(255, 255, 0);
  kgl->Begin(GL_POINTS);
  for (const auto& e : m_assistPts) kgl->Vertex3d(e.second.x, e.second.y, e.second.z);
  kgl->End();
}

void CObjectSetMgr::createSearchTree() {
  m_searchTree->clear();
  for (const auto& kv : m_objects)
    if (kv.second) m_searchTree->insert(kv.second);
}

void CObjectSetMgr::updateSearchTree(CRenderObject* obj) {
  m_searchTree->update(obj);
  if (obj) m_snapIndex->markDirty(obj->getId());
}

void CObjectSetMgr::snapDataChanged(unsigned id) { m_snapIndex->markDirty(id); }

void CObjectSetMgr::getSnapNodes(const AcGePoint2d& p1, const AcGePoint2d& p2, std::vector<CSnapNode>& out) {
  m_snapIndex->refresh(*this);
  m_snapIndex->query(p1.x, p1.y, p2.x, p2.y, out);
}

void CObjectSetMgr::getInRectObjs(const AcGePoint2d& p1, const AcGePoint2d& p2,
                                  std::vector<CRenderObject*>& out) const {
  m_searchTree->queryXY(p1.x, p1.y, p2.x, p2.y, out);
}

void CObjectSetMgr::getObjsInFrustum(std::vector<CRenderObject*>& out,
                                     const std::vector<std::vector<double>>* planes) const {
  out.clear();
  if (!planes && m_scene) planes = &m_scene->getFrustumPlanes();
  if (!planes || planes->size() < 5) {
    // No view yet: everything may be seen.
    for (const auto& kv : m_objects)
      if (kv.second) out.push_back(kv.second);
    return;
  }
  m_searchTree->queryPlanes(*planes, out);
}
