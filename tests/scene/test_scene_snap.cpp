// Scene snap in a real view: each kind on hand-built objects, the order
// among kinds, hidden points, instanced exact data, and bad input.
#include <cmath>
#include <functional>

#include "TopViewFixture.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeLineSeg3d.h"

namespace {

// The closed outline as snap segments.
std::vector<AcGeCurve3d*> outline(const Pts& pts) {
  std::vector<AcGeCurve3d*> out;
  for (size_t i = 0; i < pts.size(); ++i) out.push_back(new AcGeLineSeg3d(pts[i], pts[(i + 1) % pts.size()]));
  return out;
}

}  // namespace

class SceneSnap : public TopViewFixture {
 public:
  CRenderObject& add(CRenderObject* o) {
    set().addObject(o);
    return *o;
  }
  // An object through `pts` snapping to their closed outline.
  CRenderObject& traced(const Pts& pts, CRenderShape::ShapeType kind = CRenderShape::kPline) {
    CRenderObject& o = add(object(pts, kind));
    o.setSnapCurves(outline(pts));
    return o;
  }
  struct Snapped { bool ok; AcGePoint3d pt; CRenderObject::SnapMode kind; };
  Snapped snapAt(int x, int y, unsigned long mask, int aperture = 12, double tol = 1e-3) {
    Snapped s{false, AcGePoint3d(-7, -7, -7), CRenderObject::SnapMode(999)};
    scene.setSnapMode(mask);
    s.ok = scene.snap(CPoint(x, y), aperture, tol, s.pt, s.kind);
    return s;
  }
  double pixel() const { return 2.0 * scene.getFrustumWidth() / scene.getViewWidth(); }
};

// End points, middles, feet and nodes: PriorityAmongKindsInTheAperture.
TEST_F(SceneSnap, EachKindAloneOnHandBuiltObjects) {
  const struct {
    const char* name;
    CRenderObject::SnapMode kind;
    std::function<AcGePoint3d(SceneSnap&)> build;  // builds the objects, returns the answer
    int x, y;
  } rows[] = {
      {"centre of an arc", CRenderObject::kSnapCenter,
       [](SceneSnap& t) {
         const double r = 8 * t.pixel();
         CRenderObject& o = t.add(object({t.at(392, 300), t.at(400, 292), t.at(408, 300)}));
         o.setSnapCurves({new AcGeCircArc3d(t.at(400, 300), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, r, 0, M_PI)});
         return t.at(400, 300);
       },
       401, 302},
      {"crossing of two walls' outlines", CRenderObject::kSnapIntersection,
       [](SceneSnap& t) {
         t.traced(t.rect(300, 290, 500, 310), CRenderShape::kPgon);
         t.traced(t.rect(390, 200, 410, 400), CRenderShape::kPgon);
         return t.at(410, 310);
       },
       407, 312},
      // The cursor (400, 306) is nearest the diagonal at (403, 303).
      {"nearest on a diagonal", CRenderObject::kSnapNearest,
       [](SceneSnap& t) {
         const AcGePoint3d a = t.at(300, 200), b = t.at(500, 400);
         t.add(object({a, b})).setSnapCurves({new AcGeLineSeg3d(a, b)});
         return t.at(403, 303);
       },
       400, 306},
      {"grip", CRenderObject::kSnapGrip,
       [](SceneSnap& t) {
         CRenderObject& o = t.add(object(t.rect(380, 280, 420, 320), CRenderShape::kPgon));
         o.gripPoint().emplace_back(t.at(380, 300), AcGeVector3d(1, 0, 0));
         return t.at(380, 300);
       },
       385, 296},
  };
  for (const auto& r : rows) {
    set().clear();
    const AcGePoint3d want = r.build(*this);
    scene.render();
    const Snapped s = snapAt(r.x, r.y, r.kind);
    ASSERT_TRUE(s.ok) << r.name;
    EXPECT_EQ(s.kind, r.kind) << r.name;
    EXPECT_LT(s.pt.distanceTo(want), 1e-6 * pixel()) << r.name;
    // The same kind switched off finds nothing of it.
    const Snapped off = snapAt(r.x, r.y, CRenderObject::kSnapAll & ~r.kind);
    EXPECT_FALSE(off.ok && off.kind == r.kind) << r.name;
  }
}

TEST_F(SceneSnap, PriorityAmongKindsInTheAperture) {
  // Segment (300, 300)-(500, 300) with a snap point at (306, 304).
  traced({at(300, 300), at(500, 300)}).setSnapPoints({at(306, 304)});
  scene.setSnapFirstPt(true, at(398, 100));
  scene.render();
  const struct { unsigned long mask; int x, y; CRenderObject::SnapMode kind; double px, py; } rows[] = {
      // The end point 6 px away beats the nearest point 2 px away; a node
      // is of the end point's rank.
      {CRenderObject::kSnapEndPoint | CRenderObject::kSnapNearest, 306, 302, CRenderObject::kSnapEndPoint, 300, 300},
      {CRenderObject::kSnapAll, 306, 302, CRenderObject::kSnapNode, 306, 304},
      // Within one rank, the nearer on screen.
      {CRenderObject::kSnapEndPoint | CRenderObject::kSnapNode, 302, 302, CRenderObject::kSnapEndPoint, 300, 300},
      // Foot (398, 300) before the nearest point, the middle before the foot.
      {CRenderObject::kSnapPerpendicular | CRenderObject::kSnapNearest, 396, 302, CRenderObject::kSnapPerpendicular,
       398, 300},
      {CRenderObject::kSnapMidPoint | CRenderObject::kSnapPerpendicular, 397, 302, CRenderObject::kSnapMidPoint, 400,
       300},
      // Kinds switched off are not found, however near or high their rank.
      {CRenderObject::kSnapAll & ~(CRenderObject::kSnapEndPoint | CRenderObject::kSnapNode), 306, 302,
       CRenderObject::kSnapNearest, 306, 300},
      {CRenderObject::kSnapNearest, 396, 302, CRenderObject::kSnapNearest, 396, 300},
  };
  for (const auto& r : rows) {
    const Snapped s = snapAt(r.x, r.y, r.mask);
    ASSERT_TRUE(s.ok) << r.mask;
    EXPECT_EQ(s.kind, r.kind) << r.mask;
    EXPECT_LT(s.pt.distanceTo(at(r.px, r.py)), 1e-6 * pixel()) << r.mask;
  }
}

TEST_F(SceneSnap, CornerBehindAWallOnlyFromTheOtherSide) {
  // A vertical wall in the plane y = 0 and, 5 units behind it (y = 5), a
  // small square in the plane y = 5 with its corners as snap points.
  add(object({{-20, 0, -20}, {20, 0, -20}, {20, 0, 20}, {-20, 0, 20}}, CRenderShape::kPgon, {}, {0, -1, 0}));
  const Pts sq = {{0, 5, 0}, {4, 5, 0}, {4, 5, 4}, {0, 5, 4}};
  add(object(sq)).setSnapPoints(sq);
  const struct {
    double fy, tol;  // the eye looks along y = fy
    bool snaps;
  } rows[] = {{1, 1e-3, false}, {-1, 1e-3, true}, {1, 1e9, true}};
  for (const auto& r : rows) {
    scene.camera()->ReSet(AcGeVector3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, r.fy, 0));
    scene.setRange(30);
    scene.render();
    const CPoint c = scene.world2screen(sq[2]);
    const Snapped s = snapAt(c.x + 2, c.y + 1, CRenderObject::kSnapNode, 12, r.tol);
    EXPECT_EQ(s.ok, r.snaps) << r.fy << " " << r.tol;
    if (s.ok) EXPECT_TRUE(s.pt.isEqualTo(sq[2]));
  }
}

TEST_F(SceneSnap, ExactDataSnapsUnderEachInstanceMatrix) {
  const Pts sq = rect(200, 200, 220, 220);
  CRenderObject* o = object(sq);
  o->setExaGeoShapNum(1);
  o->setSnapCurvesExa(outline(sq));
  const AcGeVector3d shift = at(500, 200) - at(200, 200);
  for (double dx : {0.0, shift.x}) addShift(*o, float(dx));
  o->calBox();
  add(o);
  scene.render();
  for (int x0 : {200, 500}) {
    const Snapped s = snapAt(x0 + 3, 202, CRenderObject::kSnapEndPoint);
    ASSERT_TRUE(s.ok) << x0;
    // float matrices: a float's rounding of the shift.
    EXPECT_LT(s.pt.distanceTo(at(x0, 200)), 1e-3 * pixel()) << x0;
  }
}

TEST_F(SceneSnap, BadInputFindsNothingOrDegradesQuietly) {
  const Pts sq = rect(300, 300, 340, 340);
  CRenderObject& o = traced(sq);
  scene.render();
  // Snapping off, a closed aperture or a cursor off the view: false at
  // once, outputs untouched.
  for (const auto& bad : {std::make_pair(0ul, 12), std::make_pair(0xFFul, 0), std::make_pair(0xFFul, -5)}) {
    const Snapped s = snapAt(302, 302, bad.first, bad.second);
    EXPECT_FALSE(s.ok);
    EXPECT_TRUE(s.pt.isEqualTo(AcGePoint3d(-7, -7, -7)));
    EXPECT_EQ(s.kind, CRenderObject::SnapMode(999));
  }
  EXPECT_FALSE(snapAt(-3, 302, CRenderObject::kSnapAll).ok);
  // A huge aperture reaches every corner; the nearest wins.
  EXPECT_TRUE(snapAt(302, 302, CRenderObject::kSnapEndPoint, 1 << 30, 1e300).pt.isEqualTo(sq[0]));
  // Zero-length and missing curves, an object without snap data.
  o.clearSnapCurves();
  o.setSnapCurves({new AcGeLineSeg3d(sq[0], sq[0]), nullptr});
  add(object(rect(290, 290, 310, 310)));
  scene.render();
  EXPECT_TRUE(snapAt(301, 301, CRenderObject::kSnapAll).pt.isEqualTo(sq[0]));
  o.clearSnapCurves();
  EXPECT_FALSE(snapAt(301, 301, CRenderObject::kSnapAll).ok);
}
