// Object hit tests: the nearest shape along the ray, instanced shapes under
// their matrices, hidden shapes, and the rectangle tests over all shapes.
#include <gtest/gtest.h>

#include "ObjectHelpers.h"
#include "shapes/PickTestView.h"
#include "shapes/PickVolume.h"
#include "shapes/ShapeTestUtil.h"

namespace {

// Straight down through (x, y) from z = 100.
struct Down { bool hit; double distance; AcGePoint3d at; unsigned shape; };
Down down(const CRenderObject& o, double x, double y, bool flag = true) {
  Down d{false, -1, AcGePoint3d(-1, -1, -1), 99};
  d.hit = o.intersectRay(AcGePoint3d(x, y, 100), AcGePoint3d(x, y, -100), 0.1, flag, d.distance, d.at, d.shape);
  return d;
}

CRenderObject built(const std::vector<CRenderShape>& shapes) {
  CRenderObject o;
  for (const CRenderShape& s : shapes) o.addShape(s);
  o.endAddShape();
  return o;
}

using picktest::px;
using picktest::view;

}  // namespace

TEST(ObjectRay, NearestShapeAlongTheRay) {
  // The last face is at the same distance as the second: the first stays.
  CRenderObject o = built({rectShape(0, 0, 4, 4, 0), rectShape(0, 0, 4, 4, 5),
                           shapetest::polyline({{0, 1, 7}, {4, 1, 7}}), rectShape(0, 0, 4, 4, 5)});
  const struct { const char* what; double x, y; bool flag, hit; unsigned shape; double distance; } rows[] = {
      {"upper face", 2, 2, true, true, 1, 95},
      {"polyline above both", 2, 1.05, true, true, 2, 93},
      {"without flag: no fill, no polyline", 2, 1.05, false, false, 99, -1},
      {"beside everything", 6, 6, true, false, 99, -1},
  };
  for (const auto& r : rows) {
    const Down d = down(o, r.x, r.y, r.flag);
    EXPECT_EQ(d.hit, r.hit) << r.what;
    EXPECT_EQ(d.shape, r.shape) << r.what;
    EXPECT_NEAR(d.distance, r.distance, 1e-9) << r.what;
  }
  o.getShape(1).setVisible(false);
  EXPECT_EQ(down(o, 2, 2).shape, 3u);  // hidden shapes are not hit
}

TEST(ObjectRay, InstancedShapesOnlyUnderTheirMatrices) {
  CRenderObject o;
  o.addShape(rectShape(0, 0, 1, 1, 0));  // instanced
  o.addShape(rectShape(5, 5, 6, 6, 0));  // plain
  o.setExaGeoShapNum(1);
  EXPECT_FALSE(down(o, 0.5, 0.5).hit);  // drawn nowhere without a matrix
  addShift(o, -5);
  addShift(o, 3, 0, 3);
  o.endAddShape();
  Down d = down(o, -4.5, 0.5);
  ASSERT_TRUE(d.hit);
  EXPECT_EQ(d.shape, 0u);
  d = down(o, 3.5, 0.5);
  ASSERT_TRUE(d.hit);
  EXPECT_NEAR(d.at.z, 3.0, 1e-9);  // lifted by its matrix
  EXPECT_FALSE(down(o, 0.5, 0.5).hit);
  EXPECT_EQ(down(o, 5.5, 5.5).shape, 1u);
  EXPECT_FALSE(down(o, 0.5, 5.5).hit);  // plain shapes are not instanced

  // Rectangles see an instance where it is drawn, not where it is defined.
  EXPECT_TRUE(o.intersectRect(px(-4.8, 0.2, -4.2, 0.8), view()));
  EXPECT_FALSE(o.intersectRect(px(0.2, 0.2, 0.8, 0.8), view()));
  EXPECT_TRUE(o.allInRect(px(-6, -1, 7, 7), view()));
  EXPECT_FALSE(o.allInRect(px(-1, -1, 7, 7), view()));  // the instance at x -5 is outside
}

TEST(ObjectRect, AnyShapeCrossesEveryShapeInside) {
  const CRenderObject o = built({rectShape(-8, -8, -6, -6, 0), shapetest::polyline({{4, 4, 0}, {8, 8, 0}})});
  // A text without glyphs (an empty one) has nothing to select: it neither
  // keeps its object out of a window nor lets it in, whether the box or the
  // shapes decide.
  const CRenderShape label = shapetest::textShape("", AcGePoint3d(5, 5, 0));
  const CRenderObject labelled = built({rectShape(-1, -1, 1, 1, 0), label});
  const CRenderObject onlyText = built({label});
  const CRenderObject empty;
  const struct {
    const char* what;
    const CRenderObject& obj;
    CRect r;
    bool crosses, inside;
  } rows[] = {
      {"around both", o, px(-9, -9, 9, 9), true, true},
      {"around one", o, px(-9, -9, 0, 0), true, false},
      {"across the line only", o, px(5, 5, 7, 7), true, false},
      {"inside the boxes, off the geometry", o, px(-2, 2, 2, 4), false, false},
      {"labelled, around the rectangle", labelled, px(-2, -2, 2, 2), true, true},
      {"labelled, around all", labelled, px(-9, -9, 9, 9), true, true},
      {"only the text", onlyText, px(-9, -9, 9, 9), false, false},
      {"no shapes", empty, px(-9, -9, 9, 9), false, false},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(r.obj.intersectRect(r.r, view()), r.crosses) << r.what;
    EXPECT_EQ(r.obj.allInRect(r.r, view()), r.inside) << r.what;
  }
}
