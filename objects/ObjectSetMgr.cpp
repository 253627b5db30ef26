#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CSceneMgr.h"

CRenderObject* CObjectSetMgr::getObj(unsigned int) const { return nullptr; }

void CObjectSetMgr::render() {
  if (!m_scene) return;
  m_scene->updateFrustumAndMatrix();
}

void CObjectSetMgr::releaseDispList() {}
