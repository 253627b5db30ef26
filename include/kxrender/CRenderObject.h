#pragma once
// A model object as the engine keeps it: an ordered list of render shapes
// with ids, a box and sphere, coarser level-of-detail shape lists, snap data
// and grips, and instance transforms under which its leading shapes are
// drawn repeatedly.
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "kxrender/AcGeCurve3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CGripPoint.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CSimpleMatrix.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

class CObjectSetMgr;
class CRect;
namespace kxretained {
class GroupWriter;
class LeanWriter;
}  // namespace kxretained

/// One drawable object of the host's model: its shapes (owned, by value), an
/// optional level-of-detail ladder, instance matrices, snap data and grips.
/// Build it with addShape then endAddShape, and hand it to
/// CObjectSetMgr::addObject, which owns it from then on. Lengths are world units.
class KXRENDER_API CRenderObject {
 public:
  /// Passed unchanged to every shape's drawing: 0 draws wire frames, 2 and 4
  /// shaded faces; the default everywhere is 2.
  enum RenderMode : int32_t {};
  /// Kind of snap point found; one bit each, so that an or of them is a
  /// scene's snap mode (0: snapping off).
  ///   kSnapEndPoint      start and end of a snap curve
  ///   kSnapMidPoint      middle of a snap curve (middle parameter)
  ///   kSnapCenter        centre of an arc or circle snap curve
  ///   kSnapIntersection  crossing of two snap curves, of one object or two
  ///   kSnapPerpendicular foot of the perpendicular from the scene's first
  ///                      point (setSnapFirstPt) onto a snap curve
  ///   kSnapNearest       point of a snap curve nearest the cursor
  ///   kSnapNode          a snap point, or an assist point of the set
  ///   kSnapGrip          a grip point
  /// When several lie within the aperture, end points, intersections, nodes
  /// and grips come first, then mid points and centres, then perpendicular
  /// feet, then nearest points; within one rank the point nearest the
  /// cursor on screen, and on a tie the lower bit.
  enum SnapMode : uint32_t {
    kSnapNone = 0,
    kSnapEndPoint = 0x01,
    kSnapMidPoint = 0x02,
    kSnapCenter = 0x04,
    kSnapIntersection = 0x08,
    kSnapPerpendicular = 0x10,
    kSnapNearest = 0x20,
    kSnapNode = 0x40,
    kSnapGrip = 0x80,
    kSnapAll = 0xFF
  };

  CRenderObject() = default;
  /// A copy has every field of the source (shapes without display lists,
  /// deep copies of snap curves and matrices) but belongs to no set until it
  /// is added to one. Assigning to an object that is in a set keeps its id
  /// and set, so the set's index stays true.
  CRenderObject(const CRenderObject& o);
  CRenderObject& operator=(const CRenderObject& o);  ///< See the copy constructor.
  /// Hands every shape's display list to the scene's deletion queue when the
  /// object belongs to a set, then frees the snap curves and matrices.
  virtual ~CRenderObject();

  // ---- shapes ----
  void addShape(const CRenderShape& s) { m_shapes.push_back(s); }  ///< Appends a copy of s.
  unsigned numShp() const { return static_cast<unsigned>(m_shapes.size()); }  ///< The number of shapes.
  /// An index at or past the end gives the last shape; an object with no
  /// shapes gives an empty shape that belongs to no object.
  CRenderShape& getShape(unsigned i);
  ///@{
  /// Shape i, clamped as getShape(unsigned) is.
  const CRenderShape& getShape(unsigned i) const;
  CRenderShape& operator[](unsigned i) { return getShape(i); }
  const CRenderShape& operator[](unsigned i) const { return getShape(i); }
  ///@}
  ///@{
  /// The shapes themselves.
  std::vector<CRenderShape>& getShps() { return m_shapes; }
  const std::vector<CRenderShape>& getShps() const { return m_shapes; }
  ///@}
  /// Dropping shapes hands their display lists to the scene's deletion queue.
  void clearShape();
  /// Call once after the last addShape: drops invalid shapes, trims storage,
  /// computes the box and the common colour.
  void endAddShape();
  void resize(unsigned n);  ///< Resizes the shape list only.
  size_t numTriangles() const;  ///< Triangles the shapes draw.

  ///@{
  /// Selection state and colours of shape i; an index past the end reads the
  /// last shape, and an object without shapes gives false or white.
  bool getShapeHit(const unsigned& i) const;
  bool getShapeHighLight(const unsigned& i) const;
  CColor getShapeColor(const unsigned& i) const;
  CColor getShapeBorderColor(const unsigned& i) const;
  void setShapeColor(unsigned i, const CColor& c);
  ///@}
  ///@{
  /// Flags every shape as hit (dashed outline) or highlighted (stippled fill).
  void hit(bool b);
  void highLight(bool b);
  ///@}
  /// Flags the shapes whose tags hold any key of the map with its value
  /// (compared as CRenderShape::is does).
  void hit(const std::map<CString, CString>& tags);
  void highLight(const std::map<CString, CString>& tags);  ///< As hit(tags), for highlighting.

  // ---- ids and switches ----
  ///@{
  /// The id the object set gave (0: in no set).
  void setId(unsigned id) { m_id = id; }
  unsigned getId() const { return m_id; }
  ///@}
  ///@{
  /// The host's own id for the object; the engine does not read it.
  void setExternId(unsigned id) { m_externId = id; }
  unsigned getExternId() const { return m_externId; }
  ///@}
  ///@{
  /// The object's own render mode (used by rectangle picks with mode -1).
  void setRenderMode(RenderMode m) { m_renderMode = m; }
  RenderMode getRenderMode() const { return m_renderMode; }
  ///@}
  ///@{
  /// The set the object belongs to (not owned), or null.
  void setObjSet(CObjectSetMgr* set) { m_objSet = set; }
  CObjectSetMgr* getObjSet() const { return m_objSet; }
  ///@}
  ///@{
  /// Hidden objects are neither drawn nor picked.
  void setVisible(bool v) { m_visible = v; }
  bool isVisible() const { return m_visible; }
  ///@}
  ///@{
  /// The object colour (set by endAddShape when every shape has the same one).
  void setColor(const CColor& c) { m_color = c; }
  const CColor& getColor() const { return m_color; }
  ///@}
  ///@{
  /// Whether the object casts a stencil shadow when the scene's shadows are on
  /// (default false); turning it off hands its shadow volume's display list
  /// to the scene for deletion.
  void setGenerateShadow(bool b) {
    m_generateShadow = b;
    if (!b) releaseShadowVolume();
  }
  bool getGenerateShadow() const { return m_generateShadow; }
  ///@}
  ///@{
  /// Draw with an XOR logic operation (rubber-band feedback).
  void setTrackerXor(bool b) { m_trackerXor = b; }
  bool isTrackerXor() const { return m_trackerXor; }
  ///@}
  ///@{
  /// Whether faces take part in snapping.
  void setFaceSnap(bool b) { m_faceSnap = b; }
  bool getFaceSnap() const { return m_faceSnap; }
  ///@}
  ///@{
  /// A free-form text the host keeps with the object.
  void setXdata(CString s) { m_xdata = s; }
  CString getXdata() const { return m_xdata; }
  ///@}
  ///@{
  /// How many leading shapes are exact geometry drawn under each instance matrix.
  void setExaGeoShapNum(unsigned n) { m_exaGeoShapNum = n; }
  unsigned getExaGeoShapNum() const { return m_exaGeoShapNum; }
  ///@}
  ///@{
  /// Set true by every render() that passes the culling tests; the host resets them.
  bool renderedFlag1() const { return m_renderedFlag1; }
  bool renderedFlag2() const { return m_renderedFlag2; }
  void setRenderedFlags(bool a, bool b) {
    m_renderedFlag1 = a;
    m_renderedFlag2 = b;
  }
  ///@}

  // ---- levels of detail ----
  /// Levels of detail: setLodLevel(n) makes n levels (empty shapes, count 0,
  /// threshold 0) that the host fills through the reference accessors. A level
  /// is used from its units-per-pixel threshold on; thresholds ascend.
  void setLodLevel(unsigned n);
  std::vector<std::vector<CRenderShape>>& getLodShpss() { return extra().lodShps; }  ///< The shapes of every level.
  /// The same, read only: reading allocates nothing for an object without levels.
  const std::vector<std::vector<CRenderShape>>& getLodShpss() const { return extraOrNone().lodShps; }
  /// A level past the last gives the last; with no levels, an empty list and
  /// zero values that belong to no level (writes to them are discarded).
  std::vector<CRenderShape>& getLodShpss(unsigned level);
  ///@{
  /// Per level: its count of instanced leading shapes and its units-per-pixel
  /// threshold; an index past the last gives the last.
  std::vector<unsigned>& getLodExaShapeNum() { return extra().lodExaShapeNum; }
  unsigned& getLodExaShapeNum(unsigned level);
  std::vector<float>& getLodUnitsPerPixel() { return extra().lodUnitsPerPixel; }
  float& getLodUnitsPerPixel(unsigned level);
  ///@}
  ///@{
  /// The coarsest view (world units per pixel) at which the object is drawn at
  /// all; from that value on it is skipped.
  void setMaxUnitsPerPixel(double v) {
    extra().maxUnitsPerPixel = v;
    extra().hasMaxUnitsPerPixel = true;
  }
  double getMaxUnitsPerPixel() const { return extraOrNone().maxUnitsPerPixel; }
  bool hasMaxUnitsPerPixel() const { return extraOrNone().hasMaxUnitsPerPixel; }
  ///@}

  // ---- box and camera ----
  void calBox();  ///< Recomputes box, centre and radius from the shapes.
  /// The object's box and bounding sphere in world units (from calBox / endAddShape).
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_ptMin;
    max = m_ptMax;
  }
  /// The bounding sphere.
  void getSphere(AcGePoint3d& centre, float& radius) const {
    centre = m_ptCenter;
    radius = m_radius;
  }
  ///@{
  /// Box corners, centre and sphere radius.
  const AcGePoint3d& ptMin() const { return m_ptMin; }
  const AcGePoint3d& ptMax() const { return m_ptMax; }
  const AcGePoint3d& ptCenter() const { return m_ptCenter; }
  float& getRadius() { return m_radius; }
  ///@}
  double distanceToCamera() const;  ///< Distance from the camera along its view direction to the centre; negative behind it, 0 without a scene.

  // ---- drawing ----
  /// Draws the object into the current frame (called by the object set): level
  /// of detail, single point when tiny, instance matrices, then each shape.
  void render(bool cullBackFaces, const double* unitsPerPixel, const double* pixelsPerUnit,
              const AcGeVector3d* viewDirection);
  /// The display list the retained path compiled for this object (0: none).
  unsigned getRetainedList() const { return m_retainedList; }
  /// Draws the object's shadow volume from the scene's light, for the
  /// stencil passes; built on first use and again only after the shapes,
  /// the instances, the light or the set's box change. Draws nothing when the
  /// object casts no shadow, is hidden, has no shapes or no scene, or the
  /// light is unusable (its last volume is kept for when it comes back).
  void renderShadowVolume();
  /// The display list of the shadow volume, 0 when there is none.
  unsigned getShadowVolumeList() const { return m_shadow.list; }
  /// Shapes that must be drawn with the selection look after all objects.
  void addOutlineShape(const CRenderShape* s);

  // ---- hit testing ----
  /// Over the visible full-detail shapes as they are drawn: the leading
  /// getExaGeoShapNum() shapes under each instance matrix (not at all
  /// without one), the others as they are.
  ///
  /// The hit of the ray from p1 along p2 - p1 nearest to p1 (the first shape
  /// on a tie), with tol the pick tolerance in model units. flag is handed to
  /// every shape as `solid`: filled geometry counts, and polylines are hit
  /// only with it. distance is measured along the ray from p1; shapeIndex
  /// indexes getShps(). The outputs stay untouched on a miss.
  bool intersectRay(const AcGePoint3d& p1, const AcGePoint3d& p2, double tol, bool flag, double& distance,
                    AcGePoint3d& hitPt, unsigned& shapeIndex) const;
  /// Rectangle selection with the view data of CRenderShape::intersectRect:
  /// intersectRect when some shape crosses the rectangle or lies inside it
  /// (mode as the shapes take it; a negative mode means the object's own
  /// render mode), allInRect when the object draws a shape with geometry
  /// and every such shape lies inside. The object's box settles objects
  /// wholly inside or outside without looking at their shapes.
  bool intersectRect(const CRect& rect, const std::vector<std::vector<double>>& view, int mode = -1) const;
  bool allInRect(const CRect& rect, const std::vector<std::vector<double>>& view) const;  ///< See intersectRect.

  // ---- transforms ----
  void move(const AcGeVector3d& v);  ///< Moves shapes, snap data and box by v.
  void rotate(const AcGePoint3d& centre, double angle);  ///< Rotates by angle (radians, counter-clockwise) about the Z axis through centre.
  void mirror(const AcGeLine3d& line);  ///< Reflects in the vertical plane through line.
  ///@{
  /// Instance matrices: the exact geometry is drawn once under each. addSmpMat
  /// takes ownership; clearSmpMat deletes them all.
  void addSmpMat(CSimpleMatrix* m) {
    m_smpMats.push_back(m);
    m_shadow.stale = true;
    snapChanged();
  }
  const std::vector<CSimpleMatrix*>& getSmpMat() const { return m_smpMats; }
  void clearSmpMat();
  ///@}

  // ---- snap data ----
  /// Changing snap points or instance matrices of an object in a set keeps
  /// the set's snap index true; curves reached through the getters and
  /// changed in place are not seen by it.
  void setSnapPoints(const std::vector<AcGePoint3d>& p) {
    setExtraList(&Extra::snapPoints, p);
    snapChanged();
  }
  ///@{
  /// Snap points and curves, plain and exact (under each instance matrix).
  /// Setters copy the list; the object owns the curves and deletes them in
  /// clearSnapCurves and on destruction.
  const std::vector<AcGePoint3d>& getSnapPoints() const { return extraOrNone().snapPoints; }
  void setSnapCurves(const std::vector<AcGeCurve3d*>& c) { setExtraList(&Extra::snapCurves, c); }
  const std::vector<AcGeCurve3d*>& getSnapCurves() const { return extraOrNone().snapCurves; }
  void setSnapPointsExa(const std::vector<AcGePoint3d>& p) {
    setExtraList(&Extra::snapPointsExa, p);
    snapChanged();
  }
  const std::vector<AcGePoint3d>& getSnapPointsExa() const { return extraOrNone().snapPointsExa; }
  void setSnapCurvesExa(const std::vector<AcGeCurve3d*>& c) { setExtraList(&Extra::snapCurvesExa, c); }
  const std::vector<AcGeCurve3d*>& getSnapCurvesExa() const { return extraOrNone().snapCurvesExa; }
  void clearSnapCurves();
  ///@}
  ///@{
  /// Centre and radius of the exact snap data.
  const AcGePoint3d& getSnapExaCenter() const { return extraOrNone().snapExaCenter; }
  float getSnapExaRadius() const { return extraOrNone().snapExaRadius; }
  ///@}
  ///@{
  /// Adds snap points (outline vertices) or snap curves (outline segments) of
  /// every polyline and polygon shape, exact ones for the leading exact shapes.
  void AutoCountCatchPoint();
  void AutoCountCatchLine();
  ///@}
  ///@{
  /// The object's grip points.
  std::vector<CGripPoint>& gripPoint() { return extra().grips; }
  const std::vector<CGripPoint>& gripPoint() const { return extraOrNone().grips; }
  ///@}

 protected:
  void transformBy(const AcGeMatrix3d& m);  ///< Applies m to shapes, snap data (exact data through the instance matrices) and box.
  void updateTree();  ///< Refreshes the object's entry in its set's search tree.
  void copySanpCurves(const CRenderObject& o);  ///< Replaces the snap curves with deep copies of o's.

 private:
  friend class CObjectSetMgr;
  friend class kxretained::GroupWriter;
  void copyFrom(const CRenderObject& o);
  /// Hands the display lists of shapes about to be dropped to the scene.
  void releaseShapeLists(std::vector<CRenderShape>::iterator first, std::vector<CRenderShape>::iterator last);
  void releaseAllShapeLists();  ///< every level's too
  void updateSnapExaSphere();
  /// Tells the set that this object's snap nodes changed.
  void snapChanged();
  // Hands the shadow volume's list to the scene's deletion queue.
  void releaseShadowVolume();
  void buildShadowVolume(const float* light, const AcGePoint3d& lo, const AcGePoint3d& hi);
  void drawShape(CRenderShape& s, bool cullBackFaces, const double* pixelsPerUnit,
                 const AcGeVector3d* viewDirection, bool isLod);
  void drawShapes(std::vector<CRenderShape>& shapes, unsigned instanced, bool cullBackFaces,
                  const double* pixelsPerUnit, const AcGeVector3d* viewDirection, bool isLod);
  // Draws the shapes through the object's display list (RenderObjectRetained.cpp);
  // false when the object has to take the per-shape path this frame.
  bool drawRetained(std::vector<CRenderShape>& shapes, unsigned instanced, bool cullBackFaces,
                    const double* pixelsPerUnit, const AcGeVector3d* viewDirection, bool isLod);
  // Hands the retained list to the scene's deletion queue.
  void releaseRetainedList();
  // Writes the visible, unculled shapes as the lean list writer draws them.
  void writeRetained(kxretained::LeanWriter& w, const std::vector<CRenderShape>& shapes, unsigned instanced,
                     bool cullBackFaces, const double* pixelsPerUnit, const AcGeVector3d* viewDirection) const;

  /// What few objects carry, allocated on first write: a building's objects
  /// are nearly all plain, and every byte here is paid once per object.
  struct Extra {
    std::vector<AcGePoint3d> snapPoints;
    std::vector<AcGeCurve3d*> snapCurves;  // owned
    std::vector<AcGePoint3d> snapPointsExa;
    std::vector<AcGeCurve3d*> snapCurvesExa;  // owned
    AcGePoint3d snapExaCenter;
    float snapExaRadius = 1.0f;
    bool hasMaxUnitsPerPixel = false;
    double maxUnitsPerPixel = 0.0;
    std::vector<std::vector<CRenderShape>> lodShps;
    std::vector<unsigned> lodExaShapeNum;
    std::vector<float> lodUnitsPerPixel;
    std::vector<CGripPoint> grips;
  };
  Extra& extra();
  const Extra& extraOrNone() const { return m_extra ? *m_extra : noExtra(); }
  static const Extra& noExtra();
  // Sets one of the part's lists; an empty list on a plain object needs no storage.
  template <class T>
  void setExtraList(std::vector<T> Extra::*list, const std::vector<T>& v) {
    if (m_extra || !v.empty()) extra().*list = v;
  }

  std::vector<CRenderShape> m_shapes;
  std::unique_ptr<Extra> m_extra;
  unsigned m_id = 0;
  unsigned m_externId = 0;
  RenderMode m_renderMode = RenderMode(2);
  AcGePoint3d m_ptMin;
  AcGePoint3d m_ptMax;
  AcGePoint3d m_ptCenter;
  float m_radius = 0.0f;
  CObjectSetMgr* m_objSet = nullptr;
  bool m_inSet = false;  ///< owned by a set; never copied
  bool m_faceSnap = false;
  CString m_xdata;
  unsigned m_exaGeoShapNum = 0;
  std::vector<CSimpleMatrix*> m_smpMats;
  bool m_visible = true;
  CColor m_color;
  bool m_generateShadow = false;
  bool m_trackerXor = false;
  bool m_renderedFlag1 = false;
  bool m_renderedFlag2 = false;
  unsigned m_retainedList = 0;
  uint64_t m_retainedKey = 0;  // what the list was compiled from
  // What the shadow volume was built for; never copied.
  struct ShadowVolumeState {
    unsigned list = 0;
    bool stale = true;  // shapes or instances changed since
    float light[4] = {};
    AcGePoint3d lo, hi;  // the set's box
  };
  ShadowVolumeState m_shadow;
};
