#pragma once
// What a screen rectangle sees, in world coordinates: the part of the view
// volume (between its near and far planes) behind a window rectangle, as
// six inward planes and the four corner lines. Rectangle selection tests
// shapes against it without projecting them through GL.
//
// The view data it is made from, as scene picking prepares it (and as
// CRenderShape::intersectRect and allInRect take it): three vectors, the
// model-view matrix (16 values), the projection matrix (16 values), both
// in OpenGL's column-major order, and the viewport (x, y, width, height).
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CRect.h"

class CPickVolume {
 public:
  typedef std::vector<std::vector<double>> ViewData;

  static ViewData makeViewData(const double* modelView, const double* projection, const int* viewport);

  // Window rectangle in pixels (origin top left, y down), edges included;
  // a reversed rectangle is taken as its normal form. `instance` is a
  // transform applied to the geometry before the view (an instance matrix).
  CPickVolume(const CRect& rect, const ViewData& view, const AcGeMatrix3d* instance = nullptr);

  // False for malformed or non-finite view data, a singular view, or an
  // empty viewport: then nothing is inside and nothing crosses.
  bool valid() const { return m_valid; }

  bool contains(const AcGePoint3d& p) const;
  // Whether any part of the segment a-b lies inside.
  bool meetsSegment(const AcGePoint3d& a, const AcGePoint3d& b) const;
  // Polyline (segments between consecutive points; one point: the point).
  bool meetsPolyline(const std::vector<AcGePoint3d>& pts, bool closed) const;
  bool containsAll(const std::vector<AcGePoint3d>& pts) const;
  // 0: the box lies wholly outside; 2: wholly inside; 1: undecided.
  int classifyBox(const double min[3], const double max[3]) const;
  int classifyBox(const AcGePoint3d& min, const AcGePoint3d& max) const;

  // The six planes (a, b, c, d; inside where a x + b y + c z + d >= 0) in
  // the form CObjectSetMgr::getObjsInFrustum takes.
  std::vector<std::vector<double>> planes() const;

  // The corner lines of the rectangle, from the near to the far plane:
  // top left, top right, bottom right, bottom left.
  const AcGePoint3d& cornerNear(int i) const { return m_near[i]; }
  const AcGePoint3d& cornerFar(int i) const { return m_far[i]; }

 private:
  double side(int plane, const AcGePoint3d& p) const {
    const double* h = m_planes[plane];
    return h[0] * p.x + h[1] * p.y + h[2] * p.z + h[3];
  }

  bool m_valid = false;
  double m_planes[6][4] = {};
  AcGePoint3d m_near[4];
  AcGePoint3d m_far[4];
};
