#include <cmath>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CArchive.h"
#include "kxrender/CCamera.h"
#include "support/GLTable.h"

namespace {
bool finite(const AcGeVector3d& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// Runs op on the camera's vectors and puts them back when it left any of
// them non-finite (a NaN or infinite argument, or an overflow): one bad
// call must not lose the view for good.
template <typename Op>
void keepFinite(AcGeVector3d& location, AcGeVector3d& up, AcGeVector3d& forward, Op op) {
  const AcGeVector3d l = location, u = up, f = forward;
  op();
  if (finite(location) && finite(up) && finite(forward)) return;
  location = l;
  up = u;
  forward = f;
}
}  // namespace

void CCamera::ReSet() { *this = CCamera(); }

void CCamera::ReSet(const AcGeVector3d& location, const AcGeVector3d& up, const AcGeVector3d& forward) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    m_vLocation = location;
    m_vUp = up;
    m_vForward = forward;
  });
}

void CCamera::look() const {
  const AcGeVector3d c = m_vLocation + m_vForward;
  kgl->gluLookAt(m_vLocation.x, m_vLocation.y, m_vLocation.z, c.x, c.y, c.z, m_vUp.x, m_vUp.y, m_vUp.z);
}

void CCamera::MoveCameraForward(double d) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vLocation += m_vForward * d; });
}
void CCamera::MoveCameraRight(double d) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vLocation += side() * d; });
}
void CCamera::MoveCameraUp(double d) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vLocation += m_vUp * d; });
}
void CCamera::TranslateCaremaWorld(const AcGeVector3d& v) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vLocation += v; });
}

void CCamera::TranslateCaremaLocal(const AcGeVector3d& v) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    m_vLocation += side() * v.x;
    m_vLocation += m_vUp * v.y;
    m_vLocation += m_vForward * v.z;
  });
}

void CCamera::RotateCaremaLocalX(double a) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    const AcGeVector3d axis = side();
    m_vForward.rotateBy(a, axis);
    m_vUp.rotateBy(a, axis);
  });
}

void CCamera::RotateCaremaLocalY(double a) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vForward.rotateBy(a, m_vUp); });
}
void CCamera::RotateCaremaLocalZ(double a) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { m_vUp.rotateBy(a, m_vForward); });
}

void CCamera::RotateCaremaRealWorldZ(double a, const AcGePoint3d& p) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    const AcGeVector3d z(0.0, 0.0, 1.0);
    m_vLocation.x -= p.x;
    m_vLocation.y -= p.y;
    m_vLocation.rotateBy(a, z);
    m_vLocation.x += p.x;
    m_vLocation.y += p.y;
    m_vForward.rotateBy(a, z);
    m_vUp.rotateBy(a, z);
  });
}

// Turns the eye about the axis through p, together with the given
// directions (each rotated by the same angle about the same axis).
void CCamera::turnAbout(double a, const AcGeVector3d& axis, const AcGePoint3d& p, AcGeVector3d* first,
                        AcGeVector3d* second) {
  AcGeVector3d d = m_vLocation - p.asVector();
  if (first) first->rotateBy(a, axis);
  if (second) second->rotateBy(a, axis);
  d.rotateBy(a, axis);
  m_vLocation = p.asVector() + d;
}

void CCamera::RotateCaremaRight(double a, const AcGePoint3d& p) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] { turnAbout(a, side(), p, &m_vForward, &m_vUp); });
}

void CCamera::RotateCaremaUp(double a, const AcGePoint3d& p) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    const AcGeVector3d axis = m_vUp;
    turnAbout(a, axis, p, &m_vForward, nullptr);
  });
}

void CCamera::RotateCaremaFront(double a, const AcGePoint3d& p) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    const AcGeVector3d axis = m_vForward;
    turnAbout(a, axis, p, &m_vUp, nullptr);
  });
}

void CCamera::OrthoNormal(const AcGePoint3d& p) {
  keepFinite(m_vLocation, m_vUp, m_vForward, [&] {
    if (m_vForward.isZeroLength()) return;
    const AcGePlane plane(p, m_vForward);
    const AcGePoint3d eye(m_vLocation.x, m_vLocation.y, m_vLocation.z);
    const AcGeLine3d sight(eye, m_vForward);
    AcGePoint3d hit;
    if (plane.intersectWith(sight, hit)) m_vLocation = hit.asVector();
  });
}

void CCamera::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    for (const AcGeVector3d* v : {&m_vLocation, &m_vForward, &m_vUp}) ar << v->x << v->y << v->z;
    return;
  }
  // Read whole before use: a short or non-finite record leaves the camera.
  AcGeVector3d v[3];
  for (AcGeVector3d& x : v) ar >> x.x >> x.y >> x.z;
  ReSet(v[0], v[2], v[1]);
}
