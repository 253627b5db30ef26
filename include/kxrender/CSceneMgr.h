#pragma once
// One 3D view on one host window: its rendering context, frame, camera,
// projection and the objects it draws.
#include <deque>
#include <functional>
#include <list>
#include <stack>
#include <vector>

#include "kxrender/AcGePlane.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/CCamera.h"
#include "kxrender/CColor.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CPoint.h"
#include "kxrender/CRect.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSize.h"
#include "kxrender/CTextureMgr.h"
#include "kxrender/DIBSection.h"
#include "kxrender/Export.h"
#include "kxrender/GripPoint.h"
#include "kxrender/KxWindow.h"

/// One 3D view on one host window: the host's entry point. The host owns the
/// scene; the scene owns its camera, object set, texture manager, view history
/// and grip points. Bind it with initializeRender, fill getObjSetMgr(), then
/// call render() and finish() on every paint. All calls run on the GUI thread.
class KXRENDER_API CSceneMgr {
 public:
  /// Where screen2world puts a window pixel: on z = 0, y = 0, x = 0, or where
  /// the eye ray meets the near or the far plane of the view volume.
  enum ProjectPlane { PLANE_XY = 0, PLANE_XZ = 1, PLANE_YZ = 2, PLANE_NEAR = 3, PLANE_FAR = 4 };
  typedef int OrbitStatus;  ///< One of ORBIT_FREE, ORBIT_FRONT, ORBIT_RIGHT, ORBIT_UP.
  /// Which hits a point pick keeps: 1 polyline shapes only, 2 polygon and
  /// face-mesh shapes only, any other value every hit.
  typedef int PickType;
  typedef void (*Scene2ModelFun)(CSceneMgr*);  ///< Host callback called after every view change (SetScene2ModelFunPtr).

  /// No window and no context yet; resets getCurrentScenePtr() to null.
  CSceneMgr();
  ///@{
  /// Copies every member, the objects of the set included.
  CSceneMgr(const CSceneMgr& other);
  CSceneMgr& operator=(const CSceneMgr& other);
  ///@}
  /// Deletes the grip points and the objects. Call glRelease() first to free the
  /// GL context; without it the display lists go with the context.
  ~CSceneMgr();

  // --- lifecycle -------------------------------------------------------
  /// Binds the scene to a window: pixel format, context, GL state, light,
  /// viewport. `bFlag` is accepted and has no effect.
  bool initializeRender(HWND hWnd, bool bFlag, bool bDrawCoordinate);  ///< False (no message) when hWnd is not a window or no pixel format or context can be made; bDrawCoordinate switches the axis tripod.
  ///@{
  /// Static GL state (depth test, shading) and the single light; called by
  /// initializeRender.
  void glInit();
  void lightInit();
  ///@}
  ///@{
  /// Lighting on or off; setting it applies at once in the current context.
  void setLightOpen(bool b);
  bool isLightOpen() const { return m_bLightOpen; }
  ///@}
  /// One frame; the caller then calls finish().
  void render();
  /// Presents the frame and records the time.
  void finish();
  ///@{
  /// Lends the GL context to someone else (none current) and takes it back.
  void closeHRC();
  void restoreHRC();
  ///@}
  ///@{
  /// Deletes the objects' display lists and the GL context; the objects stay.
  void glRelease();
  void releaseRender() { glRelease(); }
  ///@}
  void addRemovedDispList(unsigned int id) { m_removedDispLists.push_back(id); }  ///< Queues a display list id for deletion at the start of the next render().
  void addRemovedBuffer(unsigned int id) { m_removedBuffers.push_back(id); }  ///< Queues a buffer object the same way.

  static CSceneMgr* getCurrentScenePtr() { return m_currentScenePtr; }  ///< The scene drawing now (last to enter render), or null.
  /// Chooses a double-buffered RGBA format with depth and stencil buffers.
  static bool choosePixelFormatEx(HDC hDC, int& format);

  // --- projection and conversion ----------------------------------------
  /// Reads the client size and sets viewport and orthographic projection from
  /// the view range and the object set's box.
  void setViewport();
  void updateFrustumAndMatrix();  ///< Reads back the GL matrices and viewport and recomputes the frustum planes.
  ///@{
  /// The view range: half the shorter side of the view, in world units (150 by
  /// default). setRange returns false and keeps the range outside 1e-6..1e15.
  double dRange() const { return m_dRange; }
  bool setRange(double r);
  ///@}
  bool scaleRange(double f);  ///< Multiplies the range by f; false, unchanged, when the result is out of range.
  double getPixelsPerUnit() const;  ///< Window pixels per world unit in the current view.
  double getPickPrecision() const;  ///< The pick aperture (getPickPixelPrecision pixels) in world units.
  ///@{
  /// The window pixel (top-left origin, y down) a world point is drawn at.
  CPoint world2screen(const AcGePoint3d& p) const;
  void world2screen(const AcGePoint3d& p, CPoint& out) const;
  ///@}
  void getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint pt, AcGePoint3d& nearPt, AcGePoint3d& farPt) const;  ///< World points where the eye ray through pixel pt meets the near and far planes.
  ///@{
  /// The world point under window pixel pt on the given plane.
  AcGePoint3d screen2world(CPoint pt, ProjectPlane plane) const;
  AcGePoint3d screen2world(CPoint pt, const AcGePlane& plane) const;
  ///@}
  static AcGeVector3d ScreenVectorTo3d(AcGeVector2d v, const CCamera& cam);  ///< A screen-space vector expressed in world axes of the camera cam.
  /// Five inward planes (right, left, bottom, top, near) of what is seen
  /// through the screen rectangle p1-p2, whichever corners they are.
  /// Left empty when the stored matrices cannot be inverted.
  void getFrustumPlaneFrom2Pt(const CPoint& p1, const CPoint& p2, std::vector<std::vector<double>>& planes) const;
  ///@{
  /// The matrices (16 doubles, column-major), viewport (x, y, width, height)
  /// and frustum planes (a, b, c, d each) of the last frame.
  const double* getProjectionMatrix() const { return m_projMatrix; }
  const double* getModelViewMatrix() const { return m_modelViewMatrix; }
  const int* getViewport() const { return m_viewport; }
  const std::vector<std::vector<double>>& getFrustumPlanes() const { return m_frustumPlanes; }
  ///@}

  // --- picking -------------------------------------------------------------
  /// The nearest hit under the window pixel pt: the objects the rectangle
  /// pick finds crossing the pick aperture around pt are tested with the
  /// pick ray through pt (flag: filled geometry counts, see
  /// CRenderObject::intersectRay), nearest first, equal distances in the
  /// order met, then filtered by type. True with the object's id and the
  /// hit shape's index; *extra, when given, receives the number of hits kept.
  /// False, outputs untouched, for an empty set, a pixel outside the
  /// viewport or no hit.
  bool pick(CPoint const& pt, unsigned int& objId, unsigned int& shapeIndex, PickType type, int* extra, bool flag);
  /// Rectangle selection in window pixels, cut to the viewport. With
  /// p1.x < p2.x (dragged left to right) a window selection: the objects
  /// wholly inside. Otherwise a crossing selection: the objects inside or
  /// crossing. Decided on the shapes' geometry as drawn (edges, faces in
  /// shaded modes, glyph outlines), not on boxes. Hidden objects and what
  /// the view does not show are never found. ids receives the ids in
  /// ascending order; true when there is one. A rectangle of zero width or
  /// height, an empty set or a view that cannot be inverted give false and
  /// leave ids untouched.
  bool pick(CPoint const& p1, CPoint const& p2, std::vector<unsigned int>& ids);
  /// The snap point near the window pixel pt: the kinds of getSnapMode()
  /// within aperture pixels of pt, among the objects crossing the aperture
  /// and the set's snap nodes around pt; points behind a face that the pick
  /// ray meets first by more than tolerance (world units) do not count. True
  /// with the world point and its kind. False, outputs untouched, with
  /// snapping off, aperture <= 0, pt outside the viewport, a view that
  /// cannot be inverted, or nothing in reach.
  bool snap(CPoint pt, int aperture, double tolerance, AcGePoint3d& result, CRenderObject::SnapMode& kind);
  ///@{
  /// Flags one shape of one object as hit (dashed outline) or highlighted
  /// (stippled fill); an unknown id or shape index changes nothing.
  void setHit(unsigned int objId, unsigned int shapeIndex, bool on);
  void setHighLight(unsigned int objId, unsigned int shapeIndex, bool on);
  ///@}

  // --- navigation ---------------------------------------------------------
  /// Each changes the view, then calls the scene-to-model callback; none draws.
  enum { ORBIT_FREE = 0, ORBIT_FRONT = 1, ORBIT_RIGHT = 2, ORBIT_UP = 3 };
  /// Per mille: 2000 halves the range, 500 doubles it.
  void zoom(int n);
  ///@{
  /// Zooms to the extents of the object set's box.
  void zoomE();
  void ZoomENew() { zoomE(); }
  ///@}
  /// Top view of the world rectangle a-b.
  void zoomW(const AcGePoint3d& a, const AcGePoint3d& b);
  /// The screen rectangle p1-p2 fills the view.
  void zoomW(CPoint p1, CPoint p2);
  /// pt in screen coordinates; 120 zooms in, -120 out, about the cursor.
  void mouseWheel(short delta, CPoint pt);
  /// d is the previous cursor position minus the current one.
  void mouseMove(CSize d);
  void mouseFreeRotate(CSize d, CPoint pt);  ///< Orbits about the view centre by the mouse movement d in pixels.
  /// Keeps the world z axis upright; pt is not used.
  void mouseLimitRotate(CSize d, CPoint pt);
  ///@{
  /// View history: pushCamera saves camera and range (an unchanged view is
  /// not saved again; merging pushes less than 2 s apart keep only the view
  /// before the burst); popCamera restores the last one, none: no effect.
  void pushCamera(bool bMerge);
  void popCamera();
  size_t cameraHistorySize() const { return m_cameraStack.size(); }
  ///@}

  // --- navigation beyond the basic set --------------------------------------
  /// Frames the union of the boxes of the objects `ids` (unknown ids and
  /// objects without shapes are skipped) in the current view direction, the
  /// larger screen extent filling the window less `margin` (0.1: a tenth of
  /// the half extent spare on each side). Records the view first (see
  /// pushCamera()). False, changing nothing, when no listed object has a box.
  bool zoomToObjects(const std::vector<unsigned int>& ids, double margin = 0.1);
  /// The point of the model under the window pixel pt becomes the pivot of
  /// mouseCursorRotate(); over empty space the pivot rule of the other orbits
  /// applies again. Needs the matrices of a rendered frame. True when
  /// something was hit.
  bool setCursorPivot(CPoint pt);
  /// The pivot set by setCursorPivot() into pivot (world units); false,
  /// pivot untouched, when none is set.
  bool getCursorPivot(AcGePoint3d& pivot) const;
  /// Free orbit (limit: world z kept upright) about the cursor pivot, or
  /// about the usual orbit pivot when none is set; d is the mouse move in
  /// pixels.
  void mouseCursorRotate(CSize d, bool limit);
  /// Undo that can be redone: records the current view for redoCamera(),
  /// then popCamera(); with no history, no effect. Any new view (a recorded
  /// one, or any other change of the camera or range) clears what could be
  /// redone.
  void undoCamera();
  /// Goes back to the view the last undoCamera() left, putting the current
  /// one on the history. False, changing no view, when canRedoCamera() is
  /// false.
  bool redoCamera();
  /// True when there is an undone view and the view has not changed since.
  bool canRedoCamera() const;

  // --- overlays ----------------------------------------------------------
  ///@{
  /// Overlays drawn in the current frame: the axis tripod in its corner
  /// viewport, and the orbit guide circle.
  void setCoordVP();
  void drawCoordinate();
  void draw3dOrbit();
  ///@}

  // --- state ---------------------------------------------------------------
  ///@{
  /// The bound window, GL context and device context; null before initializeRender.
  HWND getWndHandle() const { return m_hWnd; }
  HGLRC getHRC() const { return m_hRC; }
  HDC getHDC() const { return m_hDC; }
  ///@}
  ///@{
  /// The plane screen2world uses by default.
  ProjectPlane projectPlane() const { return m_projectPlane; }
  void setProjectPlane(ProjectPlane p) { m_projectPlane = p; }
  ///@}
  ///@{
  /// Client size in pixels and half extents of the view volume in world units,
  /// as set by setViewport.
  double getViewWidth() const { return m_viewWidth; }
  double getViewHeight() const { return m_viewHeight; }
  double getFrustumWidth() const { return m_frustumWidth; }
  double getFrustumHeight() const { return m_frustumHeight; }
  ///@}
  ///@{
  /// Constrains orbiting to a fixed axis (ORBIT_*); ORBIT_FREE by default.
  void SetOrbitStatus(OrbitStatus s) { m_orbitStatus = s; }
  OrbitStatus GetOrbitStatus() const { return m_orbitStatus; }
  ///@}
  ///@{
  /// The scene's camera; the scene owns it.
  CCamera* camera() { return &m_camera; }
  const CCamera* camera() const { return &m_camera; }
  ///@}
  ///@{
  /// The host's view-change callback; SetModelCam calls it now, if set.
  void SetScene2ModelFunPtr(Scene2ModelFun fn) { m_pfnScene2Model = fn; }
  void SetModelCam();
  ///@}
  ///@{
  /// Stencil shadows on or off, and the light position used by the shadow
  /// passes (four floats, copied).
  bool isShadow() const { return m_bShadow; }
  void setShadow(bool b) { m_bShadow = b; }
  const float* getLightpos() const { return m_lightPos; }
  void setLightpos(const float* p);
  ///@}
  /// Tolerates being called through a null scene pointer (gives null).
  CObjectSetMgr* getObjSetMgr();
  ///@{
  /// The object set's render mode.
  CRenderObject::RenderMode getRenderMode() const { return m_objSetMgr.getRenderMode(); }
  void setRenderMode(CRenderObject::RenderMode mode) { m_objSetMgr.setRenderMode(mode); }
  ///@}
  ///@{
  /// The object with this id (owned by the set), or null / false.
  CRenderObject* getObj(unsigned int id) const { return m_objSetMgr.getObj(id); }
  bool is_exist(unsigned int id) const { return getObj(id) != nullptr; }
  ///@}
  ///@{
  /// Mask of CRenderObject::SnapMode bits the snap() call looks for; 0 is off.
  unsigned long getSnapMode() const { return m_snapMode; }
  void setSnapMode(unsigned long mode) { m_snapMode = mode; }
  ///@}
  /// The first point of the host's current command, for snapping relative to it.
  void setSnapFirstPt(bool b, const AcGePoint3d& p) {
    m_bSnapFirstPt = b;
    m_snapFirstPt = p;
  }
  /// The first point of the host's current command; false when none is set.
  bool getSnapFirstPt(AcGePoint3d& p) const {
    p = m_snapFirstPt;
    return m_bSnapFirstPt;
  }
  ///@{
  /// Pick aperture in pixels (12 by default).
  int getPickPixelPrecision() const { return m_pickPixelPrecision; }
  void setPickPixelPrecision(int p) { m_pickPixelPrecision = p; }
  ///@}
  /// Windows colour values: red in the low byte.
  void setBkColor(unsigned long color) { m_bkColor.set(color); }
  ///@{
  /// The background colour (getBkColor packs it as a Windows colour value).
  unsigned long getBkColor() const { return m_bkColor.getColor(); }
  void getBkColor(CColor& color) const { color = m_bkColor; }
  CColor& getBkColorRef() { return m_bkColor; }
  ///@}
  ///@{
  /// Alpha given to transparent objects by the transparency pass (255 default).
  unsigned char getTransparent() const { return m_transparent; }
  void setTransparent(unsigned char a) { m_transparent = a; }
  ///@}
  ///@{
  /// A point stored for the host; the scene does not read it.
  void setOffsetPos(const AcGePoint3d& p) { m_offsetPos = p; }
  AcGePoint3d getOffsetPos() const { return m_offsetPos; }
  ///@}
  bool openglSupportVertexBufferObject() const { return m_bSupportVBO; }  ///< True when the context offers buffer objects.
  CTextureMgr* getTextureMgrPtr() { return &m_textureMgr; }  ///< The scene's texture manager (owned by the scene).
  ///@{
  /// A flag stored for the host; the engine does not read it.
  bool isBack() const { return m_bBack; }
  void setBack(bool b) { m_bBack = b; }
  ///@}
  ///@{
  /// Whether hit objects draw their grip points as dots.
  bool isDrawGrip() const { return m_bDrawGrip; }
  void setDrawGrip(bool b) { m_bDrawGrip = b; }
  ///@}
  ///@{
  /// Retained drawing (on by default): objects replay a display list of
  /// their shapes, and objects drawn as single points go in one batch.
  /// Off, every frame issues each shape's drawing calls.
  bool isRetainedDraw() const { return m_bRetainedDraw; }
  void setRetainedDraw(bool b) { m_bRetainedDraw = b; }
  ///@}
  ///@{
  /// Faster frames while the view moves: static objects and objects under
  /// about 120 pixels across are skipped.
  bool isAccelerate() const { return m_bAccelerate; }
  void setAccelerate(bool b) { m_bAccelerate = b; }
  ///@}
  unsigned long getLastRenderTime() const { return m_lastRenderTime; }  ///< Millisecond clock reading at the end of the last finish(); 0 before.
  bool GetViewRect(CRect& rc) const;  ///< (0, 0, view width, view height); false when no window is bound.

  /// Grip points of the current frame; the scene owns them.
  void addGripPt(GripPoint* grip);
  void clearGripPt();  ///< Deletes every grip point; render() does it at the start of each frame.
  /// The grip nearest to pt within the pick aperture, or null.
  GripPoint* findGripPt(const CPoint& pt) const;
  const std::list<GripPoint*>& gripPts() const { return m_gripPts; }  ///< The grip points of the current frame (owned by the scene).

  /// Objects drawn transparent when part transparency is on.
  ///@{
  /// Part transparency: when on, the objects with these ids are drawn
  /// transparent. Id 0 and ids already listed are not added twice.
  bool GetPartTrans() const { return m_bPartTrans; }
  void SetPartTrans(bool b) { m_bPartTrans = b; }
  void SetPartTransIds(const std::vector<unsigned int>& ids) { m_partTransIds = ids; }
  std::vector<unsigned int> GetPartTransIds() const { return m_partTransIds; }
  /// The same list without a copy, for the frame.
  const std::vector<unsigned int>& partTransIds() const { return m_partTransIds; }
  void AddPartTransId(unsigned int id);
  void DelPartTransId(unsigned int id);
  void ClearAllPartTransId() { m_partTransIds.clear(); }
  ///@}

  const std::vector<unsigned int>& removedDispLists() const { return m_removedDispLists; }  ///< The display lists waiting for deletion.
  const std::vector<unsigned int>& removedBuffers() const { return m_removedBuffers; }  ///< The buffer objects waiting for deletion.

  static CSceneMgr* m_currentScenePtr;  ///< The scene drawing now; see getCurrentScenePtr().
  static int g_nPixelFormat;  ///< The pixel format chosen once for the process; 0 until then.

  // --- off-screen bitmap, print queue and image export ---------------------
  // The objects' display lists live in one context at a time: each switch
  // releases them in the context that made them, and the next to draw
  // builds its own.
  /// Makes the bitmap shared by all scenes, unless there is one already: it
  /// is always landscape (the larger of w and h across) and never resized.
  /// Then this scene's context on it, which is left current. w or h not
  /// positive: no effect.
  void setDibSize(int w, int h);
  /// Draws the view into the bitmap, the axis tripod always included; the
  /// bitmap's bits hold the frame afterwards. Nothing happens without a
  /// context on the bitmap (see setDibSize()).
  void renderToDib();
  /// Drops this scene's bitmap context and the bitmap; the window's context
  /// is current again.
  void ClearDibData();
  /// The shared bitmap (empty until setDibSize()); owned by the class.
  static DIBSection* getDibPtr() { return &m_renderDib; }
  ///@{
  /// A nesting count of print jobs, for the host: push one, pop one (no
  /// effect when empty), and whether none is open.
  static void pushPrintQue() { m_printQue.push(1); }
  static void popPrintQue();
  static bool printQueEmpty() { return m_printQue.empty(); }
  ///@}
  /// Renders the view off-screen as a width x height PNG, in tiles with a
  /// context of their own, written band by band: memory stays near
  /// width x 1024 x 3 bytes plus one tile, whatever the height. The picture
  /// shows what a window of that size would (the shorter side spans twice the
  /// range); the axis tripod is drawn once, in the lower left corner, when
  /// the scene draws it. Sides up to 1,000,000 pixels. False, with the file
  /// removed, when anything fails. The window's context is current again
  /// afterwards (when there was one).
  bool renderToImageTiled(int width, int height, const char* path);
  ///@{
  /// The same picture as RGB rows from the top (3 bytes a pixel, width
  /// pixels, valid only during the call), each handed to `row` with its y
  /// (false from it stops). Tiles of tileWidth x tileHeight pixels, or chosen
  /// when 0. False when a side is out of range, row is empty, the off-screen
  /// context fails or row stopped it.
  typedef std::function<bool(int y, const unsigned char* rgb)> RowSink;
  bool renderImageRows(int width, int height, int tileWidth, int tileHeight, const RowSink& row);
  ///@}

  /// The print job nesting count behind pushPrintQue() and popPrintQue().
  static std::stack<int, std::deque<int>> m_printQue;
  /// The bitmap shared by all scenes; see getDibPtr().
  static DIBSection m_renderDib;

 private:
  struct CameraRecord {
    bool merge;
    int64_t time;  ///< seconds since the epoch
    CCamera camera;
    double range;
  };
  void copyFrom(const CSceneMgr& other);
  /// location += side * a, then += up * b.
  void moveCamera(double a, double b);
  /// Client size with an empty side counted as one pixel.
  void clientSize(int& w, int& h) const;
  AcGePoint3d orbitPivot(bool allowFixed) const;
  // Projection of the region (x, y, tw, th), y from the top, of a whole
  // picture of w x h pixels, into a viewport of the region's size; the view
  // sizes describe the whole picture.
  void setImageProjection(int w, int h, int x, int y, int tw, int th, bool moveCamera);
  // The axis tripod in a 100-pixel viewport at (vx, vy).
  void drawTripod(int vx, int vy);
  // One frame of the region (x, y, tw, th) of a w x h picture, in the
  // current context, camera not moved. Regions are drawn through the
  // projection of the span (a grid of spanW x spanH cells) they lie in,
  // offset by the viewport: tiles of one span then round exactly as one
  // frame of it would.
  void drawImageRegion(int w, int h, int x, int y, int tw, int th, int spanW, int spanH, bool tripod);
  void deleteQueuedLists();
  // Releases the objects' lists in this scene's context when one is current.
  void releaseListsInCurrent();
  bool openBitmapContext(HDC dc, HGLRC& rc);
  void dropBitmapContext();
  bool isCurrentView(const CameraRecord& r) const;

  std::vector<std::vector<double>> m_frustumPlanes;
  int m_regionSize[2] = {0, 0};  // the tile being drawn, 0 for a whole frame
  HWND m_hWnd = nullptr;
  HGLRC m_hRC = nullptr;
  HDC m_hDC = nullptr;
  ProjectPlane m_projectPlane = PLANE_XY;
  int m_viewWidth = 0;
  int m_viewHeight = 0;
  double m_frustumWidth = 0.0;
  double m_frustumHeight = 0.0;
  double m_dRange = 150.0;
  int m_bPerspective = 0;
  OrbitStatus m_orbitStatus = 0;
  CCamera m_camera;
  std::deque<CameraRecord> m_cameraStack;
  Scene2ModelFun m_pfnScene2Model = nullptr;
  bool m_bShadow = false;
  float m_lightPos[4] = {10.0f, 10.0f, 10.0f, 0.0f};
  bool m_bLightOpen = true;
  double m_projMatrix[16] = {};
  double m_modelViewMatrix[16] = {};
  int m_viewport[4] = {};
  CObjectSetMgr m_objSetMgr;
  unsigned long m_snapMode = 0;
  bool m_bSnapFirstPt = false;
  AcGePoint3d m_snapFirstPt;
  bool m_bRotateCenter = false;
  AcGePoint3d m_rotateCenter;
  int m_pickPixelPrecision = 12;
  CColor m_bkColor{0, 0, 0, 255};
  HGLRC m_hDibRC = nullptr;
  HDC m_hDibDC = nullptr;
  unsigned char m_transparent = 255;
  AcGePoint3d m_offsetPos;
  bool m_bSupportVBO = false;
  CTextureMgr m_textureMgr;
  bool m_bBack = false;
  bool m_bDrawCoordinate = true;
  bool m_bDrawGrip = false;
  bool m_bAccelerate = false;
  bool m_bRetainedDraw = true;
  unsigned long m_lastRenderTime = 0;
  std::list<GripPoint*> m_gripPts;
  bool m_bPartTrans = false;
  std::vector<unsigned int> m_partTransIds;
  std::vector<unsigned int> m_removedDispLists;
  std::vector<unsigned int> m_removedBuffers;
  // Redo list and cursor pivot of the extra navigation.
  struct ViewExtras {
    std::deque<CameraRecord> redo;
    CameraRecord redoFrom{};  // the view the last undo or redo left
    bool cursorPivot = false;
    AcGePoint3d pivot;
  } m_viewExtras;
};
