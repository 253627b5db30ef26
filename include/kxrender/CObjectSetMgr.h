#pragma once
// Everything one scene draws: render objects keyed by the ids the set hands
// out, static display-list objects, typed assist points, the set's box and
// a spatial index over the object boxes.
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CStaticObject.h"
#include "kxrender/Export.h"

class CSceneMgr;
class CObjectSearchTree;
class CBjSnap;
namespace kxretained {
struct GroupDrawing;
}
struct CSnapNode;

/// The set of render objects and static objects a scene draws. It owns every
/// object added to it and deletes it on removal; ids are unsigned, 0 is none.
/// Unknown ids are ignored silently.
class KXRENDER_API CObjectSetMgr {
 public:
  CObjectSetMgr();
  /// A copy owns copies of the objects and static objects, under the same
  /// ids, and its own search tree: deleting or changing an object in one set
  /// never reaches the other. Copied static objects name the same display
  /// list as their source (the list is the host's geometry, built once).
  CObjectSetMgr(const CObjectSetMgr& o);
  CObjectSetMgr& operator=(const CObjectSetMgr& o);  ///< Copies as the copy constructor does, after deleting this set's objects.
  ~CObjectSetMgr();

  ///@{
  /// The owning scene (not owned); set by the scene itself.
  void setScene(CSceneMgr* scene) { m_scene = scene; }
  CSceneMgr* getScene() const { return m_scene; }
  ///@}

  // ---- objects ----
  /// The set takes ownership and returns the new id; 0 for null or for an
  /// object already in a set (this one or another), which is left as it is.
  /// Throws a heap-allocated std::exception when no id is left.
  unsigned addObject(CRenderObject* obj);
  void addObject(const std::vector<CRenderObject*>& objs, std::vector<unsigned>& ids);  ///< addObject for each; ids receives one id (0 on refusal) per object.
  ///@{
  /// Removes and deletes the objects; their display lists go to the scene's queue.
  void delObject(unsigned id);
  void delObject(const std::vector<unsigned>& ids);
  ///@}
  /// Deletes every object and static object.
  void clear();
  ///@{
  /// The object with this id (still owned by the set), or null / false.
  CRenderObject* getObj(unsigned id) const;
  const CRenderObject* getConstObj(unsigned id) const { return getObj(id); }
  bool is_exist(unsigned id) const { return m_objects.count(id) != 0; }
  ///@}
  ///@{
  /// Counts of objects, of their shapes and of drawn triangles.
  size_t numObjs() const { return m_objects.size(); }
  size_t numShapes() const;
  size_t numTriangles() const;
  ///@}
  const std::map<unsigned, CRenderObject*>& objects() const { return m_objects; }  ///< Every object by id, ascending.

  // ---- static objects ----
  unsigned addStaticObject(CStaticObject* obj);  ///< Takes ownership; returns its id (its display list), 0 for null or an object already in a set.
  void delStaticObject(unsigned id);  ///< Removes, releases and deletes the static object with this id.
  void setStaticObjectVisible(unsigned id, bool visible);  ///< Shows or hides one static object.
  const std::vector<CStaticObject*>& staticObjects() const { return m_staticObjects; }  ///< The static objects, in the order added.

  // ---- box ----
  /// The stored box of the set, world units; (-10, -10, -10)-(10, 10, 10)
  /// until freshBox() measures contents. The projection is fitted to it.
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_boxMin;
    max = m_boxMax;
  }
  /// The box of the current contents, computed afresh and not stored; the
  /// stored box when there is nothing to measure.
  void getBox0(AcGePoint3d& min, AcGePoint3d& max) const;
  /// The box of the current contents; false, leaving min and max as they
  /// are, when nothing in the set has an extent.
  bool measureBox(AcGePoint3d& min, AcGePoint3d& max) const;
  void freshBox() { calBox(); }  ///< Measures the contents into the stored box; call after adding or moving objects.
  ///@{
  /// Depth-range values for border lines drawn over faces, set by freshBox:
  /// near 0.09995 (0.1 for a box reaching past 1e5 units), far 1. Kept for hosts.
  double borderLineZNear() const { return m_zNear; }
  double borderLineZFar() const { return m_zFar; }
  ///@}

  // ---- assist points ----
  /// Assist points: extra snap points of a host-chosen type, drawn as yellow
  /// dots. pushAssistPt ignores a point already present with the same type;
  /// clearAssistPt removes one type, or all for a negative type.
  void pushAssistPt(const AcGePoint3d& pt, int type);
  void clearAssistPt(int type);  ///< See pushAssistPt.
  ///@{
  /// The assist points, with or without their types.
  void getAssistPts(std::vector<std::pair<int, AcGePoint3d>>& out) const { out = m_assistPts; }
  void getAssistPts(std::vector<AcGePoint3d>& out) const;
  ///@}
  void renderAssistPt();  ///< Draws the assist points into the current frame.

  // ---- search ----
  ///@{
  /// Spatial index of the objects' boxes: rebuilt from scratch, and queried for
  /// the objects whose XY box meets the rectangle p1-p2 (world units).
  void createSearchTree();
  void getInRectObjs(const AcGePoint2d& p1, const AcGePoint2d& p2, std::vector<CRenderObject*>& out) const;
  ///@}
  /// Refreshes one object's entry after it moved.
  void updateSearchTree(CRenderObject* obj);
  // ---- snapping ----
  /// Snap nodes (snap points, exact ones under each instance matrix, assist
  /// points) whose XY position lies in the rectangle p1-p2; appended to out.
  void getSnapNodes(const AcGePoint2d& p1, const AcGePoint2d& p2, std::vector<CSnapNode>& out);
  /// The object's snap nodes changed (or the object went): the index reads
  /// it again before its next query.
  void snapDataChanged(unsigned id);
  /// The snap point near the pick ray nearPt-farPt (through the cursor):
  /// candidates are the snap data and grips of the objects ids and the
  /// nodes, kinds as allowed by mask (CRenderObject::SnapMode bits). A point
  /// counts when it lies within aperture pixels of the cursor on screen and
  /// no face the ray meets first lies nearer along the ray by more than
  /// tolerance (world units). True with the point and its kind; false,
  /// outputs untouched, when nothing snaps, the mask is 0, the aperture not
  /// positive, the ray not finite or the set has no scene.
  bool snap(const AcGePoint3d& nearPt, const AcGePoint3d& farPt, int aperture, double tolerance, unsigned long mask,
            const std::vector<unsigned>& ids, const std::vector<CSnapNode>& nodes, AcGePoint3d& result,
            CRenderObject::SnapMode& kind) const;

  /// Objects that may be seen through the five frustum planes (a, b, c, d
  /// each, normals inwards); the scene's own planes when planes is null.
  void getObjsInFrustum(std::vector<CRenderObject*>& out, const std::vector<std::vector<double>>* planes = nullptr) const;

  // ---- drawing ----
  ///@{
  /// How every object is drawn (wireframe, shaded, ...).
  void setRenderMode(CRenderObject::RenderMode mode);
  CRenderObject::RenderMode getRenderMode() const { return m_renderMode; }
  ///@}
  /// Draws the set into the scene's current frame.
  void render();
  ///@{
  /// The object pass of render(): the objects in the frustum (or objs) in the
  /// given render mode, transparent ones blended and sorted.
  void renderObjs(int mode);
  void renderObjs(const std::vector<CRenderObject*>& objs, int mode);
  ///@}
  static void sortForTransparent(std::vector<CRenderObject*>& objs);  ///< Orders objects back to front from the current camera for blending.
  /// Drops every object's display lists (the context is going away).
  void releaseDispList();
  /// The buffer objects the retained path holds for groups of neighbouring objects.
  std::vector<unsigned> retainedGroupBuffers() const;
  /// Shapes drawn as dashed outlines after all objects; filled during a frame.
  void addOutlineShape(const CRenderShape* s) { m_outlineShapes.push_back(s); }
  const std::vector<const CRenderShape*>& outlineShapes() const { return m_outlineShapes; }  ///< The shapes queued for dashed outlines in this frame (not owned).

 protected:
  void calBox();  ///< Same as freshBox().

 private:
  void renderOutlines();
  // slots: the objects' places in the search tree (see CObjectSearchTree::queryPlanes);
  // with them, neighbours share retained lists.
  void drawObjects(const std::vector<CRenderObject*>& objs, const std::vector<uint32_t>* slots);
  void renderObjs(const std::vector<CRenderObject*>& objs, int mode, const std::vector<uint32_t>* slots);
  // Hands the retained buffers of groups of neighbours to the scene's deletion queue.
  void releaseGroupDrawings();

  std::map<unsigned, CRenderObject*> m_objects;
  unsigned m_nextId = 1;
  AcGePoint3d m_boxMin{-10.0, -10.0, -10.0};
  AcGePoint3d m_boxMax{10.0, 10.0, 10.0};
  CRenderObject::RenderMode m_renderMode = CRenderObject::RenderMode(2);
  CSceneMgr* m_scene = nullptr;
  std::vector<CStaticObject*> m_staticObjects;
  std::vector<std::pair<int, AcGePoint3d>> m_assistPts;
  double m_zNear = 0.09995;
  double m_zFar = 1.0;
  std::unique_ptr<CObjectSearchTree> m_searchTree;
  std::unique_ptr<CBjSnap> m_snapIndex;
  std::vector<const CRenderShape*> m_outlineShapes;
  std::vector<CRenderObject*> m_frameObjects;  ///< kept between frames: no per-frame allocation
  std::vector<uint32_t> m_frameSlots;          ///< their places in the search tree
  /// The shared drawings of groups of search-tree neighbours, by group.
  std::vector<std::shared_ptr<kxretained::GroupDrawing>> m_groupDrawings;
  std::vector<CRenderObject*> m_transparentObjects;
  std::vector<CRenderObject*> m_listedObjects;  ///< the same, sorted by address
  /// Taken ids tried in a row before giving up; tests lower it.
  uint32_t m_idAttemptLimit = 0xFFFFFFFDu;
};
