// Navigation a CAD viewer needs beyond the basic set: zoom to chosen
// objects, orbit about the point under the cursor, and redo of views.
#include <algorithm>
#include <cmath>
#include <limits>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32System.h"

bool CSceneMgr::zoomToObjects(const std::vector<unsigned int>& ids, double margin) {
  const AcGeVector3d up = m_camera.GetVUp().normal();
  const AcGeVector3d side = up.crossProduct(m_camera.GetVForward()).normal();
  // Extents of the boxes' corners across the screen (side) and up it.
  double lo[2] = {std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
  double hi[2] = {-lo[0], -lo[1]};
  bool any = false;
  for (unsigned int id : ids) {
    const CRenderObject* o = m_objSetMgr.getObj(id);
    if (!o || o->numShp() == 0) continue;
    AcGePoint3d a, b;
    o->getBox(a, b);
    for (int c = 0; c < 8; ++c) {
      const AcGeVector3d p((c & 1 ? b : a).x, (c & 2 ? b : a).y, (c & 4 ? b : a).z);
      if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) continue;
      const double s = p.dotProduct(side), u = p.dotProduct(up);
      lo[0] = std::min(lo[0], s), hi[0] = std::max(hi[0], s);
      lo[1] = std::min(lo[1], u), hi[1] = std::max(hi[1], u);
      any = true;
    }
  }
  if (!any) return false;
  int w, h;
  clientSize(w, h);
  const double hx = 0.5 * (hi[0] - lo[0]) * (1.0 + margin), hy = 0.5 * (hi[1] - lo[1]) * (1.0 + margin);
  // The range is the half extent of the shorter window side.
  double r = w >= h ? std::max(hy, hx * h / w) : std::max(hx, hy * w / h);
  r = std::max(r, 1e-6);  // a single point: the smallest range there is
  pushCamera(false);
  const AcGeVector3d loc = m_camera.GetVLocation();
  m_camera.TranslateCaremaWorld(side * (0.5 * (lo[0] + hi[0]) - loc.dotProduct(side)) +
                                up * (0.5 * (lo[1] + hi[1]) - loc.dotProduct(up)));
  setRange(r);
  SetModelCam();
  return true;
}

bool CSceneMgr::setCursorPivot(CPoint pt) {
  m_viewExtras.cursorPivot = false;
  unsigned id = 0, shape = 0;
  if (!pick(pt, id, shape, 0, nullptr, true)) return false;
  AcGePoint3d nearPt, farPt, hit;
  getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  double distance = 0.0;
  unsigned again = 0;
  const CRenderObject* o = getObj(id);
  if (!o || !o->intersectRay(nearPt, farPt, getPickPrecision(), true, distance, hit, again)) return false;
  m_viewExtras.pivot = hit;
  m_viewExtras.cursorPivot = true;
  return true;
}

bool CSceneMgr::getCursorPivot(AcGePoint3d& pivot) const {
  if (m_viewExtras.cursorPivot) pivot = m_viewExtras.pivot;
  return m_viewExtras.cursorPivot;
}

void CSceneMgr::mouseCursorRotate(CSize d, bool limit) {
  // The angles of the free and the limited orbit.
  const double s = 0.8 * std::min(m_viewWidth, m_viewHeight);
  if (!(s > 0.0)) return;
  const double aRight = -double(d.cy) / s * M_PI, aTurn = d.cx / s * M_PI;
  const AcGePoint3d pivot = m_viewExtras.cursorPivot ? m_viewExtras.pivot : orbitPivot(limit);
  m_camera.RotateCaremaRight(aRight, pivot);
  if (limit)
    m_camera.RotateCaremaRealWorldZ(aTurn, pivot);
  else
    m_camera.RotateCaremaUp(aTurn, pivot);
  SetModelCam();
}

bool CSceneMgr::isCurrentView(const CameraRecord& r) const {
  return r.camera.GetVLocation().isEqualTo(m_camera.GetVLocation()) && r.camera.GetVUp().isEqualTo(m_camera.GetVUp()) &&
         r.camera.GetVForward().isEqualTo(m_camera.GetVForward()) && std::fabs(r.range - m_dRange) < 1e-6;
}

void CSceneMgr::undoCamera() {
  if (m_cameraStack.empty()) return;
  std::deque<CameraRecord> redo;
  // A view changed since the last undo or redo starts a new redo list.
  if (canRedoCamera()) redo.swap(m_viewExtras.redo);
  redo.push_back(CameraRecord{false, _time64(nullptr), m_camera, m_dRange});
  popCamera();
  m_viewExtras.redo.swap(redo);
  m_viewExtras.redoFrom = CameraRecord{false, 0, m_camera, m_dRange};
}

bool CSceneMgr::canRedoCamera() const { return !m_viewExtras.redo.empty() && isCurrentView(m_viewExtras.redoFrom); }

bool CSceneMgr::redoCamera() {
  if (!canRedoCamera()) {
    m_viewExtras.redo.clear();
    return false;
  }
  // Back on the undo history directly: pushCamera would merge or clear.
  m_cameraStack.push_back(CameraRecord{false, _time64(nullptr), m_camera, m_dRange});
  m_camera = m_viewExtras.redo.back().camera;
  m_dRange = m_viewExtras.redo.back().range;
  m_viewExtras.redo.pop_back();
  m_viewExtras.redoFrom = CameraRecord{false, 0, m_camera, m_dRange};
  SetModelCam();
  return true;
}
