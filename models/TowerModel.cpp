// The reference building. Every object is built as a host builds one:
// shapes added and set, endAddShape, then addObject.
#include "kxrender/KxTowerModel.h"

#include <cstdio>
#include <string>
#include <vector>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/KxTextLayout.h"

namespace {

using Pts = std::vector<AcGePoint3d>;
using Holes = std::vector<Pts>;

const CColor kSlabColor(165, 165, 165, 255);
const CColor kWallColor(225, 205, 160, 255);
const CColor kGlassColor(170, 210, 255, 128);
const CColor kFrameColor(40, 40, 45, 255);
const CColor kInteriorColor(236, 233, 226, 255);
const CColor kLabelColor(70, 70, 80, 255);
const CColor kRoofColor(150, 75, 55, 255);

constexpr double kBay = 6.0;
constexpr double kStorey = 3.0;
constexpr double kHalfThickness = 0.1;  // interior walls are 0.2 m
constexpr double kLabelHeight = 0.5;

const AcGeVector3d kUp(0.0, 0.0, 1.0);

// A vertical or horizontal rectangle: origin + along * a + up * b for a in
// [a0, a1], b in [b0, b1], counter-clockwise about along x up.
Pts rect(const AcGePoint3d& origin, const AcGeVector3d& along, const AcGeVector3d& up, double a0, double a1,
         double b0, double b1) {
  return {origin + along * a0 + up * b0, origin + along * a1 + up * b0, origin + along * a1 + up * b1,
          origin + along * a0 + up * b1};
}

CRenderShape& newShape(CRenderObject& o) {
  o.addShape(CRenderShape());
  return o.getShps().back();
}

void polygon(CRenderObject& o, const Pts& pts, const Holes& holes, const CColor& c, const AcGeVector3d& n) {
  newShape(o).set(pts, holes, CRenderShape::kPgon, c, n);
}

void closedLine(CRenderObject& o, Pts pts, const CColor& c, const AcGeVector3d& n) {
  pts.push_back(pts.front());
  newShape(o).set(pts, {}, CRenderShape::kPline, c, n);
}

void countShape(const CRenderShape& s, KxModelCounts& c) {
  if (s.getShpType() == CRenderShape::kPgon) {
    ++c.polygons;
    c.holes += s.getHoles().size();
  }
  for (const auto& strip : s.getStrips())
    if (strip.size() >= 3) c.triangles += strip.size() - 2;
  c.vertices += s.getGlPts().size() / 3;
  if (s.getShpType() == CRenderShape::kFace) {
    if (const auto* idx = s.getFaceTriangleIndexArray()) c.triangles += idx->size() / 3;
    if (const auto* v = s.getFaceVertexArray()) c.vertices += v->size();
  }
}

struct Builder {
  CObjectSetMgr& set;
  KxModelCounts counts;
  // Finishes the object, counts what it became, and hands it to the set.
  void add(CRenderObject* o) {
    o->endAddShape();
    ++counts.objects;
    for (const CRenderShape& s : o->getShps()) countShape(s, counts);
    set.addObject(o);
  }
};

void slab(Builder& b, double w, double c, double z0) {
  CRenderObject* o = new CRenderObject;
  const Pts outline = {{0, 0, z0}, {w, 0, z0}, {w, w, z0}, {0, w, z0}};
  const Holes openings = {
      {{c - 5, c - 3, z0}, {c - 1, c - 3, z0}, {c - 1, c + 3, z0}, {c - 5, c + 3, z0}},          // stair
      {{c + 1, c - 1.5, z0}, {c + 4, c - 1.5, z0}, {c + 4, c + 1.5, z0}, {c + 1, c + 1.5, z0}}};  // lift
  polygon(*o, outline, openings, kSlabColor, kUp);
  b.add(o);
}

// Side s runs along `along` from `start`, facing `out`.
void facade(Builder& b, const AcGePoint3d& start, const AcGeVector3d& along, const AcGeVector3d& out) {
  const Pts window = rect(start, along, kUp, 2.0, 4.0, 0.75, 2.25);
  CRenderObject* panel = new CRenderObject;
  polygon(*panel, rect(start, along, kUp, 0.0, kBay, 0.0, kStorey), {window}, kWallColor, out);
  b.add(panel);

  CRenderObject* win = new CRenderObject;
  win->getShps().reserve(2);  // the glass and its frame: no regrowth, nothing to trim
  CRenderShape& glass = newShape(*win);
  glass.setFaceType(false);
  glass.setClr(kGlassColor);
  glass.setUcs(out);
  // The setters copy into arrays the shape owns.
  std::vector<int> triangles{0, 1, 2, 0, 2, 3};
  std::vector<AcGeVector3d> normals(4, out);
  Pts corners(window);
  glass.setFaceVertexArray(&corners);
  glass.setFaceTriangleIndexArray(&triangles);
  glass.setFaceNormalArray(&normals);
  glass.addHitLine(window);
  glass.calBox();
  glass.calArea();
  closedLine(*win, window, kFrameColor, out);
  b.add(win);
}

// A 6 x 0.2 x 3 wall centred on the line from start along `along`; `across`
// is horizontal and perpendicular to it.
void interiorWall(Builder& b, const AcGePoint3d& start, const AcGeVector3d& along, const AcGeVector3d& across,
                  bool door) {
  CRenderObject* o = new CRenderObject;
  o->getShps().reserve(6);  // no regrowth, nothing to trim
  const double t = kHalfThickness;
  const AcGePoint3d top = start + kUp * kStorey;
  polygon(*o, rect(start, along, across, 0.0, kBay, -t, t), {}, kInteriorColor, -kUp);
  polygon(*o, rect(top, along, across, 0.0, kBay, -t, t), {}, kInteriorColor, kUp);
  for (double side : {-1.0, 1.0}) {
    const AcGePoint3d face = start + across * (side * t);
    Holes holes;
    if (door) holes.push_back(rect(face, along, kUp, 2.5, 3.5, 0.1, 2.2));
    polygon(*o, rect(face, along, kUp, 0.0, kBay, 0.0, kStorey), holes, kInteriorColor, across * side);
  }
  polygon(*o, rect(start, across, kUp, -t, t, 0.0, kStorey), {}, kInteriorColor, -along);
  polygon(*o, rect(start + along * kBay, across, kUp, -t, t, 0.0, kStorey), {}, kInteriorColor, along);
  b.add(o);
}

// A label's stand-in: the outline its text will fill, CJK characters a
// full height wide and others six tenths.
void label(Builder& b, const AcGePoint3d& at, const std::string& text, const char* font) {
  if (font) {
    CRenderObject* o = new CRenderObject;
    o->setXdata(CString(text));
    KxAddTextLine(*o, CString(text), font, kLabelHeight, at, AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), kLabelColor);
    b.add(o);
    return;
  }
  double width = 0.0;
  for (char ch : text) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      width += 0.6 * kLabelHeight;
    } else if (c >= 0xC0) {
      width += kLabelHeight;  // one per lead byte
    }
  }
  CRenderObject* o = new CRenderObject;
  o->setXdata(CString(text));
  closedLine(*o, rect(at, AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), 0.0, width, 0.0, kLabelHeight),
             kLabelColor, kUp);
  b.add(o);
}

void roof(Builder& b, double w, double c, double eaves) {
  const double ridge = eaves + w / 4.0;
  const AcGePoint3d r0(w / 4.0, c, ridge), r1(3.0 * w / 4.0, c, ridge);
  // Eaves corners counter-clockwise from the origin.
  const AcGePoint3d e0(0, 0, eaves), e1(w, 0, eaves), e2(w, w, eaves), e3(0, w, eaves);
  const Pts faces[4] = {{e0, e1, r1, r0}, {e1, e2, r1}, {e2, e3, r0, r1}, {e3, e0, r0}};
  CRenderObject* o = new CRenderObject;
  o->getShps().reserve(4);
  for (const Pts& f : faces) {
    const AcGeVector3d n = (f[1] - f[0]).crossProduct(f[2] - f[0]).normal();
    CRenderShape& s = newShape(*o);
    s.set(f, {}, CRenderShape::kPgon, kRoofColor, n);
    s.setXdata("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6", "\xE5\xA4\x96\xE9\x9D\xA2");  // 坡屋顶 = 外面
  }
  b.add(o);
}

}  // namespace

KxModelCounts KxCountModel(const CObjectSetMgr& set) {
  KxModelCounts c;
  for (const auto& kv : set.objects()) {
    if (!kv.second) continue;
    ++c.objects;
    for (const CRenderShape& s : kv.second->getShps()) countShape(s, c);
  }
  return c;
}

KxModelCounts KxBuildTower(CObjectSetMgr& set, int storeys, int bays) { return KxBuildTower(set, storeys, bays, nullptr); }

KxModelCounts KxBuildTower(CObjectSetMgr& set, int storeys, int bays, const char* labelFont) {
  Builder b{set, {}};
  if (storeys < 1 || storeys > kTowerMaxStoreys || bays < kTowerMinBays || bays > kTowerMaxBays) return b.counts;
  const double w = kBay * bays;
  const double c = w / 2.0;
  const int labelsPerSide = (bays + 1) / 2;
  for (int k = 0; k < storeys; ++k) {
    const double z0 = kStorey * k;
    slab(b, w, c, z0);
    // Counter-clockwise round the footprint, each side facing out.
    const struct {
      AcGePoint3d start;
      AcGeVector3d along, out;
    } sides[4] = {{{0, 0, z0}, {1, 0, 0}, {0, -1, 0}},
                  {{w, 0, z0}, {0, 1, 0}, {1, 0, 0}},
                  {{w, w, z0}, {-1, 0, 0}, {0, 1, 0}},
                  {{0, w, z0}, {0, -1, 0}, {-1, 0, 0}}};
    for (const auto& side : sides)
      for (int i = 0; i < bays; ++i) facade(b, side.start + side.along * (kBay * i), side.along, side.out);
    int wall = 0;
    for (int i = 1; i < bays; ++i)
      for (int j = 0; j < bays; ++j)
        interiorWall(b, {kBay * i, kBay * j, z0}, {0, 1, 0}, {1, 0, 0}, wall++ % 3 == 0);
    for (int i = 1; i < bays; ++i)
      for (int j = 0; j < bays; ++j)
        interiorWall(b, {kBay * j, kBay * i, z0}, {1, 0, 0}, {0, 1, 0}, wall++ % 3 == 0);
    int room = 0;
    for (int x = 0; x < labelsPerSide; ++x) {
      for (int y = 0; y < labelsPerSide; ++y) {
        char number[32];
        std::snprintf(number, sizeof number, "%d-%d", k + 1, ++room);
        label(b, {12.0 * x + 1.5, 12.0 * y + 1.5, z0 + 1.5}, std::string("\xE6\x88\xBF\xE9\x97\xB4") + number,
              labelFont);
      }
    }
  }
  roof(b, w, c, kStorey * storeys);
  return b.counts;
}
