#include <gtest/gtest.h>

#include <cmath>

#include "ObjectHelpers.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/CSceneMgr.h"

namespace {
CRenderShape line(const Pts& pts, int type = CRenderShape::kPline) {
  CRenderShape s;
  s.set(pts, {}, CRenderShape::ShapeType(type), CColor(), AcGeVector3d(0, 0, 1));
  return s;
}
CRenderShape typed(int type, double x) { return line({{x, 0, 0}, {x + 1, 0, 0}}, type); }

// An object of these shapes, the first `exact` of them instanced, added and ended.
CRenderObject built(const std::vector<CRenderShape>& shapes, unsigned exact = 0) {
  CRenderObject o;
  for (const CRenderShape& s : shapes) o.addShape(s);
  o.setExaGeoShapNum(exact);
  o.endAddShape();
  return o;
}
}  // namespace

// Indices past the end clamp to the last entry; empty lists give a scratch
// value instead of reading past them.
TEST(RenderObjectShapes, IndexAccessClampsToTheLastEntryAndEmptyListsGiveNothing) {
  CRenderObject o;
  o.setShapeColor(5, CColor(1, 2, 3, 4));  // no shapes: nothing happens
  EXPECT_EQ(o.getShapeColor(0), CColor());
  o.getShape(3).getPts().push_back(AcGePoint3d());  // discarded
  EXPECT_TRUE(o.getShape(3).getPts().empty() && o.numShp() == 0u);
  EXPECT_TRUE(o.getLodShpss(2).empty());
  EXPECT_TRUE(o.getLodExaShapeNum(1) == 0u && o.getLodUnitsPerPixel(0) == 0.0f);
  for (int i = 0; i < 3; ++i) o.addShape(rectShape(i, 0, i + 1, 1, 0));
  EXPECT_EQ(&o.getShape(o.numShp()), &o.getShape(2));
  EXPECT_EQ(&o[99], &o.getShape(2));
  o.setShapeColor(99, CColor(9, 8, 7, 6));
  EXPECT_EQ(o.getShapeColor(2), CColor(9, 8, 7, 6));
  o.getShape(1).setHit(true);
  EXPECT_TRUE(o.getShapeHit(1) && !o.getShapeHit(40));
  o.setLodLevel(2);
  o.getLodUnitsPerPixel(1) = 4.0f;
  EXPECT_EQ(o.getLodUnitsPerPixel(9), 4.0f);  // clamped to the last level
  EXPECT_EQ(&o.getLodShpss(5), &o.getLodShpss(1));
}

TEST(RenderObjectShapes, EndAddShapeDropsInvalidShapesAndTrimsStorage) {
  // Type 100 exactly stays; the walk drops a non-finite shape and type 150
  // inside, and the trailing types 101 and up go too.
  CRenderObject o;
  for (const CRenderShape& s : {typed(100, 0), line({{0, 0, 0}, {INFINITY, 0, 0}}), typed(0, 5), typed(150, 0),
                                typed(0, 7), typed(101, 0), typed(20000, 0)})
    o.addShape(s);
  o.getShps().reserve(64);
  o.endAddShape();
  ASSERT_EQ(o.numShp(), 3u);
  EXPECT_EQ(o.getShape(0).getShpType(), 100);
  EXPECT_TRUE(o.getShape(1).getPts()[0].x == 5.0 && o.getShape(2).getPts()[0].x == 7.0);
  EXPECT_EQ(o.getShps().capacity(), 3u);
  EXPECT_TRUE(o.ptMin() == AcGePoint3d(0, 0, 0) && o.ptMax() == AcGePoint3d(8, 0, 0));
  EXPECT_FLOAT_EQ(o.getRadius(), 4.0f);
}

TEST(RenderObjectShapes, CommonColourBecomesTheObjectColourAndInstancedCountIsClamped) {
  const CRenderObject o =
      built({rectShape(0, 0, 1, 1, 0, CColor(10, 20, 30, 40)), rectShape(0, 0, 1, 1, 1, CColor(10, 20, 30, 40))}, 9);
  EXPECT_TRUE(o.getColor() == CColor(10, 20, 30, 40) && o.getExaGeoShapNum() == 2u);

  // Different colours: the colour stays, the exact snap sphere is measured.
  CRenderObject m;
  m.setExaGeoShapNum(1);
  for (int g : {1, 2}) m.addShape(rectShape(0, 0, 1, 1, 0, CColor(g, g, g, 255)));
  m.setSnapPointsExa({{0, 0, 0}, {4, 0, 0}});
  m.setSnapCurvesExa({new AcGeLineSeg3d(AcGePoint3d(0, -2, 0), AcGePoint3d(0, 2, 0))});
  m.endAddShape();
  EXPECT_EQ(m.getColor(), CColor());
  EXPECT_EQ(m.getSnapExaCenter(), AcGePoint3d(2, 0, 0));
  EXPECT_FLOAT_EQ(m.getSnapExaRadius(), static_cast<float>(std::sqrt(8.0)));
}

TEST(RenderObjectShapes, TagMapsFlagShapesByKeyWithValuesIgnoringCase) {
  CRenderObject o = built({rectShape(0, 0, 1, 1, 0), rectShape(0, 0, 1, 1, 1), rectShape(0, 0, 1, 1, 2)});
  o.getShape(0).setXdata("坡屋顶", "内面");
  o.getShape(1).setXdata("layer", "Glass");
  o.getShape(2).setXdata("Layer", "glass");
  o.hit(std::map<CString, CString>{{"layer", "GLASS"}});
  EXPECT_FALSE(o.getShape(0).getHit());
  EXPECT_TRUE(o.getShape(1).getHit());
  EXPECT_FALSE(o.getShape(2).getHit());  // keys are case-sensitive
  o.highLight(std::map<CString, CString>{{"坡屋顶", "内面"}, {"Layer", "glass"}});
  EXPECT_TRUE(o.getShape(0).getHighLight());
  EXPECT_FALSE(o.getShape(1).getHighLight());
  EXPECT_TRUE(o.getShape(2).getHighLight());
}

TEST(RenderObjectSnap, OutlinesGiveSnapPointsAndOpenSegments) {
  CRenderShape face;
  face.setFaceType(false);
  CRenderObject o;
  for (const CRenderShape& s : {line({{5, 5, 5}}), line({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}), face})
    o.addShape(s);
  o.setExaGeoShapNum(1);
  o.AutoCountCatchPoint();
  o.AutoCountCatchLine();
  EXPECT_EQ(o.getSnapPointsExa(), (std::vector<AcGePoint3d>{{5, 5, 5}}));
  EXPECT_TRUE(o.getSnapCurvesExa().empty());
  EXPECT_EQ(o.getSnapPoints().size(), 4u);
  ASSERT_EQ(o.getSnapCurves().size(), 3u);  // no closing segment
  AcGePoint3d lo, hi;
  o.getSnapCurves()[2]->boundBlock().getMinMaxPoints(lo, hi);
  EXPECT_EQ(lo, AcGePoint3d(0, 1, 0));
  EXPECT_EQ(hi, AcGePoint3d(1, 1, 0));
  // Nothing is cleared first: a second run appends again.
  o.AutoCountCatchPoint();
  EXPECT_EQ(o.getSnapPoints().size(), 8u);
}

TEST(RenderObjectSnap, CopiesOwnDeepCopiesOfCurvesAndMatrices) {
  CRenderObject o = built({rectShape(0, 0, 1, 1, 0)});
  o.setSnapCurves({new AcGeLineSeg3d(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0))});
  addShift(o, 0, 0, 3);
  CRenderObject copy(o);
  ASSERT_EQ(copy.getSnapCurves().size(), 1u);
  EXPECT_NE(copy.getSmpMat()[0], o.getSmpMat()[0]);
  o.move(AcGeVector3d(0, 5, 0));
  AcGePoint3d lo, hi;
  copy.getSnapCurves()[0]->boundBlock().getMinMaxPoints(lo, hi);
  EXPECT_EQ(lo.y, 0.0);
  CRenderObject assigned;
  assigned = o;
  assigned.getSnapCurves()[0]->boundBlock().getMinMaxPoints(lo, hi);
  EXPECT_EQ(lo.y, 5.0);
  // A plain object assigned over it takes everything away.
  assigned.setLodLevel(2);
  assigned.gripPoint().resize(1);
  assigned = CRenderObject();
  EXPECT_TRUE(assigned.getSnapCurves().empty() && assigned.getLodShpss().empty() && assigned.gripPoint().empty());
}

TEST(RenderObjectTransforms, MoveRotateMirrorReachShapesSnapDataAndBox) {
  CRenderObject o = built({rectShape(0, 0, 2, 1, 3)});
  o.setSnapPoints({{1, 2, 3}});
  o.mirror(AcGeLine3d(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0)));
  EXPECT_TRUE(o.getSnapPoints()[0].isEqualTo(AcGePoint3d(1, -2, 3)));
  EXPECT_TRUE(o.ptMin().isEqualTo(AcGePoint3d(0, -1, 3)));
  o.rotate(AcGePoint3d(0, 0, 0), M_PI / 2);
  EXPECT_TRUE(o.getSnapPoints()[0].isEqualTo(AcGePoint3d(2, 1, 3)));
  EXPECT_TRUE(o.ptMax().isEqualTo(AcGePoint3d(1, 2, 3)));
  o.move(AcGeVector3d(10, 0, -3));
  EXPECT_TRUE(o.getShape(0).getPts()[0].isEqualTo(AcGePoint3d(10, 0, 0)));
  EXPECT_TRUE(o.ptMax().isEqualTo(AcGePoint3d(11, 2, 0)));
}

TEST(RenderObjectTransforms, InstancedShapesAndExactDataFollowUnderTheirMatrix) {
  CRenderObject o = built({rectShape(0, 0, 1, 1, 0), rectShape(5, 5, 6, 6, 0)}, 1);
  CSimpleMatrix* m = new CSimpleMatrix;
  m->setZMoveAndZScale(10.0f, 2.0f);
  o.addSmpMat(m);
  o.calBox();
  // The instanced shape is measured where it is drawn: z 10.
  EXPECT_EQ(o.ptMax().z, 10.0);
  o.setSnapPointsExa({{0, 0, 1}});
  o.move(AcGeVector3d(0, 0, 4));
  // Under the matrix (z scaled 2) a world move of 4 is a local move of 2.
  EXPECT_TRUE(o.getSnapPointsExa()[0].isEqualTo(AcGePoint3d(0, 0, 3)));
  EXPECT_TRUE(o.getShape(0).getPts()[0].isEqualTo(AcGePoint3d(0, 0, 2)));
  EXPECT_TRUE(o.getShape(1).getPts()[0].isEqualTo(AcGePoint3d(5, 5, 4)));
  EXPECT_EQ(o.ptMax().z, 14.0);
}

TEST(RenderObjectCamera, DistanceIsSignedAlongTheLineOfSight) {
  CRenderObject loose;
  EXPECT_EQ(loose.distanceToCamera(), 0.0);
  CSceneMgr scene;
  CRenderObject* o = rectObject(-1, -1, 1, 1, -30);
  scene.getObjSetMgr()->addObject(o);
  scene.camera()->ReSet(AcGeVector3d(0, 0, 10), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  EXPECT_DOUBLE_EQ(o->distanceToCamera(), 40.0);
  scene.camera()->ReSet(AcGeVector3d(0, 0, -50), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  EXPECT_DOUBLE_EQ(o->distanceToCamera(), -20.0);
}
