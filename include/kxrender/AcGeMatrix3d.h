#pragma once
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGePlane;

/// 4x4 transform, entry[row][col], acting on column vectors: p' = M * p. The
/// translation is column 3, rows 0..2.
class KXRENDER_API AcGeMatrix3d {
public:
  double entry[4][4];  ///< The entries, entry[row][col].

  ///@{
  /// The identity, or a copy.
  AcGeMatrix3d() { setToIdentity(); }
  AcGeMatrix3d(const AcGeMatrix3d&) = default;
  AcGeMatrix3d& operator=(const AcGeMatrix3d&) = default;
  ///@}

  static const AcGeMatrix3d kIdentity;  ///< The identity.

  /// Makes this the identity.
  AcGeMatrix3d& setToIdentity() {
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) entry[r][c] = (r == c) ? 1.0 : 0.0;
    return *this;
  }
  ///@{
  /// Entry (row, col), 0..3 each.
  double operator()(int row, int col) const { return entry[row][col]; }
  double& operator()(int row, int col) { return entry[row][col]; }
  ///@}

  ///@{
  /// Products: this * m, and a * b.
  AcGeMatrix3d operator*(const AcGeMatrix3d& m) const;
  AcGeMatrix3d& operator*=(const AcGeMatrix3d& m) { return postMultBy(m); }
  AcGeMatrix3d& setToProduct(const AcGeMatrix3d& a, const AcGeMatrix3d& b) { return *this = a * b; }
  ///@}
  /// this := m * this
  AcGeMatrix3d& preMultBy(const AcGeMatrix3d& m) { return *this = m * *this; }
  /// this := this * m
  AcGeMatrix3d& postMultBy(const AcGeMatrix3d& m) { return *this = *this * m; }

  /// A singular or non-finite matrix has no inverse: inverse() then gives the
  /// identity and the bool overload reports false, leaving result unchanged.
  AcGeMatrix3d inverse() const;
  bool inverse(AcGeMatrix3d& result) const;  ///< See inverse().
  ///@{
  /// In place inverse (identity when singular); whether there is none.
  AcGeMatrix3d& invert() { return *this = inverse(); }
  bool isSingular() const { AcGeMatrix3d m; return !inverse(m); }
  ///@}
  ///@{
  /// The transpose, in place or not.
  AcGeMatrix3d& transposeIt();
  AcGeMatrix3d transpose() const { AcGeMatrix3d m(*this); return m.transposeIt(); }
  ///@}
  double det() const;  ///< The determinant.

  ///@{
  /// Entry-wise comparison: translation entries within tol.equalPoint, the others within tol.equalVector.
  bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeMatrix3d& m) const { return isEqualTo(m); }
  bool operator!=(const AcGeMatrix3d& m) const { return !isEqualTo(m); }
  ///@}

  /// Largest scale factor of the 3x3 part: the longest image of a unit axis.
  double scale() const;

  AcGeVector3d translation() const { return AcGeVector3d(entry[0][3], entry[1][3], entry[2][3]); }  ///< The translation column.
  /// Sets the translation column, keeping the 3x3 part.
  AcGeMatrix3d& setTranslation(const AcGeVector3d& v) {
    entry[0][3] = v.x; entry[1][3] = v.y; entry[2][3] = v.z;
    return *this;
  }
  ///@{
  /// A pure translation by v.
  AcGeMatrix3d& setToTranslation(const AcGeVector3d& v) { setToIdentity(); return setTranslation(v); }
  static AcGeMatrix3d translation(const AcGeVector3d& v) { AcGeMatrix3d m; return m.setToTranslation(v); }
  ///@}

  /// Rotation by ang radians about the axis through center, right-hand rule.
  AcGeMatrix3d& setToRotation(double ang, const AcGeVector3d& axis, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d rotation(double ang, const AcGeVector3d& axis, const AcGePoint3d& center = AcGePoint3d::kOrigin);  ///< See setToRotation.
  ///@{
  /// Uniform scaling by factor about center.
  AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  ///@}
  ///@{
  /// Reflection in a plane, or through a point.
  AcGeMatrix3d& setToMirroring(const AcGePlane& plane);
  AcGeMatrix3d& setToMirroring(const AcGePoint3d& center);
  static AcGeMatrix3d mirroring(const AcGePlane& plane);
  ///@}

  /// Columns are the axes, the last column the origin: maps local to world.
  AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                               const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
  void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis, AcGeVector3d& zAxis) const;  ///< The axes and origin of the columns; see setCoordSystem.

  /// World coordinates into the plane's own system (plane origin to the world
  /// origin, plane normal to +z) and back.
  AcGeMatrix3d& setToWorldToPlane(const AcGePlane& plane);
  ///@{
  /// See setToWorldToPlane(const AcGePlane&); the normal forms use a plane
  /// through the origin.
  AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);
  AcGeMatrix3d& setToPlaneToWorld(const AcGePlane& plane);
  AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
  static AcGeMatrix3d worldToPlane(const AcGePlane& plane);
  static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);
  static AcGeMatrix3d planeToWorld(const AcGePlane& plane);
  static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
  ///@}

  /// Maps the "from" frame onto the "to" frame: fromOrigin to toOrigin and
  /// each from axis onto the corresponding to axis.
  AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                   const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                   const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                   const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
  /// See setToAlignCoordSys.
  static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                    const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                    const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                    const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
};

///@{
/// m applied to a point (with translation) or a vector (without).
KXRENDER_API AcGePoint3d operator*(const AcGeMatrix3d& m, const AcGePoint3d& p);
KXRENDER_API AcGeVector3d operator*(const AcGeMatrix3d& m, const AcGeVector3d& v);
///@}
