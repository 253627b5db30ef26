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

class KXRENDER_API CRenderShape {
 public:
  enum ShapeType : int32_t { kPline = 0, kPgon = 1, kText = 2, kFace = 3, kUnset = 10000 };

  CRenderShape();
  // Copies everything, deep-copies the text and face data, and starts
  // without a display list so that the copy compiles its own.
  CRenderShape(const CRenderShape& other);
  // Copies everything like the copy constructor but keeps this shape's own
  // display list.
  CRenderShape& operator=(const CRenderShape& other);
  // Moves take the display list along (growing or trimming a shape list
  // keeps every compiled list with its shape); a move-assigned shape hands
  // its old list, text and face data to the source, which frees the data.
  CRenderShape(CRenderShape&& other) noexcept;
  CRenderShape& operator=(CRenderShape&& other) noexcept;
  // Does not delete the display list: the owner releases it first.
  ~CRenderShape();

  // Resets display state for reuse; geometry, colour, tags and face data stay.
  void Init();

  // ---- geometry ----
  void set(const std::vector<AcGePoint3d>& pts, const std::vector<std::vector<AcGePoint3d>>& holes,
           ShapeType type, const CColor& clr, const AcGeVector3d& ucs, double offsetFactorScale = 1.0,
           double offsetUnitsScale = 1.0, double zOffset = 0.0);
  // Takes ownership of info; null changes nothing.
  void set(TextInfo* info, const CColor& clr, const AcGeVector3d& ucs, double = 0.0, double = 0.0,
           double = 0.0);
  // Makes the shape a face mesh; noDepth also tags it "nodepth" = "0.1".
  void setFaceType(bool noDepth = false);

  void setUcs(const AcGeVector3d& ucs) { m_ucs = ucs; }
  const AcGeVector3d& getUcs() const { return m_ucs; }
  ShapeType getShpType() const { return m_type; }
  std::vector<AcGePoint3d>& getPts() { return m_pts; }
  const std::vector<AcGePoint3d>& getPts() const { return m_pts; }
  void getPts(std::vector<AcGePoint3d>& out) const { out = m_pts; }
  std::vector<std::vector<AcGePoint3d>>& getHoles() { return m_holes; }
  const std::vector<std::vector<AcGePoint3d>>& getHoles() const { return m_holes; }
  void getHoles(std::vector<std::vector<AcGePoint3d>>& out) const { out = m_holes; }
  const TextInfo* getTextInfo() const { return m_textInfo; }
  TextInfo* getTextInfo() { return m_textInfo; }

  // ---- display attributes ----
  void setClr(const CColor& c) { m_clr.set(c.r, c.g, c.b, c.a); }
  const CColor& getClr() const { return m_clr; }
  void setShowBorder(bool b) { m_showBorder = b; }
  bool getShowBorder() const { return m_showBorder; }
  void setBorderColor(const CColor& c) { m_borderClr.set(c.r, c.g, c.b, c.a); }
  const CColor& getBorderColor() const { return m_borderClr; }
  void setBorderWidth(const double& w, bool scaled) {
    m_borderWidth = static_cast<float>(w);
    m_borderWidthScaled = scaled;
  }
  float getBorderWidth() const { return m_borderWidth; }
  bool isBorderWidthScaled() const { return m_borderWidthScaled; }
  // Also switches width scaling on: a clamp only matters for a scaled width.
  void setBorderMaxWidth(double m) {
    m_borderMaxWidth = static_cast<float>(m);
    m_borderWidthScaled = true;
  }
  float getBorderMaxWidth() const { return m_borderMaxWidth; }
  void setDotLine(bool b) { m_dotLine = b; }
  bool isDotLine() const { return m_dotLine; }
  static void setDotLineState(const CRenderObject*);
  static void backDotLineState(const CRenderObject*);
  void setTexture(const unsigned& name) {
    m_texture = name;
    m_hasTexture = true;
  }
  // Keeps the name: only the flag says whether a texture is assigned.
  void clearTexture() { m_hasTexture = false; }
  unsigned getTexture() const { return m_texture; }
  bool hasTexture() const { return m_hasTexture; }
  void setVisible(bool b) { m_visible = b; }
  bool getVisible() const { return m_visible; }
  void setHit(bool b) { m_hit = b; }
  bool getHit() const { return m_hit; }
  void setHighLight(bool b) { m_highLight = b; }
  bool getHighLight() const { return m_highLight; }
  bool isLive() const { return m_live; }

  // ---- tags ----
  bool setXdata(const CString& key, const CString& value);
  bool getXdata(const CString& key, CString& value) const;
  // The key must match exactly; the value is compared ignoring case.
  bool is(const CString& key, const CString& value) const;
  bool clearXdata(CString key);
  const std::map<CString, CString>& getXdataMap() const { return m_xdata; }

  // ---- offsets ----
  void setOffsetScale(double s);
  void setOffsetUnitScale(double s) { m_offsetUnits = static_cast<float>(m_offsetUnits * s); }
  void setZOffset(float z);
  float getOffsetFactor() const { return m_offsetFactor; }
  float getOffsetUnits() const { return m_offsetUnits; }
  float getZOffset() const { return m_zOffset; }

  // ---- triangulation, measures ----
  void divTringle();
  void calArea();
  void setArea(double a) { m_area = static_cast<float>(a); }
  double getArea() const { return m_area; }
  void calBox();
  void getBox(AcGePoint3d& min, AcGePoint3d& max) const {
    min = m_boxMin;
    max = m_boxMax;
  }
  void getSphere(AcGePoint3d& centre, double& radius) const {
    centre = m_sphereCenter;
    radius = m_sphereRadius;
  }
  void getPlanePts(std::vector<AcGePoint3d>& out) const { out = m_pts; }
  void getTriIndex(std::vector<std::vector<unsigned>>& out) const;
  const std::vector<double>& getGlPts() const { return m_glPts; }
  const std::vector<std::vector<uint16_t>>& getStrips() const { return m_strips; }
  const std::vector<float>& getTexCoords() const { return m_texCoords; }
  void initGlPts(double) {}
  // Number of triangles this shape draws (strips and face mesh).
  size_t numTriangles() const;

  // ---- face mesh ----
  bool faceIsPlane() const;
  void setFaceVertexArray(std::vector<AcGePoint3d>* v);
  void setFaceTriangleIndexArray(std::vector<int>* v);
  void setFaceNormalArray(std::vector<AcGeVector3d>* v);
  void setFaceTexCoordArray(std::vector<AcGePoint2d>* v);
  const std::vector<AcGePoint3d>* getFaceVertexArray() const { return m_meshVertices; }
  const std::vector<int>* getFaceTriangleIndexArray() const { return m_meshTriangleIndices; }
  const std::vector<AcGeVector3d>* getFaceNormalArray() const { return m_meshNormals; }
  const std::vector<AcGePoint2d>* getFaceTexCoordArray() const { return m_meshTexCoords; }
  // Sets the flag; nothing clears it.
  void setShareVertexData() { m_shareVertexData = true; }
  bool getShareVertexData() const { return m_shareVertexData; }

  // ---- hit lines (edges of a face mesh) ----
  void addHitLine(const std::vector<AcGePoint3d>& line) { m_hitLines.push_back(line); }
  const std::vector<std::vector<AcGePoint3d>>& getHitLine() const { return m_hitLines; }
  std::vector<std::vector<AcGePoint3d>>& getReservedContours() { return m_reserved; }

  // ---- hit testing ----
  // The ray runs from p1 along p2 - p1; tol is the pick tolerance in model
  // units; mode is the object's render mode (0: wire frame); solid says
  // whether filled geometry counts (a polyline is hit only when it does).
  // A face mesh answers the hit nearest to p1.
  bool intersectRay(const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& hitPt, double tol, int mode,
                    bool solid) const;
  double ptNearDistToEdge(const AcGePoint3d& pt) const;
  // Rectangle selection in window pixels. view: the model-view and
  // projection matrices (16 values each, column-major) and the viewport (4
  // values), as scene picking prepares them; the set is not needed. The
  // shape crosses the rectangle when an edge of its geometry (contours,
  // hit lines in wire frame, triangles, glyph outlines) meets it, or, in a
  // mode other than 0, when the rectangle lies within a polygon or mesh
  // face; it is inside when every point of that geometry is. Only what
  // lies between the view's near and far planes counts. A shape without
  // geometry is neither.
  bool intersectRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr* set,
                     int mode) const;
  bool allInRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr* set) const;
  // Whether the shape has geometry the rectangle tests can find.
  bool hasPickGeometry() const;
  // The same against a prepared rectangle volume (objects test many shapes).
  bool intersectVolume(const CPickVolume& volume, int mode) const;
  bool allInVolume(const CPickVolume& volume) const;

  // ---- transforms and texture mapping ----
  void transformBy(const AcGeMatrix3d& m);
  void offsetFaceVertex(double d);
  void setTextureCoord(std::vector<AcGePoint2d> uv);

  // ---- drawing ----
  void render(int mode, CRenderObject* obj, const double* viewScale, bool flag);
  void renderWireFrame(CRenderObject* obj, const double* viewScale, bool flag);
  void renderShaded_Pline(CRenderObject* obj, const double* viewScale, bool flag);
  void renderShaded_Pgon(CRenderObject* obj, const double* viewScale, bool flag);
  void renderFace(CRenderObject* obj, int mode);
  void renderText(CRenderObject* obj);
  static void glSelclr(const CColor& c);
  static void glSetBorderClr(const CColor& c);
  unsigned getFaceDisplayList() const { return m_faceDisplayList; }
  // Changes whenever geometry or drawing data is replaced (setters,
  // transforms, triangulation, copies); retained drawing keys on it.
  // Points edited in place through getPts() are seen once calBox() or
  // divTringle() is called.
  uint32_t drawStamp() const { return m_drawStamp; }
  void touchDrawStamp() { m_drawStamp = nextDrawStamp(); }
  void releaseDisplayList();
  void reValueDispList() { m_faceDisplayList = 0; }
  // The line width the drawers use: the border width, scaled by the view
  // and clamped when scaling is on.
  float lineWidth(const double* viewScale) const;

 protected:
  void initFaceData();
  void freeFaceData();
  void copyFaceData(const CRenderShape& src);
  bool isFaceDataNull() const;

 private:
  // Every plain field; S is const CRenderShape& to copy, CRenderShape to move.
  template <class S>
  void takeFields(S&& o);
  void swapOwned(CRenderShape& o) noexcept;
  static float offsetBase(float area);
  static uint32_t nextDrawStamp();
  // The triangle tree of the face mesh, built on first use.
  const CFaceMeshBvh* faceBvh() const;

  bool m_live = true;
  bool m_visible = true;
  ShapeType m_type = kUnset;
  AcGeVector3d m_ucs{0.0, 0.0, 1.0};
  std::vector<AcGePoint3d> m_pts;
  std::vector<std::vector<AcGePoint3d>> m_holes;
  // Carried and freed with the shape; the shape itself never fills it.
  std::vector<std::vector<AcGePoint3d>> m_reserved;
  CColor m_clr;
  std::vector<float> m_texCoords;
  std::vector<double> m_glPts;
  std::vector<std::vector<uint16_t>> m_strips;
  AcGePoint3d m_boxMin;
  AcGePoint3d m_boxMax;
  AcGePoint3d m_sphereCenter;
  float m_sphereRadius = 0.0f;
  bool m_hit = false;
  bool m_highLight = false;
  std::map<CString, CString> m_xdata;
  unsigned m_texture = 0;
  bool m_hasTexture = false;
  bool m_showBorder = false;
  CColor m_borderClr;
  float m_borderWidth = 1.2f;
  bool m_borderWidthScaled = false;
  float m_borderMaxWidth = 8.0f;
  float m_area = 0.0f;
  float m_offsetFactor = 0.0f;
  float m_offsetUnits = 1.0f;
  float m_zOffset = 0.0f;
  TextInfo* m_textInfo = nullptr;
  bool m_dotLine = false;
  std::vector<AcGePoint3d>* m_meshVertices = nullptr;
  std::vector<int>* m_meshTriangleIndices = nullptr;
  std::vector<AcGeVector3d>* m_meshNormals = nullptr;
  std::vector<AcGePoint2d>* m_meshTexCoords = nullptr;
  bool m_shareVertexData = false;
  std::vector<std::vector<AcGePoint3d>> m_hitLines;
  unsigned m_faceDisplayList = 0;
  uint32_t m_drawStamp = nextDrawStamp();
  // Built lazily by hit tests and dropped whenever the mesh changes; copies
  // of a shape share it, as their meshes are equal.
  mutable std::shared_ptr<const CFaceMeshBvh> m_faceBvh;
};
