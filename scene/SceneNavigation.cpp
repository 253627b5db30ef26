// Zoom, pan and orbit driven by the host's mouse and commands, and the
// history of views that undoes them.
#include <algorithm>
#include <cmath>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CSceneMgr.h"
#include "platform/Win32System.h"
#include "platform/Win32Window.h"

namespace {

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

}  // namespace

void CSceneMgr::clientSize(int& w, int& h) const {
  RECT rc = {0, 0, 0, 0};
  GetClientRect(m_hWnd, &rc);
  // As in setViewport: an empty side counts as one pixel, so the units per
  // pixel stay finite.
  w = std::max<int>(1, rc.right - rc.left);
  h = std::max<int>(1, rc.bottom - rc.top);
}

void CSceneMgr::moveCamera(double a, double b) {
  const AcGeVector3d side = m_camera.GetVUp().crossProduct(m_camera.GetVForward());
  m_camera.TranslateCaremaWorld(side * a);
  m_camera.TranslateCaremaWorld(m_camera.GetVUp() * b);
}

AcGePoint3d CSceneMgr::orbitPivot(bool allowFixed) const {
  if (allowFixed && m_bRotateCenter) return m_rotateCenter;
  AcGePoint3d boxMin, boxMax;
  m_objSetMgr.getBox(boxMin, boxMax);
  const AcGePoint3d centre = boxMin + (boxMax - boxMin) * 0.5;
  // Where the line of sight meets the ground, when that lies over the model;
  // looking past the model, turn about its centre instead.
  const AcGeLine3d sight(AcGePoint3d::kOrigin + m_camera.GetVLocation(), m_camera.GetVForward());
  AcGePoint3d q;
  if (AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis).intersectWith(sight, q) && boxMin.x <= q.x &&
      q.x <= boxMax.x && boxMin.y <= q.y && q.y <= boxMax.y)
    return q;
  return centre;
}

void CSceneMgr::zoom(int n) {
  pushCamera(true);
  if (!setRange(m_dRange * 1000.0 / n)) return;  // n = 0 gives infinity: refused
  SetModelCam();
}

void CSceneMgr::zoomE() {
  // An empty set has no extents to zoom to, not the default box.
  AcGePoint3d boxMin, boxMax;
  if (!m_objSetMgr.measureBox(boxMin, boxMax)) return;
  if (!finite(boxMin) || !finite(boxMax) || boxMin.isEqualTo(boxMax)) return;
  setRange(0.5 * boxMin.distanceTo(boxMax));
  const AcGePoint3d c = boxMin + (boxMax - boxMin) * 0.5;
  m_camera.TranslateCaremaWorld(c.asVector() - m_camera.GetVLocation());
  SetModelCam();
}

void CSceneMgr::zoomW(const AcGePoint3d& a, const AcGePoint3d& b) {
  // The reset camera would take a NaN location; refuse before touching it.
  if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(b.x) || !std::isfinite(b.y)) return;
  const double hx = std::fabs(a.x - b.x) / 2.0;
  const double hy = std::fabs(a.y - b.y) / 2.0;
  m_camera.ReSet(AcGeVector3d(0, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  m_camera.TranslateCaremaWorld(AcGeVector3d((a.x + b.x) / 2.0, (a.y + b.y) / 2.0, 0.0));
  int w, h;
  clientSize(w, h);
  // The range is the half extent of the shorter window side; fit the
  // rectangle's dominant half extent to its window side.
  double r;
  if (hy <= hx)
    r = h <= w ? hx : hx * h / w;
  else
    r = h > w ? hy : hy * w / h;
  if (!setRange(r)) return;
  SetModelCam();
}

void CSceneMgr::zoomW(CPoint p1, CPoint p2) {
  if (p1 == p2) return;
  pushCamera(false);
  int w, h;
  clientSize(w, h);
  const double ux = 2.0 * m_frustumWidth / w;
  const double uy = 2.0 * m_frustumHeight / h;
  // Wide integers: corners far outside the window must not overflow.
  const long long left = std::min(p1.x, p2.x), top = std::min(p1.y, p2.y);
  const long long rw = std::max(p1.x, p2.x) - left, rh = std::max(p1.y, p2.y) - top;
  moveCamera(ux * double(w / 2 - (rw / 2 + left)), uy * double(h / 2 - (rh / 2 + top)));
  scaleRange(std::max(double(rw) / w, double(rh) / h));
  SetModelCam();  // a second time when scaleRange already called it
}

void CSceneMgr::mouseWheel(short delta, CPoint pt) {
  pushCamera(true);
  ScreenToClient(m_hWnd, &pt);
  int w, h;
  clientSize(w, h);
  // In doubles: a cursor far outside the window must not overflow.
  const double dx = double(w / 2) - pt.x, dy = double(h / 2) - pt.y;
  double ux = 2.0 * m_frustumWidth / w;
  double uy = 2.0 * m_frustumHeight / h;
  // Bring the point under the cursor to the centre, scale about the centre,
  // and take the point back under the cursor at the new scale.
  moveCamera(ux * dx, uy * dy);
  if (delta == 120) {
    if (scaleRange(1.0 / 1.4)) {
      ux /= 1.4;
      uy /= 1.4;
    }
  } else if (delta == -120) {
    if (scaleRange(1.6)) {  // out is not the inverse of in: wanted
      ux *= 1.6;
      uy *= 1.6;
    }
  }
  moveCamera(ux * -dx, uy * -dy);
  SetModelCam();
}

void CSceneMgr::mouseMove(CSize d) {
  int w, h;
  clientSize(w, h);
  const double ux = 2.0 * m_frustumWidth / w;
  const double uy = 2.0 * m_frustumHeight / h;
  moveCamera(ux * -double(d.cx), uy * -double(d.cy));
  SetModelCam();
}

void CSceneMgr::mouseFreeRotate(CSize d, CPoint pt) {
  // A drag across 80 % of the shorter side turns half a revolution.
  const double s = 0.8 * std::min(m_viewWidth, m_viewHeight);
  if (!(s > 0.0)) return;  // no viewport yet: no angle can be had
  const double aRight = -double(d.cy) / s * M_PI;
  const double aUp = d.cx / s * M_PI;
  const int cw = m_viewWidth / 2, ch = m_viewHeight / 2;
  const AcGeVector2d u(double(pt.x) + d.cx - cw, double(pt.y) + d.cy - ch);
  const AcGeVector2d v(double(pt.x) - cw, double(pt.y) - ch);
  const double aFront = u.angle() - v.angle();
  const AcGePoint3d pivot = orbitPivot(false);
  switch (m_orbitStatus) {
    case ORBIT_FREE:
      m_camera.RotateCaremaRight(aRight, pivot);
      m_camera.RotateCaremaUp(aUp, pivot);
      break;
    case ORBIT_RIGHT: m_camera.RotateCaremaRight(aRight, pivot); break;
    case ORBIT_UP: m_camera.RotateCaremaUp(aUp, pivot); break;
    case ORBIT_FRONT: m_camera.RotateCaremaFront(aFront, pivot); break;
    default: break;
  }
  SetModelCam();
}

void CSceneMgr::mouseLimitRotate(CSize d, CPoint) {
  const double s = 0.8 * std::min(m_viewWidth, m_viewHeight);
  if (!(s > 0.0)) return;
  const double aRight = -double(d.cy) / s * M_PI;
  const double aZ = d.cx / s * M_PI;
  const AcGePoint3d pivot = orbitPivot(true);
  // Tilt first, then turn about the world z axis: no roll creeps in.
  m_camera.RotateCaremaRight(aRight, pivot);
  m_camera.RotateCaremaRealWorldZ(aZ, pivot);
  SetModelCam();
}

void CSceneMgr::pushCamera(bool bMerge) {
  m_viewExtras.redo.clear();  // a new view: nothing left to redo
  const CameraRecord rec{bMerge, _time64(nullptr), m_camera, m_dRange};
  if (m_cameraStack.empty()) {
    m_cameraStack.push_back(rec);
    return;
  }
  CameraRecord& last = m_cameraStack.back();
  if (last.camera.GetVLocation().isEqualTo(rec.camera.GetVLocation()) &&
      last.camera.GetVUp().isEqualTo(rec.camera.GetVUp()) &&
      last.camera.GetVForward().isEqualTo(rec.camera.GetVForward()) && std::fabs(last.range - rec.range) < 1e-6)
    return;
  // A burst of merging zooms keeps the view from before the burst, so one
  // undo goes back over all of it; a clock set back counts as a burst too.
  if (bMerge && last.merge && rec.time - last.time < 2) {
    last.time = rec.time;
    return;
  }
  m_cameraStack.push_back(rec);
}

void CSceneMgr::popCamera() {
  if (m_cameraStack.empty()) return;
  m_camera = m_cameraStack.back().camera;
  m_dRange = m_cameraStack.back().range;
  m_cameraStack.pop_back();
  SetModelCam();
}
