#pragma once
// Texture coordinates of the points of a planar face: the face's outline is
// fitted with a plane and a bounding rectangle in it, and every point gets
// its place in that rectangle, scaled by a repeat count per direction.
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/Export.h"

/// Texture coordinates of the points of a planar face: the outline is fitted
/// with a plane and a bounding rectangle in it, and each point gets its place
/// in that rectangle, scaled by a repeat count per direction.
class KXRENDER_API CTextureCoord {
 public:
  CTextureCoord() = default;

  /// Kept for the caller; the mapping does not use it.
  void setPictureSize(int w, int h) {
    m_nPicWidth = w;
    m_nPicHeight = h;
  }
  /// Repeat counts across (u) and down (v).
  void setUV(float u, float v) {
    m_fU = u;
    m_fV = v;
  }
  /// Fits the plane and the rectangle; false, changing nothing, when the
  /// points span no plane (fewer than 3, or all on one line).
  bool setPts(const std::vector<AcGePoint3d>& pts);
  /// s across scaled by u; t down from the top edge, scaled by v only when v
  /// is not negative.
  AcGePoint2d getTextureCoord(const AcGePoint3d& p) const;
  /// Unscaled: both in 0..1 over the outline's rectangle.
  AcGePoint2d getTextureCoord2(const AcGePoint3d& p) const;

  ///@{
  /// The settings and the fitted rectangle (corners in plane coordinates) and
  /// the transform from world to plane coordinates.
  int getPicWidth() const { return m_nPicWidth; }
  int getPicHeight() const { return m_nPicHeight; }
  float getU() const { return m_fU; }
  float getV() const { return m_fV; }
  const AcGePoint3d& getMinPt() const { return m_ptMin; }
  const AcGePoint3d& getMaxPt() const { return m_ptMax; }
  const AcGeMatrix3d& getWorldToPlane() const { return m_worldToPlane; }
  ///@}

 private:
  AcGePoint3d m_ptMin;
  AcGePoint3d m_ptMax;
  /// Until set: no picture, and the texture once across the face.
  int m_nPicWidth = 0;
  int m_nPicHeight = 0;
  float m_fU = 1.0f;
  float m_fV = 1.0f;
  AcGeMatrix3d m_worldToPlane;
};
