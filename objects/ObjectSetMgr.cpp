#include "kxrender/CObjectSetMgr.h"

#include "kxrender/CSceneMgr.h"

// Placeholder search tree until the object store lands.
class CObjectSearchTree {};

CObjectSetMgr::CObjectSetMgr() : m_searchTree(new CObjectSearchTree) {}
CObjectSetMgr::CObjectSetMgr(const CObjectSetMgr& o) : m_searchTree(new CObjectSearchTree) { *this = o; }
CObjectSetMgr& CObjectSetMgr::operator=(const CObjectSetMgr& o) {
  m_boxMin = o.m_boxMin;
  m_boxMax = o.m_boxMax;
  m_renderMode = o.m_renderMode;
  m_scene = o.m_scene;
  return *this;
}
CObjectSetMgr::~CObjectSetMgr() = default;

CRenderObject* CObjectSetMgr::getObj(unsigned) const { return nullptr; }
void CObjectSetMgr::setRenderMode(CRenderObject::RenderMode mode) { m_renderMode = mode; }

void CObjectSetMgr::render() {
  if (!m_scene) return;
  m_scene->updateFrustumAndMatrix();
}

void CObjectSetMgr::releaseDispList() {}
