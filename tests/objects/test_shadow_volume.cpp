// Stencil shadow volumes: closed volumes from real shapes, and real frames
// from Mesa in which ground pixels are dark exactly where geometry says.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>

#include "ObjectHelpers.h"
#include "kxrender/CSceneMgr.h"
#include "objects/ShadowVolume.h"
#include "scene/SceneFixture.h"
#include "shapes/ShapeTestUtil.h"

namespace {

CRenderShape polygon(const Pts& pts, const std::vector<Pts>& holes, const AcGeVector3d& n) {
  CRenderShape s;
  s.set(pts, holes, CRenderShape::kPgon, CColor(200, 200, 200, 255), n);
  return s;
}

// The six outward faces of the box lo..hi.
std::vector<CRenderShape> boxShapes(const AcGePoint3d& lo, const AcGePoint3d& hi) {
  const double x0 = lo.x, y0 = lo.y, z0 = lo.z, x1 = hi.x, y1 = hi.y, z1 = hi.z;
  return {polygon({{x0, y0, z0}, {x0, y1, z0}, {x1, y1, z0}, {x1, y0, z0}}, {}, {0, 0, -1}),
          polygon({{x0, y0, z1}, {x1, y0, z1}, {x1, y1, z1}, {x0, y1, z1}}, {}, {0, 0, 1}),
          polygon({{x0, y0, z0}, {x1, y0, z0}, {x1, y0, z1}, {x0, y0, z1}}, {}, {0, -1, 0}),
          polygon({{x0, y1, z0}, {x0, y1, z1}, {x1, y1, z1}, {x1, y1, z0}}, {}, {0, 1, 0}),
          polygon({{x0, y0, z0}, {x0, y0, z1}, {x0, y1, z1}, {x0, y1, z0}}, {}, {-1, 0, 0}),
          polygon({{x1, y0, z0}, {x1, y1, z0}, {x1, y1, z1}, {x1, y0, z1}}, {}, {1, 0, 0})};
}

// A wall in the plane x = 0 facing -x, y in [-4, 4], z in [0, 4], with a
// window y in [-1, 1], z in [1, 3].
CRenderShape windowWall() {
  return polygon({{0, -4, 0}, {0, 4, 0}, {0, 4, 4}, {0, -4, 4}}, {{{0, -1, 1}, {0, 1, 1}, {0, 1, 3}, {0, -1, 3}}},
                 {-1, 0, 0});
}

}  // namespace

// Every directed edge of the volume is matched by the reverse edge of
// another face, as often: no cracks, consistent orientation. Lights that are
// no lights (zero, not finite, a point inside the caster's box) build
// nothing and leave no stale triangles.
TEST(ShadowVolume, VolumesAreClosedForSolidsHolesAndOpenMeshesAndBadLightsBuildNothing) {
  const std::map<std::string, std::vector<CRenderShape>> casters = {
      {"box", boxShapes({-1, -1, 0}, {1, 1, 2})},
      {"box without its top", [] {
         std::vector<CRenderShape> b = boxShapes({-1, -1, 0}, {1, 1, 2});
         b.erase(b.begin() + 1);
         return b;
       }()},
      {"wall with a window", {windowWall()}},
      // An open face mesh: two triangles of a fold, one edge shared.
      {"open fold", {shapetest::faceMesh({{0, 0, 1}, {2, 0, 1}, {0, 2, 1}, {2, 2, 2}}, {0, 1, 2, 2, 1, 3})}}};
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  const float lights[][4] = {{-1, 0.3f, 1, 0}, {0.2f, -0.5f, 10, 0}, {-6, 1, 5, 1},  {0.5f, 0.2f, 9, 1}, {0, 0, 0, 0},
                             {nan, 1, 1, 0},   {1, inf, 1, 0},       {1, 1, 1, nan}, {0, 0, 1, 1}};
  for (const auto& c : casters) {
    for (size_t li = 0; li < sizeof(lights) / sizeof(lights[0]); ++li) {
      const float* l = lights[li];
      SCOPED_TRACE(c.first + " under light " + std::to_string(li));
      ShadowVolumeBuilder b;
      for (const CRenderShape& s : c.second) addCasterTriangles(b, s, nullptr);
      std::vector<float> tris{1.0f};
      const bool built = b.build(ShadowLight::fromFloats(l), {-10, -10, -1}, {10, 10, 5}, tris);
      ASSERT_EQ(built, li < 4);
      if (!built) EXPECT_TRUE(tris.empty());
      using P = std::tuple<float, float, float>;
      std::map<std::pair<P, P>, int> edges;
      for (size_t i = 0; i < tris.size(); i += 9)
        for (int k = 0; k < 3; ++k) {
          const float* a = &tris[i + 3 * k];
          const float* e = &tris[i + 3 * ((k + 1) % 3)];
          ++edges[{P(a[0], a[1], a[2]), P(e[0], e[1], e[2])}];
        }
      int unmatched = 0;
      for (const auto& e : edges) {
        const auto rev = edges.find({e.first.second, e.first.first});
        unmatched += rev == edges.end() || rev->second != e.second;
      }
      EXPECT_EQ(unmatched, 0);
    }
  }
}

namespace {

struct Rect {
  double x0, y0, x1, y1;
  bool in(double x, double y) const { return x > x0 && x < x1 && y > y0 && y < y1; }
  double area() const { return (x1 - x0) * (y1 - y0); }
  // Distance from (x, y) to the border.
  double border(double x, double y) const {
    const double dx = std::max({x0 - x, x - x1, 0.0}), dy = std::max({y0 - y, y - y1, 0.0});
    if (dx > 0 || dy > 0) return std::hypot(dx, dy);
    return std::min({x - x0, x1 - x, y - y0, y1 - y});
  }
};

// A 20 x 20 ground at z = 0 that receives but does not cast, seen in
// 200 x 200 pixels from above (10 pixels per unit) unless a test turns the
// camera.
class ShadowFrame : public SceneFixture {
 protected:
  void SetUp() override {
    open(200, 200);
    scene.setRange(10.0);
    scene.setShadow(true);
    ground = caster({polygon({{-10, -10, 0}, {10, -10, 0}, {10, 10, 0}, {-10, 10, 0}}, {}, {0, 0, 1})}, false);
  }
  CRenderObject* caster(const std::vector<CRenderShape>& shapes, bool casts = true) {
    CRenderObject* o = objectOf(shapes);
    o->setGenerateShadow(casts);
    set().addObject(o);
    return o;
  }
  void frame(const float* light) {
    scene.setLightpos(light);
    SceneFixture::frame();
  }
  // Lit ground is about 150 bright; ground in shadow (ambient only) 60.
  int darkAt(const AcGePoint3d& p) {
    const CPoint at = scene.world2screen(p);
    const std::vector<uint8_t> px = pixel(at.x, at.y);
    if (px.empty()) return -1;
    return (px[0] + px[1] + px[2]) / 3 < 105;
  }
  // Ground points on a 0.25 grid whose darkness is wrong: dark exactly in
  // `shade` but not in `light`. Points within two pixels of either outline,
  // and those in `hidden` from the eye, are skipped.
  int wrongGroundPixels(const Rect& shade, const Rect& light, const Rect& hidden) {
    int wrong = 0;
    const double twoPixels = 2.0 / scene.getPixelsPerUnit();
    for (double x = -9.5; x <= 9.5; x += 0.25)
      for (double y = -9.5; y <= 9.5; y += 0.25) {
        if (shade.border(x, y) < twoPixels || (light.area() && light.border(x, y) < twoPixels) || hidden.in(x, y))
          continue;
        const int dark = darkAt({x, y, 0});
        if (dark >= 0) wrong += dark != int(shade.in(x, y) && !light.in(x, y));
      }
    return wrong;
  }
  CRenderObject* ground = nullptr;
};

// Sun at 45 degrees in the west: a point at height h shades the ground h
// further east.
const float kWestSun[4] = {-1, 0, 1, 0};

}  // namespace

// A light that is no light draws no shadow, and the frame is otherwise
// whole: the ground lit everywhere, the box top drawn; a good light after it
// brings the shadow back.
TEST_F(ShadowFrame, GroundIsDarkExactlyInTheShadowOutline) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float zero[4] = {0, 0, 0, 0}, notFinite[4] = {nan, 0, 1, 0}, inside[4] = {0, 0, 1, 1};
  const struct {
    const char* name;
    bool wall, eyeInside;
    Rect shade, light, hidden;
    const float* sun;
  } rows[] = {
      // The box (height 2) shades x in [1, 3] and hides what is under it.
      {"box", false, false, {1, -1, 3, 1}, {}, {-1.2, -1.2, 1.2, 1.2}, kWestSun},
      // The wall (x = 0, height 4) shades x in [0, 4]; its window lets light
      // onto x in [1, 3], y in [-1, 1].
      {"wall with a window", true, false, {0, -4, 4, 4}, {1, -1, 3, 1}, {}, kWestSun},
      {"zero light", false, false, {}, {}, {-1.2, -1.2, 1.2, 1.2}, zero},
      {"light not finite", false, false, {}, {}, {-1.2, -1.2, 1.2, 1.2}, notFinite},
      {"light inside the box", false, false, {}, {}, {-1.2, -1.2, 1.2, 1.2}, inside},
      // Depth-fail counting does not care where the eye is: from inside the
      // box's volume, looking down onto the shade, the box hides x < 1.5.
      {"eye inside the volume", false, true, {1, -1, 3, 1}, {}, {-10, -10, 1.5, 10}, kWestSun},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    const unsigned id = caster(r.wall ? std::vector<CRenderShape>{windowWall()} : boxShapes({-1, -1, 0}, {1, 1, 2}))
                            ->getId();
    *scene.camera() = CCamera();
    if (r.eyeInside) {
      const AcGeVector3d forward = AcGeVector3d(-1, -0.4, -1.5).normal();
      const AcGeVector3d up = forward.crossProduct(AcGeVector3d(0, 0, 1)).crossProduct(forward).normal();
      scene.camera()->ReSet(AcGeVector3d(1.5, 0, 0.5), up, forward);
    }
    frame(r.sun);
    EXPECT_EQ(wrongGroundPixels(r.shade, r.light, r.hidden), 0);
    EXPECT_EQ(darkAt({2, 0, 0}), int(r.shade.in(2, 0) && !r.light.in(2, 0)));  // in view: the grid was seen
    if (!r.wall && !r.eyeInside) EXPECT_EQ(darkAt({0, 0, 2}), 0);  // the lit top is not shadowed by its own volume
    set().delObject(id);
  }
}

// Inner roof faces and objects not flagged cast nothing; instanced shapes
// cast under each of their matrices.
TEST_F(ShadowFrame, InnerRoofFacesAndUnflaggedObjectsCastNothingInstancesCastUnderEachMatrix) {
  std::vector<CRenderShape> roof = boxShapes({-1, -1, 0}, {1, 1, 2});
  for (CRenderShape& s : roof) s.setXdata("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6", "\xE5\x86\x85\xE9\x9D\xA2");
  caster(roof);
  caster({windowWall()}, false);
  CRenderObject* o = caster(boxShapes({-5, -1, 0}, {-4, 1, 1}));
  o->setExaGeoShapNum(6);
  for (float dx : {0.0f, 12.0f}) addShift(*o, dx);
  o->calBox();
  frame(kWestSun);
  EXPECT_EQ(darkAt({2, 0, 0}), 0);
  EXPECT_EQ(darkAt({2, 3, 0}), 0);
  // Each 1 unit high box shades one unit east of itself.
  EXPECT_EQ(darkAt({-3.5, 0, 0}), 1);
  EXPECT_EQ(darkAt({8.5, 0, 0}), 1);
  EXPECT_EQ(darkAt({-2.5, 0, 0}), 0);
}

TEST_F(ShadowFrame, MovingTheLightKeepsOneListPerCastingObject) {
  CRenderObject* box = caster(boxShapes({-1, -1, 0}, {1, 1, 2}));
  caster({windowWall()});
  frame(kWestSun);
  const size_t before = liveLists();
  const unsigned boxList = box->getShadowVolumeList();
  EXPECT_NE(boxList, 0u);
  EXPECT_EQ(ground->getShadowVolumeList(), 0u);
  for (int i = 0; i < 1000; ++i) {
    const float sun[4] = {-1.0f, 0.001f * i, 1.0f, 0.0f};
    scene.setLightpos(sun);
    scene.render();
  }
  EXPECT_EQ(liveLists(), before);
  EXPECT_EQ(box->getShadowVolumeList(), boxList);
  // Switching an object off hands its list back.
  box->setGenerateShadow(false);
  scene.render();
  EXPECT_EQ(liveLists(), before - 1);
}
