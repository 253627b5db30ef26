#pragma once
// The scene's collection of drawable objects.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/Export.h"

class CSceneMgr;

class KXRENDER_API CObjectSetMgr {
 public:
  CObjectSetMgr() = default;

  void setScene(CSceneMgr* scene) { m_scene = scene; }
  CSceneMgr* getScene() const { return m_scene; }

  CRenderObject* getObj(unsigned int id) const;
  bool is_exist(unsigned int id) const { return getObj(id) != nullptr; }
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_boxMin;
    max = m_boxMax;
  }

  void setRenderMode(CRenderObject::RenderMode mode) { m_renderMode = mode; }
  CRenderObject::RenderMode getRenderMode() const { return m_renderMode; }

  // Draws the set into the scene's current frame.
  void render();
  // Drops every object's display lists (the context is going away).
  void releaseDispList();

 private:
  AcGePoint3d m_boxMin{-10.0, -10.0, -10.0};
  AcGePoint3d m_boxMax{10.0, 10.0, 10.0};
  CRenderObject::RenderMode m_renderMode = CRenderObject::RenderMode(2);
  CSceneMgr* m_scene = nullptr;
};
