#pragma once
// The eye of a scene: a position and two directions (up and forward), with
// the moves and turns navigation is built from. Angles are radians.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class CArchive;

/// The eye of a scene: location, up and forward directions (world units,
/// unit vectors). Angles are radians; rotations about a point p turn the
/// location about p as well as the directions.
class KXRENDER_API CCamera {
 public:
  ///@{
  /// At the origin looking down -z with +y up; a value type.
  CCamera() = default;
  CCamera(const CCamera&) = default;
  CCamera& operator=(const CCamera&) = default;
  ~CCamera() = default;
  ///@}

  /// Back to the default placement, or to the given one.
  void ReSet();
  void ReSet(const AcGeVector3d& location, const AcGeVector3d& up, const AcGeVector3d& forward);  ///< Sets the placement; up and forward should be perpendicular unit vectors.
  /// gluLookAt(location, location + forward, up) on the current matrix.
  void look() const;

  ///@{
  /// The placement.
  AcGeVector3d GetVLocation() const { return m_vLocation; }
  AcGeVector3d GetVUp() const { return m_vUp; }
  const AcGeVector3d& GetVUpRef() const { return m_vUp; }
  AcGeVector3d GetVForward() const { return m_vForward; }
  ///@}

  ///@{
  /// Moves the eye d world units along forward, right (up x forward) or up.
  void MoveCameraForward(double d);
  void MoveCameraRight(double d);
  void MoveCameraUp(double d);
  ///@}
  ///@{
  /// Moves the eye by v in world axes, or in the camera's own axes.
  void TranslateCaremaWorld(const AcGeVector3d& v);
  void TranslateCaremaLocal(const AcGeVector3d& v);
  ///@}
  ///@{
  /// Turns the directions by a about the camera's own axes, the eye staying put.
  void RotateCaremaLocalX(double a);
  void RotateCaremaLocalY(double a);
  void RotateCaremaLocalZ(double a);
  ///@}
  /// Orbits by a about the world Z axis through p.
  void RotateCaremaRealWorldZ(double a, const AcGePoint3d& p);
  ///@{
  /// Orbits by a about the camera's right, up or forward axis through p.
  void RotateCaremaRight(double a, const AcGePoint3d& p);
  void RotateCaremaUp(double a, const AcGePoint3d& p);
  void RotateCaremaFront(double a, const AcGePoint3d& p);
  ///@}
  /// Slides the eye along its line of sight onto the plane through p that is
  /// perpendicular to forward.
  void OrthoNormal(const AcGePoint3d& p);

  /// Nine doubles: location, forward, up (forward before up).
  virtual void Serialize(CArchive& ar);

 private:
  /// up x forward, not normalised.
  AcGeVector3d side() const { return m_vUp.crossProduct(m_vForward); }
  void turnAbout(double a, const AcGeVector3d& axis, const AcGePoint3d& p, AcGeVector3d* first,
                 AcGeVector3d* second);

  AcGeVector3d m_vLocation{0.0, 0.0, 0.0};
  AcGeVector3d m_vUp{0.0, 1.0, 0.0};
  AcGeVector3d m_vForward{0.0, 0.0, -1.0};
};
