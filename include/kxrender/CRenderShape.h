#pragma once
// One drawable primitive of a render object: a polyline, a planar polygon
// with holes, a text, or a pre-triangulated face mesh, with the data derived
// for drawing (strips, area, box) and its display attributes and tags.
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"
#include "kxrender/TextInfo.h"

class CFaceMeshBvh;
class CObjectSetMgr;
class CPickVolume;
class CRect;
class CRenderObject;

/// One drawable shape of a render object: a polyline, a planar polygon with
/// holes, a text or a face mesh, with its colour, border, texture, selection
/// flags and key/value tags. Coordinates are world units. The shape compiles
/// its own display list on first draw and hands it to the scene's deletion
/// queue when it goes.
class KXRENDER_API CRenderShape {
 public:
  /// Polyline, polygon with holes, text, face mesh; kUnset before set().
  enum ShapeType : int32_t { kPline = 0, kPgon = 1, kText = 2, kFace = 3, kUnset = 10000 };

  CRenderShape();
  /// Copies everything, deep-copies the text and face data, and starts
  /// without a display list so that the copy compiles its own.
  CRenderShape(const CRenderShape& other);
  /// Copies everything like the copy constructor but keeps this shape's own
  /// display list.
  CRenderShape& operator=(const CRenderShape& other);
  /// Moves take the display list along (growing or trimming a shape list
  /// keeps every compiled list with its shape); a move-assigned shape hands
  /// its old list, text and face data to the source, which frees the data.
  CRenderShape(CRenderShape&& other) noexcept;
  CRenderShape& operator=(CRenderShape&& other) noexcept;  ///< See the move constructor.
  /// Does not delete the display list: the owner releases it first.
  ~CRenderShape();

  /// Resets display state for reuse; geometry, colour, tags and face data stay.
  void Init();

  // ---- geometry ----
  /// Makes the shape a polyline (kPline) or polygon (kPgon) through pts, with
  /// holes for a polygon, colour clr and plane normal ucs; the scales and
  /// zOffset tune the depth offset that keeps coplanar shapes apart.
  void set(const std::vector<AcGePoint3d>& pts, const std::vector<std::vector<AcGePoint3d>>& holes,
           ShapeType type, const CColor& clr, const AcGeVector3d& ucs, double offsetFactorScale = 1.0,
           double offsetUnitsScale = 1.0, double zOffset = 0.0);
  /// Takes ownership of info; null changes nothing.
  void set(TextInfo* info, const CColor& clr, const AcGeVector3d& ucs, double = 0.0, double = 0.0,
           double = 0.0);
  /// Makes the shape a face mesh; noDepth also tags it "nodepth" = "0.1".
  void setFaceType(bool noDepth = false);

  ///@{
  /// The plane normal of a polygon or text (unit vector).
  void setUcs(const AcGeVector3d& ucs) { m_ucs = ucs; }
  const AcGeVector3d& getUcs() const { return m_ucs; }
  ///@}
  ShapeType getShpType() const { return m_type; }  ///< The kind of shape.
  ///@{
  /// The outline points.
  std::vector<AcGePoint3d>& getPts() { return m_pts; }
  const std::vector<AcGePoint3d>& getPts() const { return m_pts; }
  void getPts(std::vector<AcGePoint3d>& out) const { out = m_pts; }
  ///@}
  ///@{
  /// The holes of a polygon, one point list each.
  std::vector<std::vector<AcGePoint3d>>& getHoles() { return m_holes; }
  const std::vector<std::vector<AcGePoint3d>>& getHoles() const { return m_holes; }
  void getHoles(std::vector<std::vector<AcGePoint3d>>& out) const { out = m_holes; }
  ///@}
  ///@{
  /// The text record of a text shape (owned by the shape), or null.
  const TextInfo* getTextInfo() const { return m_textInfo; }
  TextInfo* getTextInfo() { return m_textInfo; }
  ///@}

  // ---- display attributes ----
  ///@{
  /// The fill or line colour.
  void setClr(const CColor& c) { m_clr.set(c.r, c.g, c.b, c.a); }
  const CColor& getClr() const { return m_clr; }
  ///@}
  ///@{
  /// Whether a polygon's outline is drawn, and in which colour.
  void setShowBorder(bool b) { m_showBorder = b; }
  bool getShowBorder() const { return m_showBorder; }
  // The outline and texture fields live in the rare block; a shape without
  // one has the defaults, read here without a call: the object pass reads
  // them for every shape in every frame.
  void setBorderColor(const CColor& c) {
    if (m_rare || c != CColor::whiteClr) rare().borderClr = c;
  }
  const CColor& getBorderColor() const { return m_rare ? m_rare->borderClr : CColor::whiteClr; }
  ///@}
  ///@{
  /// Border width in pixels, or in world units scaled with the view when scaled.
  void setBorderWidth(const double& w, bool scaled) {
    const float width = static_cast<float>(w);
    if (!m_rare && width == kBorderWidth && !scaled) return;  // the default: nothing to hold
    rare().borderWidth = width;
    rare().borderWidthScaled = scaled;
  }
  float getBorderWidth() const { return m_rare ? m_rare->borderWidth : kBorderWidth; }
  bool isBorderWidthScaled() const { return m_rare && m_rare->borderWidthScaled; }
  ///@}
  /// Also switches width scaling on: a clamp only matters for a scaled width.
  void setBorderMaxWidth(double m) {
    rare().borderMaxWidth = static_cast<float>(m);
    rare().borderWidthScaled = true;
  }
  /// The clamp of a scaled border width, in pixels.
  float getBorderMaxWidth() const { return m_rare ? m_rare->borderMaxWidth : kBorderMaxWidth; }
  ///@{
  /// Draw the lines dotted.
  void setDotLine(bool b) { m_dotLine = b; }
  bool isDotLine() const { return m_dotLine; }
  ///@}
  ///@{
  /// Switch the dotted line stipple on for drawing, and back off.
  static void setDotLineState(const CRenderObject*);
  static void backDotLineState(const CRenderObject*);
  ///@}
  /// Assigns a texture name from CTextureMgr; the texture manager owns it.
  void setTexture(const unsigned& name) {
    rare().texture = name;
    rare().hasTexture = true;
  }
  /// Keeps the name: only the flag says whether a texture is assigned.
  void clearTexture() {
    if (m_rare) m_rare->hasTexture = false;
  }
  ///@{
  /// The texture name, and whether one is assigned.
  unsigned getTexture() const { return m_rare ? m_rare->texture : 0; }
  bool hasTexture() const { return m_rare && m_rare->hasTexture; }
  ///@}
  ///@{
  /// Hidden shapes are neither drawn nor picked.
  void setVisible(bool b) { m_visible = b; }
  bool getVisible() const { return m_visible; }
  ///@}
  ///@{
  /// Selection flags: hit draws a dashed outline, highlight a stippled fill.
  void setHit(bool b) { m_hit = b; }
  bool getHit() const { return m_hit; }
  void setHighLight(bool b) { m_highLight = b; }
  bool getHighLight() const { return m_highLight; }
  ///@}
  bool isLive() const { return m_live; }  ///< Liveness flag kept for hosts; Init sets it.

  // ---- tags ----
  /// Key/value tags: setXdata adds or replaces (false for an empty key),
  /// getXdata reads (false when absent), clearXdata removes (false when absent).
  bool setXdata(const CString& key, const CString& value);
  bool getXdata(const CString& key, CString& value) const;  ///< See setXdata.
  /// The key must match exactly; the value is compared ignoring case.
  bool is(const CString& key, const CString& value) const;
  bool clearXdata(CString key);  ///< See setXdata.
  const std::map<CString, CString>& getXdataMap() const { return rareOrNone().xdata; }  ///< Every tag.

  // ---- offsets ----
  ///@{
  /// Depth offset (polygon offset factor and units, and a z shift) that draws
  /// coplanar shapes in a stable order.
  void setOffsetScale(double s);
  void setOffsetUnitScale(double s) { m_offsetUnits = static_cast<float>(m_offsetUnits * s); }
  void setZOffset(float z);
  float getOffsetFactor() const { return m_offsetFactor; }
  float getOffsetUnits() const { return m_offsetUnits; }
  float getZOffset() const { return m_zOffset; }
  ///@}

  // ---- triangulation, measures ----
  void divTringle();  ///< Triangulates a polygon with its holes into strips (done on first draw).
  ///@{
  /// The polygon's area in square world units (holes subtracted).
  void calArea();
  void setArea(double a) { m_area = static_cast<float>(a); }
  double getArea() const { return m_area; }
  ///@}
  void calBox();  ///< Recomputes the box from the points.
  /// The shape's box and bounding sphere (world units).
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_boxMin;
    max = m_boxMax;
  }
  /// The bounding sphere: that of the box, or the one the box had before
  /// Init cleared it.
  void getSphere(AcGePoint3d& centre, double& radius) const;
  void getPlanePts(std::vector<AcGePoint3d>& out) const { out = m_pts; }  ///< The outline points.
  void getTriIndex(std::vector<std::vector<unsigned>>& out) const;  ///< Triangles of the triangulation, three point indices each.
  ///@{
  /// Triangulation as drawn: vertex array (x, y, z), strips of indices into it,
  /// texture coordinates (u, v).
  const std::vector<double>& getGlPts() const { return m_glPts; }
  const std::vector<std::vector<uint16_t>>& getStrips() const { return m_strips; }
  const std::vector<float>& getTexCoords() const { return rareOrNone().texCoords; }
  ///@}
  void initGlPts(double) {}  ///< Kept for hosts; does nothing.
  /// Number of triangles this shape draws (strips and face mesh).
  size_t numTriangles() const;

  // ---- face mesh ----
  bool faceIsPlane() const;  ///< True when every face-mesh vertex lies in one plane.
  /// Face mesh data: vertices, triangle indices (three per triangle), normals
  /// and texture coordinates. The shape copies each vector (null changes
  /// nothing); after setShareVertexData it keeps the caller's pointer
  /// instead, and the caller keeps the vector alive.
  void setFaceVertexArray(std::vector<AcGePoint3d>* v);
  ///@{
  /// See setFaceVertexArray.
  void setFaceTriangleIndexArray(std::vector<int>* v);
  void setFaceNormalArray(std::vector<AcGeVector3d>* v);
  void setFaceTexCoordArray(std::vector<AcGePoint2d>* v);
  ///@}
  ///@{
  /// The face mesh data, or null.
  const std::vector<AcGePoint3d>* getFaceVertexArray() const { return meshVertices(); }
  const std::vector<int>* getFaceTriangleIndexArray() const { return meshTriangleIndices(); }
  const std::vector<AcGeVector3d>* getFaceNormalArray() const { return meshNormals(); }
  const std::vector<AcGePoint2d>* getFaceTexCoordArray() const { return meshTexCoords(); }
  ///@}
  /// Sets the flag; nothing clears it.
  void setShareVertexData() { m_shareVertexData = true; }
  bool getShareVertexData() const { return m_shareVertexData; }  ///< True after setShareVertexData.

  // ---- hit lines (edges of a face mesh) ----
  ///@{
  /// Extra lines drawn and tested in wire frame (for example a face's edges).
  void addHitLine(const std::vector<AcGePoint3d>& line) { rare().hitLines.push_back(line); }
  const std::vector<std::vector<AcGePoint3d>>& getHitLine() const { return rareOrNone().hitLines; }
  ///@}
  std::vector<std::vector<AcGePoint3d>>& getReservedContours() { return rare().reserved; }  ///< Contours kept for the host; the engine does not read them.

  // ---- hit testing ----
  /// The ray runs from p1 along p2 - p1; tol is the pick tolerance in model
  /// units; mode is the object's render mode (0: wire frame); solid says
  /// whether filled geometry counts (a polyline is hit only when it does).
  /// A face mesh answers the hit nearest to p1.
  bool intersectRay(const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& hitPt, double tol, int mode,
                    bool solid) const;
  double ptNearDistToEdge(const AcGePoint3d& pt) const;  ///< Distance from pt to the nearest outline, hole or hit-line edge (0 for a polyline).
  /// Rectangle selection in window pixels. view: the model-view and
  /// projection matrices (16 values each, column-major) and the viewport (4
  /// values), as scene picking prepares them; the set is not needed. The
  /// shape crosses the rectangle when an edge of its geometry (contours,
  /// hit lines in wire frame, triangles, glyph outlines) meets it, or, in a
  /// mode other than 0, when the rectangle lies within a polygon or mesh
  /// face; it is inside when every point of that geometry is. Only what
  /// lies between the view's near and far planes counts. A shape without
  /// geometry is neither.
  bool intersectRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr* set,
                     int mode) const;
  bool allInRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr* set) const;  ///< See intersectRect.
  /// Whether the shape has geometry the rectangle tests can find.
  bool hasPickGeometry() const;
  /// The same against a prepared rectangle volume (objects test many shapes).
  bool intersectVolume(const CPickVolume& volume, int mode) const;
  bool allInVolume(const CPickVolume& volume) const;  ///< See intersectVolume.

  // ---- transforms and texture mapping ----
  void transformBy(const AcGeMatrix3d& m);  ///< Applies m to points, holes, normal, text and mesh; drops the display list.
  void offsetFaceVertex(double d);  ///< Moves the mesh vertices d world units along their normals.
  void setTextureCoord(std::vector<AcGePoint2d> uv);  ///< Texture coordinates of the outline then hole points, in order; drawn vertices take those of the point they sit on.

  // ---- drawing ----
  /// Draws the shape into the current frame in render mode `mode` (0 wire
  /// frame); obj is the owning object. Called by CRenderObject::render.
  void render(int mode, CRenderObject* obj, const double* viewScale, bool flag);
  ///@{
  /// The drawers render() chooses from by mode and shape kind.
  void renderWireFrame(CRenderObject* obj, const double* viewScale, bool flag);
  void renderShaded_Pline(CRenderObject* obj, const double* viewScale, bool flag);
  void renderShaded_Pgon(CRenderObject* obj, const double* viewScale, bool flag);
  void renderFace(CRenderObject* obj, int mode);
  void renderText(CRenderObject* obj);
  ///@}
  ///@{
  /// Set the GL colour of selection feedback (contrast of c) and of borders.
  static void glSelclr(const CColor& c);
  static void glSetBorderClr(const CColor& c);
  ///@}
  ///@{
  /// The compiled display list (0: none); release hands it to the scene's
  /// queue, reValueDispList forgets it without deleting.
  unsigned getFaceDisplayList() const { return m_faceDisplayList; }
  // Changes whenever geometry or drawing data is replaced (setters,
  // transforms, triangulation, copies); retained drawing keys on it.
  // Points edited in place through getPts() are seen once calBox() or
  // divTringle() is called.
  uint32_t drawStamp() const { return m_drawStamp; }
  /// True once setZOffset has moved a polygon's triangulated vertices off
  /// its outline (and so out of its box); false again when they are rebuilt.
  bool isFillLifted() const { return m_fillLifted; }
  void touchDrawStamp() { m_drawStamp = nextDrawStamp(); }
  void releaseDisplayList();
  void reValueDispList() { m_faceDisplayList = 0; }
  ///@}
  /// The line width the drawers use: the border width, scaled by the view
  /// and clamped when scaling is on.
  float lineWidth(const double* viewScale) const;

 protected:
  ///@{
  /// Allocates, frees and deep-copies the face mesh data.
  void initFaceData();
  void freeFaceData();
  void copyFaceData(const CRenderShape& src);
  bool isFaceDataNull() const;
  ///@}

 private:
  /// Every plain field; S is const CRenderShape& to copy, CRenderShape to move.
  template <class S>
  void takeFields(S&& o);
  void swapOwned(CRenderShape& o) noexcept;
  static float offsetBase(float area);
  static uint32_t nextDrawStamp();
  /// The triangle tree of the face mesh, built on first use.
  const CFaceMeshBvh* faceBvh() const;

  /// Fields few shapes use, allocated on first write: a tower's shapes are
  /// nearly all plain polygons, and every byte here is paid once per shape.
  /// The mesh's triangle tree lives here too, so it moves with its mesh.
  static constexpr float kBorderWidth = 1.2f;
  static constexpr float kBorderMaxWidth = 8.0f;
  struct Rare {
    std::vector<std::vector<AcGePoint3d>> reserved;  ///< carried and freed; the shape never fills it
    // Outline and texture: most shapes keep the defaults.
    CColor borderClr;
    float borderWidth = kBorderWidth;
    float borderMaxWidth = kBorderMaxWidth;
    bool borderWidthScaled = false;
    bool hasTexture = false;
    unsigned texture = 0;
    /// Init clears the box but keeps the sphere, which is otherwise the
    /// box's own: kept here only then.
    bool sphereKept = false;
    float sphereRadius = 0.0f;
    AcGePoint3d sphereCenter;
    std::map<CString, CString> xdata;
    std::vector<float> texCoords;
    std::vector<std::vector<AcGePoint3d>> hitLines;
    /// Built lazily by hit tests and dropped whenever the mesh changes;
    /// copies of a shape share it, as their meshes are equal.
    std::shared_ptr<const CFaceMeshBvh> faceBvh;
  };
  Rare& rare() const;
  struct MeshArrays {
    std::vector<AcGePoint3d>* vertices = nullptr;
    std::vector<int>* triangleIndices = nullptr;
    std::vector<AcGeVector3d>* normals = nullptr;
    std::vector<AcGePoint2d>* texCoords = nullptr;
  };
  MeshArrays& mesh();
  std::vector<AcGePoint3d>* meshVertices() const { return m_mesh ? m_mesh->vertices : nullptr; }
  std::vector<int>* meshTriangleIndices() const { return m_mesh ? m_mesh->triangleIndices : nullptr; }
  std::vector<AcGeVector3d>* meshNormals() const { return m_mesh ? m_mesh->normals : nullptr; }
  std::vector<AcGePoint2d>* meshTexCoords() const { return m_mesh ? m_mesh->texCoords : nullptr; }
  const Rare& rareOrNone() const { return m_rare ? *m_rare : noRare(); }
  static const Rare& noRare();

  // Largest first, so that the flags pack at the end.
  std::vector<AcGePoint3d> m_pts;
  std::vector<std::vector<AcGePoint3d>> m_holes;
  std::vector<double> m_glPts;
  std::vector<std::vector<uint16_t>> m_strips;
  AcGeVector3d m_ucs{0.0, 0.0, 1.0};
  AcGePoint3d m_boxMin;
  AcGePoint3d m_boxMax;
  CColor m_clr;
  TextInfo* m_textInfo = nullptr;
  /// The face mesh's arrays, allocated when the first is set: only face
  /// shapes pay for them.
  std::unique_ptr<MeshArrays> m_mesh;
  /// Mutable: the triangle tree is made on first use by const hit tests.
  mutable std::unique_ptr<Rare> m_rare;
  ShapeType m_type = kUnset;
  float m_area = 0.0f;
  float m_offsetFactor = 0.0f;
  float m_offsetUnits = 1.0f;
  float m_zOffset = 0.0f;
  unsigned m_faceDisplayList = 0;
  uint32_t m_drawStamp = nextDrawStamp();
  bool m_live = true;
  bool m_visible = true;
  bool m_hit = false;
  bool m_highLight = false;
  bool m_showBorder = false;
  bool m_dotLine = false;
  bool m_shareVertexData = false;
  bool m_fillLifted = false;
  /// Slack that makes a shape exactly four cache lines (256 bytes): the
  /// object pass reads nearly every field of every shape each frame, and at
  /// 248 bytes, straddling lines unevenly, its steady frame was 10 % slower.
  [[maybe_unused]] uint64_t m_spare = 0;
};
