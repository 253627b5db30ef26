#pragma once
// Fixed geometry drawn once with immediate-mode calls into a display list
// that the object set replays every frame. The list name is also the id.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CRenderSystem.h"
#include "kxrender/Export.h"

class CObjectSetMgr;

/// Fixed geometry recorded once into a display list that the object set
/// replays every frame; the list name is also the id. Build between
/// beginBuild and endBuild with a current GL context, then hand it to
/// CObjectSetMgr::addStaticObject, which owns it.
class KXRENDER_API CStaticObject {
 public:
  CStaticObject();
  /// Both copies name the same list; a copy is visible and must be given its
  /// visibility explicitly.
  CStaticObject(const CStaticObject& o);
  CStaticObject& operator=(const CStaticObject& o);  ///< See the copy constructor.
  /// Does not delete the list: the object set does that before freeing.
  ~CStaticObject() = default;

  static CStaticObject* createStaticObject() { return new CStaticObject(); }  ///< A new empty object; the caller owns it until it is added to a set.

  ///@{
  /// Opens and closes the display list the calls in between are recorded into.
  void beginBuild();
  void endBuild();
  ///@}
  ///@{
  /// Immediate-mode primitives recorded into the list: begin/end bracket one
  /// primitive; point adds a vertex (world units) and grows the box.
  void begin(CRenderSystem::ShapeType type);
  void end();
  void point(double x, double y, double z);
  void normal(float x, float y, float z);
  void color(unsigned char r, unsigned char g, unsigned char b);
  void textureCoord(float s, float t);
  ///@}
  void releaseDisplayList();  ///< Deletes the display list (needs the context) and forgets it.

  unsigned getRenderList() const { return m_renderList; }  ///< The display list name, which is the id; 0 before beginBuild.
  ///@{
  /// The owning set (not owned), or null.
  void setObjSet(CObjectSetMgr* set) { m_objSet = set; }
  CObjectSetMgr* getObjSet() const { return m_objSet; }
  ///@}
  ///@{
  /// Hidden static objects are not drawn.
  void setVisible(bool v) { m_visible = v; }
  bool getVisible() const { return m_visible; }
  ///@}
  /// The box of the recorded points.
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_boxMin;
    max = m_boxMax;
  }

 private:
  friend class CObjectSetMgr;
  unsigned m_renderList = 0;
  bool m_inSet = false;  ///< owned by a set; never copied
  CObjectSetMgr* m_objSet = nullptr;
  bool m_visible = true;
  AcGePoint3d m_boxMin;
  AcGePoint3d m_boxMax;
  bool m_firstPoint = false;
};
