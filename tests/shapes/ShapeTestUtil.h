#pragma once
// Shared by the shape tests: contour builders, triangles read back from
// strips, and an even-odd inside test of their own.
#include <cmath>
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/CRenderShape.h"
#include "support/PrivateAccess.h"

// Sets what no public call reaches without a GL context.
KX_PRIVATE_MEMBER(FaceDisplayListOf, &CRenderShape::m_faceDisplayList);
struct CRenderShapeTestAccess {
  static void setDisplayList(CRenderShape& s, unsigned list) { s.*privateMember(FaceDisplayListOf{}) = list; }
};

namespace shapetest {
using Contour = std::vector<AcGePoint3d>;
using Contours = std::vector<Contour>;
const AcGeVector3d kUp(0, 0, 1);

inline CRenderShape polygon(const Contour& outer, const Contours& holes = {}, const AcGeVector3d& n = kUp) {
  CRenderShape s;
  s.set(outer, holes, CRenderShape::kPgon, CColor(), n);
  return s;
}
inline CRenderShape polyline(const Contour& pts, const CColor& clr = CColor(0, 255, 0, 255)) {
  CRenderShape s;
  s.set(pts, {}, CRenderShape::kPline, clr, kUp);
  return s;
}
inline Contour rect(double x0, double y0, double x1, double y1, double z = 0) {  // counter-clockwise
  return {{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}};
}
inline Contour ngon(double r, int n, double phase = 0, double cx = 0, double cy = 0) {
  Contour c;
  for (int i = 0; i < n; ++i) c.emplace_back(cx + r * std::cos(phase + 2 * M_PI * i / n), cy + r * std::sin(phase + 2 * M_PI * i / n), 0);
  return c;
}
// A text along x at pos, without glyph outlines.
// Text in the line font generated beside the test programs.
inline CRenderShape textShape(const char* text, const AcGePoint3d& pos = AcGePoint3d(), const CColor& c = CColor(),
                              double height = 1.0) {
  CRenderShape s;
  TextInfo* t = new TextInfo;
  t->text = text;
  t->font = "单线体";
  t->height = height;
  t->position = pos;
  t->dir1 = AcGeVector3d(1, 0, 0);
  t->dir2 = AcGeVector3d(0, 1, 0);
  s.set(t, c, kUp);
  return s;
}
// A face mesh holding copies of v and idx, every normal +z, its box set.
inline CRenderShape faceMesh(Contour v, std::vector<int> idx) {
  CRenderShape s;
  s.setFaceType();
  std::vector<AcGeVector3d> n(v.size(), kUp);
  s.setFaceVertexArray(&v);
  s.setFaceTriangleIndexArray(&idx);
  s.setFaceNormalArray(&n);
  s.calBox();
  return s;
}
inline double ngonArea(double r, int n) { return 0.5 * n * r * r * std::sin(2 * M_PI / n); }

struct Tri {
  AcGePoint3d a, b, c;
  double area() const { return 0.5 * (b - a).crossProduct(c - a).length(); }
  double signedArea(const AcGeVector3d& n) const { return 0.5 * (b - a).crossProduct(c - a).dotProduct(n); }
  AcGePoint3d centroid() const { return AcGePoint3d((a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3, (a.z + b.z + c.z) / 3); }
};
inline AcGePoint3d vertex(const CRenderShape& s, unsigned i) {
  return AcGePoint3d(s.getGlPts()[3 * i], s.getGlPts()[3 * i + 1], s.getGlPts()[3 * i + 2]);
}
// GL strip order: odd triangles swap their first two vertices.
inline std::vector<Tri> triangles(const CRenderShape& s) {
  std::vector<Tri> out;
  for (const auto& st : s.getStrips())
    for (size_t k = 0; k + 2 < st.size(); ++k)
      out.push_back({vertex(s, st[k + k % 2]), vertex(s, st[k + 1 - k % 2]), vertex(s, st[k + 2])});
  return out;
}
// Even-odd rule over the edges of all contours (closed or not), XY plane.
inline bool oddInside(double x, double y, const Contours& contours) {
  bool inside = false;
  for (const Contour& c : contours)
    for (size_t i = 0, j = c.size() - 1; i < c.size(); j = i++)
      if ((c[i].y > y) != (c[j].y > y) && x < (c[j].x - c[i].x) * (y - c[i].y) / (c[j].y - c[i].y) + c[i].x) inside = !inside;
  return inside;
}
}  // namespace shapetest
