// Every drawing code of a shape against the points it must draw.
#include <cmath>

#include "ShxTestHelpers.h"

namespace {
using shxtest::draw;
using shxtest::shapesFont;

struct CodeCase {
  const char* name;
  const char* defs;  // shape 65 is drawn
  bool vertical;
  const char* expected;
};

const CodeCase kCodes[] = {
    {"even directions", "*65,4,a\n020,023,02A,0", false, "0,0 2,0 3,2 1,0 | end 1,0"},
    {"odd directions", "*65,8,a\n021,025,027,029,02B,02D,02F,0", false,
     "0,0 2,1 1,3 -1,4 -3,3 -4,1 -3,-1 -1,-2 | end -1,-2"},
    {"pen up moves without drawing", "*65,5,a\n2,020,1,014,0", false, "2,0 2,1 | end 2,1"},
    {"zero move with the pen down is a dot", "*65,7,a\n2,010,1,8,(0,0),0", false, "1,0 1,0 | end 1,0"},
    {"divide then multiply the lengths", "*65,7,a\n3,2,020,4,6,010,0", false, "0,0 1,0 4,0 | end 4,0"},
    {"pop returns without drawing", "*65,5,a\n5,020,6,024,0", false, "0,0 2,0; 0,0 0,2 | end 0,2"},
    {"pop with nothing pushed is ignored", "*65,3,a\n6,020,0", false, "0,0 2,0 | end 2,0"},
    {"displacement and its list", "*65,11,a\n8,(3,-1),9,(1,1),(-2,0),(0,0),0", false,
     "0,0 3,-1 4,0 2,0 | end 2,0"},
    {"vertical-only command skipped", "*65,6,a\n14,8,(5,5),020,0", false, "0,0 2,0 | end 2,0"},
    {"vertical-only command drawn", "*65,6,a\n14,8,(5,5),020,0", true, "0,0 5,5 7,5 | end 7,5"},
    {"vertical-only list skipped", "*65,10,a\n14,9,(1,1),(2,2),(0,0),020,0", false, "0,0 2,0 | end 2,0"},
    {"vertical-only bulge list skipped", "*65,9,a\n14,13,(1,1,9),(0,0),020,0", false, "0,0 2,0 | end 2,0"},
    {"vertical-only subshape skipped", "*65,5,a\n14,7,66,020,0\n*66,2,b\n024,0", false, "0,0 2,0 | end 2,0"},
    {"subshape continues from the pen", "*65,4,a\n7,66,014,0\n*66,2,b\n020,0", false,
     "0,0 2,0; 2,0 2,1 | end 2,1"},
    {"subshape scale stays inside it", "*65,6,a\n3,2,7,66,040,0\n*66,4,b\n4,4,020,0", false,
     "0,0 4,0; 4,0 6,0 | end 6,0"},
    {"subshape draws even after pen up", "*65,5,a\n2,7,66,010,0\n*66,2,b\n020,0", false, "0,0 2,0 | end 3,0"},
    {"missing subshape is skipped", "*65,4,a\n7,99,020,0", false, "0,0 2,0 | end 2,0"},
    {"code 15 is ignored", "*65,3,a\n15,020,0", false, "0,0 2,0 | end 2,0"},
};

TEST(ShxCodes, DrawExpectedPoints) {
  for (const CodeCase& c : kCodes) {
    EXPECT_EQ(draw(shapesFont(c.defs), 65, 1, c.vertical), c.expected) << c.name;
  }
}

struct ArcCase {
  const char* name;
  const char* defs;
  size_t points;  // in the one contour drawn
  size_t probe;   // index of a point to check
  double px, py;
  double ex, ey;  // end point
};

const ArcCase kArcs[] = {
    {"octant arc counter-clockwise", "*65,4,a\n10,(2,012),0", 9, 4, -1.414, 0.586, -2.828, 0},
    {"octant arc clockwise", "*65,4,a\n10,(1,-032),0", 9, 4, 0.707, 0.293, 1.414, 0},
    {"octant count 0 is a full circle", "*65,4,a\n10,(1,000),0", 33, 16, -2, 0, 0, 0},
    {"arc radius follows the scale", "*65,6,a\n3,2,10,(4,000),0", 33, 16, -4, 0, 0, 0},
    {"fractional arc 55 to 95 degrees", "*65,7,a\n11,(56,28,0,3,012),0", 5, 2, -0.945, 0.443, -1.985, 0.536},
    {"fractional arc clockwise", "*65,7,a\n11,(0,128,0,2,-022),0", 3, 1, 0.390, -0.038, 0.765, -0.152},
    {"fractional arc high radius byte", "*65,7,a\n11,(0,0,1,0,002),0", 5, 2, -19.487, 97.967, -74.981, 181.019},
    {"bulge 127 is a half circle", "*65,5,a\n12,(4,0,127),0", 17, 8, 2, -2, 4, 0},
    {"negative bulge turns clockwise", "*65,5,a\n12,(4,0,-127),0", 17, 8, 2, 2, 4, 0},
    {"bulge sets the sagitta", "*65,5,a\n12,(4,0,63),0", 11, 5, 2, -0.992, 4, 0},
    {"bulge list with a straight piece", "*65,10,a\n13,(2,0,0),(0,2,-127),(0,0),0", 18, 9, 1, 1, 2, 2},
};

TEST(ShxCodes, ArcsSampledOnTheirCircles) {
  for (const ArcCase& c : kArcs) {
    CShapeInfo info;
    ASSERT_TRUE(info.Init(shxtest::writeFile(shxtest::compile(shapesFont(c.defs))).c_str())) << c.name;
    CShape shape;
    ASSERT_TRUE(info.GetShape(65, 1, shape)) << c.name;
    ShxContourList contours;
    shape.appendContours(contours);
    ASSERT_EQ(contours.size(), 1u) << c.name;
    const auto& pts = contours[0];
    ASSERT_EQ(pts.size(), c.points) << c.name;
    EXPECT_NEAR(pts[c.probe].x, c.px, 1e-3) << c.name;
    EXPECT_NEAR(pts[c.probe].y, c.py, 1e-3) << c.name;
    EXPECT_NEAR(pts.back().x, c.ex, 1e-3) << c.name;
    EXPECT_NEAR(pts.back().y, c.ey, 1e-3) << c.name;
    EXPECT_NEAR(shape.m_endPoint.x, c.ex, 1e-3) << c.name;
  }
}
}  // namespace
