// Projection of each frame, the frustum planes, and screen/world conversion.
#include <algorithm>
#include <cmath>
#include <limits>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"
#include "support/GLTable.h"

namespace {
constexpr LONG kLongMin = std::numeric_limits<LONG>::min();
constexpr LONG kLongMax = std::numeric_limits<LONG>::max();
}  // namespace

void CSceneMgr::setViewport() {
  RECT rc = {0, 0, 0, 0};
  GetClientRect(m_hWnd, &rc);
  const int w = std::max<int>(1, rc.right - rc.left);
  const int h = std::max<int>(1, rc.bottom - rc.top);
  setImageProjection(w, h, 0, 0, w, h, true);
}

void CSceneMgr::setImageProjection(int w, int h, int x, int y, int tw, int th, bool moveCamera) {
  kgl->Viewport(0, 0, tw, th);
  kgl->MatrixMode(GL_PROJECTION);
  kgl->LoadIdentity();

  double fw, fh;
  if (w <= h) {
    fw = m_dRange;
    fh = h * m_dRange / w;
  } else {
    fw = w * m_dRange / h;
    fh = m_dRange;
  }
  const double larger = std::max(fw, fh);
  // A region's edges on the whole picture's volume; the picture's own edges
  // exactly, so a one-piece frame is not touched by rounding.
  auto across = [](double half, int at, int whole) {
    return at == 0 ? -half : at == whole ? half : -half + 2.0 * half * at / whole;
  };
  const double left = across(fw, x, w), right = across(fw, x + tw, w);
  const double top = -across(fh, y, h), bottom = -across(fh, y + th, h);

  if (m_bPerspective == 0) {
    AcGePoint3d boxMin, boxMax;
    m_objSetMgr.getBox(boxMin, boxMax);
    const AcGePoint3d centre = boxMin + (boxMax - boxMin) * 0.5;
    if (moveCamera) m_camera.OrthoNormal(centre);
    const double rad = 0.5 * boxMin.distanceTo(boxMax);
    // The eye sits level with the box centre and the volume reaches as far
    // behind it as in front, so the eye's place never clips the model.
    const double n = std::min(-100.0 * larger, -rad);
    const double f = std::max(100.0 * larger, rad);
    kgl->Ortho(left, right, bottom, top, 2.0 * n, 2.0 * f);
  } else {
    kgl->gluPerspective(45.0, static_cast<double>(w / h), 0.1, 1000.0);  // integer aspect, kept
  }
  kgl->MatrixMode(GL_MODELVIEW);
  kgl->LoadIdentity();
  m_viewWidth = w;
  m_viewHeight = h;
  m_frustumWidth = fw;
  m_frustumHeight = fh;
}

void CSceneMgr::updateFrustumAndMatrix() {
  kgl->GetDoublev(GL_MODELVIEW_MATRIX, m_modelViewMatrix);
  kgl->GetDoublev(GL_PROJECTION_MATRIX, m_projMatrix);
  kgl->GetIntegerv(GL_VIEWPORT, m_viewport);

  double clip[16];
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) {
      double sum = 0.0;
      for (int k = 0; k < 4; ++k) sum += m_modelViewMatrix[4 * j + k] * m_projMatrix[4 * k + i];
      clip[4 * j + i] = static_cast<float>(sum);
    }
  auto column = [&clip](int i, int row) { return clip[4 * row + i]; };
  // right, left, bottom, top, near: C3 -/+ C0, C3 +/- C1, C3 + C2.
  const int axis[5] = {0, 0, 1, 1, 2};
  const double sign[5] = {-1.0, 1.0, 1.0, -1.0, 1.0};
  // A tile drawn through a larger viewport sees only its own part of it:
  // the side planes move in to the tile's edges.
  double edge[5] = {1.0, 1.0, 1.0, 1.0, 1.0};
  if (m_regionSize[0] > 0 && m_viewport[2] > 0 && m_viewport[3] > 0) {
    auto ndc = [](double at, int origin, int size) { return std::clamp(2.0 * (at - origin) / size - 1.0, -1.0, 1.0); };
    edge[0] = ndc(m_regionSize[0], m_viewport[0], m_viewport[2]);
    edge[1] = -ndc(0, m_viewport[0], m_viewport[2]);
    edge[2] = -ndc(0, m_viewport[1], m_viewport[3]);
    edge[3] = ndc(m_regionSize[1], m_viewport[1], m_viewport[3]);
  }
  // Sized once: this runs every frame and must not allocate.
  if (m_frustumPlanes.size() != 5) m_frustumPlanes.resize(5);
  for (int p = 0; p < 5; ++p) {
    std::vector<double>& plane = m_frustumPlanes[size_t(p)];
    plane.resize(4);
    for (int row = 0; row < 4; ++row)
      plane[size_t(row)] = edge[p] * column(3, row) + sign[p] * column(axis[p], row);
    const float length =
        static_cast<float>(std::sqrt(plane[0] * plane[0] + plane[1] * plane[1] + plane[2] * plane[2]));
    if (length > 0.0f)
      for (double& v : plane) v /= length;
  }
}

bool CSceneMgr::setRange(double r) {
  if (!(r >= 1e-6 && r <= 1e15)) return false;
  m_dRange = r;
  return true;
}

bool CSceneMgr::scaleRange(double f) {
  const double r = m_dRange * f;
  if (!(r >= 1e-6 && r <= 1e15)) return false;
  m_dRange = r;
  SetModelCam();
  return true;
}

double CSceneMgr::getPixelsPerUnit() const {
  return (m_viewWidth < m_viewHeight ? m_viewWidth : m_viewHeight) / m_dRange;
}

double CSceneMgr::getPickPrecision() const {
  // A negative precision picks as zero does (the pixel itself), as the
  // pick aperture does, rather than with a negative tolerance that hits nothing.
  return m_viewWidth ? std::max(0, m_pickPixelPrecision) * m_frustumWidth / m_viewWidth : 0.0;
}

void CSceneMgr::world2screen(const AcGePoint3d& p, CPoint& out) const {
  double wx = 0.0, wy = 0.0, wz = 0.0;
  kgl->gluProject(p.x, p.y, p.z, m_modelViewMatrix, m_projMatrix, m_viewport, &wx, &wy, &wz);
  // Truncate towards zero, then flip to window rows growing downwards. Far
  // points (grips behind the eye, huge models) land outside the LONG range:
  // clamp them there rather than overflow; a NaN goes far off the screen.
  auto clampToLong = [](double v) -> LONG {
    if (!(v > double(kLongMin))) return kLongMin;
    if (v >= double(kLongMax)) return kLongMax;
    return static_cast<LONG>(v);
  };
  out.x = clampToLong(std::trunc(wx));
  out.y = clampToLong(double(m_viewport[3]) - std::trunc(wy));
}

CPoint CSceneMgr::world2screen(const AcGePoint3d& p) const {
  CPoint out;
  world2screen(p, out);
  return out;
}

void CSceneMgr::getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint pt, AcGePoint3d& nearPt,
                                                                   AcGePoint3d& farPt) const {
  const double y = double(m_viewport[3]) - pt.y;
  kgl->gluUnProject(pt.x, y, 0.0, m_modelViewMatrix, m_projMatrix, m_viewport, &nearPt.x, &nearPt.y, &nearPt.z);
  kgl->gluUnProject(pt.x, y, 1.0, m_modelViewMatrix, m_projMatrix, m_viewport, &farPt.x, &farPt.y, &farPt.z);
}

AcGePoint3d CSceneMgr::screen2world(CPoint pt, ProjectPlane plane) const {
  AcGePoint3d nearPt, farPt;
  getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  AcGeVector3d normal;
  switch (plane) {
    case PLANE_NEAR: return nearPt;
    case PLANE_FAR: return farPt;
    case PLANE_XY: normal = AcGeVector3d::kZAxis; break;
    case PLANE_XZ: normal = AcGeVector3d::kYAxis; break;
    case PLANE_YZ: normal = AcGeVector3d::kXAxis; break;
    default: return AcGePoint3d::kOrigin;
  }
  return screen2world(pt, AcGePlane(AcGePoint3d::kOrigin, normal));
}

AcGePoint3d CSceneMgr::screen2world(CPoint pt, const AcGePlane& plane) const {
  AcGePoint3d nearPt, farPt;
  getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  if (nearPt.isEqualTo(farPt)) return AcGePoint3d::kOrigin;
  AcGePoint3d hit;
  if (plane.intersectWith(AcGeLine3d(nearPt, farPt), hit)) return hit;
  return AcGePoint3d::kOrigin;
}

AcGeVector3d CSceneMgr::ScreenVectorTo3d(AcGeVector2d v, const CCamera& cam) {
  const AcGeVector3d up = cam.GetVUp().normal();
  const AcGeVector3d side = cam.GetVUp().crossProduct(cam.GetVForward()).normal();
  return up * v.y - side * v.x;
}

void CSceneMgr::getFrustumPlaneFrom2Pt(const CPoint& p1, const CPoint& p2,
                                       std::vector<std::vector<double>>& planes) const {
  planes.clear();
  const int x0 = std::min(p1.x, p2.x), x1 = std::max(p1.x, p2.x);
  const int y0 = std::min(p1.y, p2.y), y1 = std::max(p1.y, p2.y);  // y0 is the top row
  // Window points on the near (depth 0) and far (depth 1) planes.
  auto unproject = [this](double x, double y, double depth, AcGePoint3d& out) {
    return kgl->gluUnProject(x, m_viewport[3] - y, depth, m_modelViewMatrix, m_projMatrix, m_viewport, &out.x, &out.y,
                             &out.z) == GL_TRUE;
  };
  AcGePoint3d corner, cornerRight, cornerDown, farCorner;
  if (!unproject(x0, y0, 0.0, corner) || !unproject(x0 + 1.0, y0, 0.0, cornerRight) ||
      !unproject(x0, y0 + 1.0, 0.0, cornerDown) || !unproject(x0, y0, 1.0, farCorner))
    return;
  // The near plane maps window points affinely, so one pixel step gives the
  // world directions of the screen axes everywhere on it, even for an empty
  // rectangle whose corners coincide.
  const AcGeVector3d ex = cornerRight - corner;  // screen right
  const AcGeVector3d ey = cornerDown - corner;   // screen down
  const AcGeVector3d sight = farCorner - corner;
  // A side plane holds the eye rays along one edge: its normal is the ray
  // crossed with the edge, turned towards `inward`.
  auto sidePlane = [&](const AcGePoint3d& on, const AcGeVector3d& ray, const AcGeVector3d& edge,
                       const AcGeVector3d& inward) {
    AcGeVector3d n = ray.crossProduct(edge);
    if (n.dotProduct(inward) < 0.0) n = -n;
    const double len = n.length();
    if (len > 0.0) n = n / len;
    planes.push_back({n.x, n.y, n.z, -n.dotProduct(on.asVector())});
  };
  // Each side takes its own corner's ray, so a perspective view gets the
  // slanted sides it needs.
  auto ray = [&](int x, int y, AcGePoint3d& on) {
    AcGePoint3d farPt;
    unproject(x, y, 0.0, on);
    unproject(x, y, 1.0, farPt);
    return farPt - on;
  };
  AcGePoint3d on;
  AcGeVector3d r = ray(x1, y0, on);
  sidePlane(on, r, ey, -ex);  // right
  r = ray(x0, y0, on);
  sidePlane(on, r, ey, ex);  // left
  r = ray(x0, y1, on);
  sidePlane(on, r, ex, -ey);  // bottom
  r = ray(x0, y0, on);
  sidePlane(on, r, ex, ey);  // top
  // Near: the view's own, facing along the line of sight.
  AcGeVector3d n = sight;
  const double len = n.length();
  if (len > 0.0) n = n / len;
  planes.push_back({n.x, n.y, n.z, -n.dotProduct(corner.asVector())});
}
