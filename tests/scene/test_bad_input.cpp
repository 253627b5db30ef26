// Hostile input at every entry point that takes geometry or ids: non-finite,
// huge, signed-zero and denormal numbers, degenerate, huge and
// self-intersecting contours, unknown, deleted and exhausted ids, indices
// past the end. Nothing may crash or leave a GL error, and afterwards the
// scene still draws and picks its floor, with the object count unchanged
// where a call was refused.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "SceneFixture.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/CCamera.h"
#include "kxrender/TextInfo.h"
#include "objects/BjSnap.h"
#include "objects/ObjectHelpers.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kDenormal = std::numeric_limits<double>::denorm_min();
const double kBadValues[] = {kNaN, kInf, -kInf, 1e300, -1e300, -0.0, kDenormal};
const CColor kFloor(200, 30, 30, 255);

Pts square(double x = 0, double y = 0, double s = 10) { return {{x, y, 0}, {x + s, y, 0}, {x + s, y + s, 0}, {x, y + s, 0}}; }

// n points round a circle, or (star) jumping 7/16 of a turn each step so
// that every edge crosses many others.
Pts ring(size_t n, bool star) {
  Pts p;
  p.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    const double a = 2 * M_PI * double(i) / double(n) * (star ? double(n) * 7.0 / 16.0 : 1.0);
    p.emplace_back(50 * std::cos(a), 50 * std::sin(a), 0);
  }
  return p;
}

// The contours a shape is fed: degenerate, huge, self-intersecting, and a
// square with one coordinate replaced by each bad value.
std::vector<std::pair<std::string, Pts>> hostileContours() {
  std::vector<std::pair<std::string, Pts>> c = {
      {"empty", {}},
      {"one point", {{1, 2, 0}}},
      {"two equal points", {{1, 2, 0}, {1, 2, 0}}},
      {"three equal points", {{1, 2, 0}, {1, 2, 0}, {1, 2, 0}}},
      {"collinear", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}},
      {"bow tie", {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}}},
      {"70000-vertex circle", ring(70000, false)},
      {"70000-vertex star", ring(70000, true)},
  };
  for (double v : kBadValues)
    for (int coord = 0; coord < 3; ++coord) {
      Pts p = square();
      p[2][coord] = v;
      c.push_back({"square with coordinate " + std::to_string(coord) + " = " + std::to_string(v), p});
    }
  return c;
}

class BadInput : public SceneFixture {
 protected:
  void SetUp() override {
    open(64, 64);
    floorId = set().addObject(rectObject(-1e4, -1e4, 1e4, 1e4, -1, kFloor));
    deletedId = set().addObject(rectObject(0, 0, 1, 1));
    set().delObject(deletedId);
    frame();
    floorPixel = pixel(32, 32);
    ASSERT_EQ(floorPixel.size(), 4u);
    objects = set().numObjs();
  }

  // The view is finite, the floor fills the middle of the frame and is what
  // a pick there finds, and the set holds `expected` objects.
  void expectUsable(const std::string& row, size_t expected) {
    SCOPED_TRACE(row);
    const CCamera& cam = *scene.camera();
    for (const AcGeVector3d& v : {cam.GetVLocation(), cam.GetVForward(), cam.GetVUp()})
      EXPECT_TRUE(std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z));
    EXPECT_TRUE(std::isfinite(scene.dRange()) && scene.dRange() > 0) << scene.dRange();
    EXPECT_EQ(set().numObjs(), expected);
    // Back to the starting view: what follows checks the objects, not it.
    scene.camera()->ReSet(AcGeVector3d(0, 0, 100), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
    scene.setRange(150);
    frame();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(pixel(32, 32), floorPixel);
    unsigned id = 0, shape = 99;
    EXPECT_TRUE(scene.pick(CPoint(32, 32), id, shape, 0, nullptr, true));
    EXPECT_EQ(id, floorId);
  }

  // Adds an object, draws and picks with it in the scene, removes it.
  void exercise(const std::string& row, CRenderObject* o) {
    SCOPED_TRACE(row);
    const unsigned id = set().addObject(o);
    ASSERT_NE(id, 0u);
    scene.render();
    unsigned hitId = 0, shape = 0;
    scene.pick(CPoint(32, 32), hitId, shape, 0, nullptr, true);
    std::vector<unsigned> ids;
    scene.pick(CPoint(0, 0), CPoint(63, 63), ids);
    AcGePoint3d at;
    CRenderObject::SnapMode kind;
    scene.snap(CPoint(32, 32), 10, 0.5, at, kind);
    scene.zoomE();
    set().delObject(id);
    expectUsable(row, objects);
  }

  std::vector<uint8_t> floorPixel;
  unsigned floorId = 0, deletedId = 0;
  size_t objects = 0;
};

TEST_F(BadInput, ShapesFromHostileContours) {
  for (const auto& c : hostileContours())
    for (CRenderShape::ShapeType kind : {CRenderShape::kPgon, CRenderShape::kPline}) {
      const std::string row = c.first + (kind == CRenderShape::kPgon ? " polygon" : " polyline");
      CRenderShape outline, hole;
      outline.set(c.second, {}, kind, CColor(0, 200, 0, 255), AcGeVector3d(0, 0, 1));
      outline.addHitLine(c.second);
      exercise(row, objectOf({outline}));
      if (kind == CRenderShape::kPgon && c.second.size() < 1000) {
        hole.set(square(-100, -100, 200), {c.second}, kind, CColor(0, 200, 0, 255), AcGeVector3d(0, 0, 1));
        exercise(row + " as a hole", objectOf({hole}));
      }
    }
}

TEST_F(BadInput, ShapesWithHostileNormalsOffsetsAndText) {
  // An area beyond a float's range still gives a finite polygon offset.
  CRenderShape big;
  big.set({{0, 0, 0}, {1e20, 0, 0}, {0, 1e20, 0}}, {}, CRenderShape::kPgon, CColor(), AcGeVector3d(0, 0, 1));
  big.calArea();
  big.setOffsetScale(1.0);
  EXPECT_TRUE(std::isfinite(big.getArea()) && std::isfinite(big.getOffsetFactor())) << big.getArea();
  for (const AcGeVector3d& n : {AcGeVector3d(0, 0, 0), AcGeVector3d(-0.0, -0.0, -0.0)}) {
    CRenderShape s;
    s.set(square(), {}, CRenderShape::kPgon, CColor(), n);
    exercise("zero normal " + std::to_string(n.x), objectOf({s}));
  }
  for (double v : kBadValues) {
    const std::string value = std::to_string(v);
    CRenderShape normal, offsets, text;
    normal.set(square(), {}, CRenderShape::kPgon, CColor(), AcGeVector3d(v, 0, 1));
    exercise("normal " + value, objectOf({normal}));
    offsets.set(square(), {}, CRenderShape::kPgon, CColor(), AcGeVector3d(0, 0, 1), v, v, v);
    offsets.setBorderWidth(v, true);
    offsets.setBorderMaxWidth(v);
    offsets.setShowBorder(true);
    offsets.setOffsetScale(v);
    offsets.setZOffset(float(v));
    exercise("offsets and border " + value, objectOf({offsets}));
    TextInfo* t = new TextInfo;
    t->text = "W-1";
    t->height = v;
    t->position = AcGePoint3d(v, 0, 0);
    t->dir1 = AcGeVector3d(v, 0, 0);
    t->dir2 = AcGeVector3d(0, 1, 0);
    text.set(t, CColor(), AcGeVector3d(0, 0, 1));
    exercise("text at " + value, objectOf({text}));
  }
  CRenderShape none;
  none.set(static_cast<TextInfo*>(nullptr), CColor(), AcGeVector3d(0, 0, 1));
  exercise("null text", objectOf({none}));
}

TEST_F(BadInput, FaceMeshesWithHostileArrays) {
  struct Row {
    const char* name;
    Pts vertices;
    std::vector<int> triangles;
    size_t normals;  // how many normals to give
    bool null;       // null arrays instead: allowed, they clear
  } rows[] = {
      {"no vertices", {}, {0, 1, 2}, 0},
      {"indices past the end", square(), {0, 1, 7}, 4},
      {"negative indices", square(), {0, -1, 2}, 4},
      {"index count not a multiple of 3", square(), {0, 1, 2, 3}, 4},
      {"fewer normals than vertices", square(), {0, 1, 2}, 1},
      {"no normals", square(), {0, 1, 2}, 0},
      {"non-finite vertex", {{kNaN, 0, 0}, {kInf, 1, 0}, {0, -kInf, 0}}, {0, 1, 2}, 3},
      {"huge vertex", {{1e300, 0, 0}, {-1e300, 1, 0}, {0, 1e300, 0}}, {0, 1, 2}, 3},
      {"null arrays", {}, {}, 0, true},
  };
  for (const Row& r : rows) {
    CRenderShape s;
    s.setFaceType(false);
    Pts v = r.vertices;
    std::vector<int> t = r.triangles;
    std::vector<AcGeVector3d> n(r.normals, AcGeVector3d(0, 0, 1));
    std::vector<AcGePoint2d> uv(r.normals, AcGePoint2d(kNaN, 0));
    s.setFaceVertexArray(r.null ? nullptr : &v);
    s.setFaceTriangleIndexArray(r.null ? nullptr : &t);
    s.setFaceNormalArray(r.null ? nullptr : &n);
    s.setFaceTexCoordArray(r.null ? nullptr : &uv);
    s.calBox();
    exercise(r.name, objectOf({s}));
  }
  exercise("no shapes", new CRenderObject);
}

TEST_F(BadInput, ObjectEditsWithHostileValues) {
  const auto live = [&] { return rectObject(0, 0, 5, 5, 1, CColor(0, 0, 200, 255)); };
  const std::pair<std::string, void (*)(CRenderObject*, double)> edits[] = {
      {"move ", [](CRenderObject* o, double v) { o->move(AcGeVector3d(v, v, 0)); }},
      {"rotate ", [](CRenderObject* o, double v) { o->rotate(AcGePoint3d(v, 0, 0), v); }},
      {"mirror ",
       [](CRenderObject* o, double v) { o->mirror(AcGeLine3d(AcGePoint3d(v, 0, 0), AcGePoint3d(1, v, 0))); }},
      {"max units per pixel and snap points ",
       [](CRenderObject* o, double v) {
         o->setMaxUnitsPerPixel(v);
         o->setSnapPoints({AcGePoint3d(v, v, v)});
       }},
      {"ray ", [](CRenderObject* o, double v) {
         double distance = 7;
         unsigned shape = 7;
         AcGePoint3d hit;
         o->intersectRay(AcGePoint3d(v, 0, 10), AcGePoint3d(0, v, -10), v, false, distance, hit, shape);
       }}};
  for (double v : kBadValues)
    for (const auto& e : edits) {
      CRenderObject* o = live();
      e.second(o, v);
      exercise(e.first + std::to_string(v), o);
    }
  // Indices past the end and empty view data are refused.
  CRenderObject* o = live();
  o->setShapeColor(UINT_MAX, CColor(1, 2, 3, 4));
  EXPECT_FALSE(o->getShapeHighLight(UINT_MAX));
  o->getShapeColor(9);
  o->getShapeBorderColor(9);
  EXPECT_FALSE(o->intersectRect(CRect(0, 0, 10, 10), {}));
  EXPECT_FALSE(o->allInRect(CRect(0, 0, 10, 10), {{1, 2}, {}}));
  exercise("indices past the end", o);
}

TEST_F(BadInput, UnknownAndDeletedIdsAreRefused) {
  const unsigned bad[] = {0u, deletedId, 999999u, UINT_MAX};
  for (unsigned id : bad) {
    EXPECT_EQ(set().getObj(id), nullptr);
    set().delObject(id);
    set().delObject(std::vector<unsigned>{id, id});
    set().delStaticObject(id);
    set().setStaticObjectVisible(id, false);
    set().snapDataChanged(id);
    scene.setHit(id, 0, true);
    scene.setHighLight(id, 0, true);
    expectUsable("id " + std::to_string(id), objects);
  }
  EXPECT_EQ(set().addStaticObject(nullptr), 0u);
  set().updateSearchTree(nullptr);
  expectUsable("null objects", objects);
}

TEST_F(BadInput, ViewCallsAndSetQueriesWithHostileValues) {
  for (double v : kBadValues) {
    // setRange and scaleRange: SceneProjection.RangeLimits.
    const std::string value = std::to_string(v);
    scene.zoomW(AcGePoint3d(v, 0, 0), AcGePoint3d(1, v, 0));
    scene.world2screen(AcGePoint3d(v, -v, v));
    scene.screen2world(CPoint(32, 32), AcGePlane(AcGePoint3d(v, 0, 0), AcGeVector3d(0, v, 1)));
    scene.setOffsetPos(AcGePoint3d(v, v, v));
    scene.setSnapFirstPt(true, AcGePoint3d(v, 0, 0));
    const float light[4] = {float(v), 1, float(v), 0};
    scene.setLightpos(light);
    expectUsable("zoomW world and points " + value, objects);
    scene.camera()->ReSet(AcGeVector3d(v, 0, 100), AcGeVector3d(0, v, 0), AcGeVector3d(0, 0, v));
    scene.SetModelCam();
    scene.camera()->MoveCameraForward(v);
    scene.camera()->RotateCaremaLocalX(v);
    scene.camera()->RotateCaremaUp(v, AcGePoint3d(v, 0, 0));
    scene.render();
    expectUsable("camera and its moves " + value, objects);
    std::vector<CRenderObject*> found;
    set().getInRectObjs(AcGePoint2d(v, 0), AcGePoint2d(0, v), found);
    std::vector<CSnapNode> nodes;
    set().getSnapNodes(AcGePoint2d(v, v), AcGePoint2d(-v, -v), nodes);
    set().pushAssistPt(AcGePoint3d(v, v, v), 1);
    set().clearAssistPt(1);
    const std::vector<std::vector<double>> planes = {{v, v, v, v}, {1, 2}, {}};
    set().getObjsInFrustum(found, &planes);
    expectUsable("set queries " + value, objects);
  }
  const CPoint far[] = {CPoint(INT_MIN, INT_MAX), CPoint(INT_MAX, INT_MIN), CPoint(32, 32)};
  for (const CPoint& a : far) {
    scene.zoomW(a, CPoint(32, 32));
    scene.zoomW(a, a);
    scene.zoom(a.x);
    scene.mouseWheel(SHRT_MIN, a);
    scene.mouseWheel(SHRT_MAX, a);
    scene.mouseMove(CSize(a.x, a.y));
    scene.mouseFreeRotate(CSize(a.x, a.y), a);
    scene.mouseLimitRotate(CSize(a.y, a.x), a);
    scene.screen2world(a, CSceneMgr::PLANE_XY);
    scene.screen2world(a, CSceneMgr::ProjectPlane(77));
    std::vector<std::vector<double>> planes;
    scene.getFrustumPlaneFrom2Pt(a, a, planes);
    unsigned id = 0, shape = 0;
    int extra = 0;
    scene.pick(a, id, shape, 0, &extra, true);
    std::vector<unsigned> ids;
    scene.pick(a, CPoint(a.x == INT_MIN ? INT_MAX : -a.x, a.y == INT_MIN ? INT_MAX : -a.y), ids);
    AcGePoint3d at;
    CRenderObject::SnapMode kind;
    scene.snap(a, INT_MAX, kNaN, at, kind);
    scene.snap(a, -1, kInf, at, kind);
    expectUsable("screen point " + std::to_string(a.x), objects);
  }
  scene.setLightpos(nullptr);
  scene.setPickPixelPrecision(INT_MIN);
  scene.setRenderMode(CRenderObject::RenderMode(99));
  scene.render();
  // A mode the engine does not know draws nothing; a known one draws again.
  scene.setRenderMode(CRenderObject::RenderMode(2));
  expectUsable("empty camera stack, null light, unknown mode", objects);
}

}  // namespace
