#pragma once
#include <vector>

#include "kxrender/AcArray.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGeCircArc3d;
class AcGeCurve3d;
class AcGeMatrix3d;
class CPoint;
class CRect;
class CSceneMgr;
class CString;
class CStringArray;

/// The small geometric tests and conversions used by picking, culling,
/// snapping, triangulation and text. Static functions only; a function with
/// a double tolerance compares points with a default AcGeTol whose
/// equalPoint is that tolerance, the others with AcGeContext::gTol.
class KXRENDER_API CRenderSysUtils {
public:
  /// System-wide length precision; callers pass it where a tolerance is due.
  static double PRECISION;

  /// Result of rayIntersectWithYZ.
  enum BOXFACE { BOXFACE_OUTSIDE = -1, BOXFACE_INSIDE = 0, BOXFACE_CROSSING = 1 };

  CRenderSysUtils() = delete;  ///< Static functions only.

  // --- Points, distances, angles -----------------------------------------
  static AcGePoint3d getMidPoint(const AcGePoint3d& a, const AcGePoint3d& b);  ///< The point halfway between a and b.
  static double getDist(const AcGePoint3d& a, const AcGePoint3d& b);  ///< Distance from a to b.
  /// Componentwise bounds; an empty list leaves min and max unchanged.
  static void getMinMaxPt(const std::vector<AcGePoint3d>& points, AcGePoint3d& minPt, AcGePoint3d& maxPt);
  static void getSphere(const AcGePoint3d& minPt, const AcGePoint3d& maxPt, AcGePoint3d& center, float& radius);  ///< The sphere around the box: its centre and half its diagonal.
  /// (p2 - p1) x (p3 - p2), not normalised.
  static AcGeVector3d getNormal(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3);
  /// Direction of b - a against the x axis in [0, 2pi); the side is chosen by
  /// the sign of y alone. 0 for points closer than 1e-10.
  static double getAngle(const AcGePoint3d& a, const AcGePoint3d& b);
  static double getAngle(const AcGePoint2d& a, const AcGePoint2d& b);  ///< The same in 2D.
  /// 1 when a - b > tol, -1 when a - b < -tol, else 0.
  static int floatComp(double a, double b, double tol);

  // --- Areas and orientation (XY plane) --------------------------------
  static double getTriangleArea(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c);  ///< Area of the triangle's projection on the XY plane (unsigned).
  static double getPolygonArea(const std::vector<AcGePoint3d>& points);  ///< Signed area in the XY plane: positive counter-clockwise.
  /// True for a clockwise (or degenerate, zero-area) outline.
  static bool polyClockWise(const std::vector<AcGePoint3d>& points);
  /// Reverses points when their turning sense in the plane through the
  /// first point with this normal differs from the one asked for.
  static void cvtClock(std::vector<AcGePoint3d>& points, const AcGeVector3d& normal, bool clockwise);
  /// Area of a planar outline in its own plane.
  static double calPolyArea(const std::vector<AcGePoint3d>& points);

  // --- Intersections -----------------------------------------------------
  /// p itself when it lies on the segment a-b within tol; false otherwise.
  static bool ptIntersectWithLine(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b,
                                  AcGePoint3d& out, double tol);
  /// The first crossing of the polyline with the segment a-b, within tol.
  static bool plineIntersectWithLine(const std::vector<AcGePoint3d>& points, const AcGePoint3d& a,
                                     const AcGePoint3d& b, AcGePoint3d& out, double tol);
  /// The crossing of a ray with the segment a-b (3D and 2D), within tol.
  static bool rayIntersectWithSeg(const AcGePoint3d& origin, const AcGeVector3d& direction, const AcGePoint3d& a,
                                  const AcGePoint3d& b, AcGePoint3d& out, double tol);
  /// See the 3D form.
  static bool rayIntersectWithSeg(const AcGePoint2d& origin, const AcGeVector2d& direction, const AcGePoint2d& a,
                                  const AcGePoint2d& b, AcGePoint2d& out, double tol);
  /// Both faces of the triangle count.
  static bool rayIntersectWithTriangle(const AcGePoint3d& origin, const AcGeVector3d& direction,
                                       const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
                                       AcGePoint3d* out = nullptr);
  /// The box grows by *margin (0.01 without one) on every side. Faces are
  /// tested in the order -x, +x, -y, +y, -z, +z; on equal distances the
  /// earlier face is kept. distance is measured along the ray in length
  /// units.
  static bool rayIntersectWithBox(const AcGePoint3d& origin, const AcGeVector3d& direction,
                                  const AcGePoint3d& minPt, const AcGePoint3d& maxPt, AcGePoint3d* hit = nullptr,
                                  double* distance = nullptr, double* margin = nullptr);
  /// Crossings (count 0 to 2, in p1 and p2) of an arc with the line through a and b.
  static bool arcIntersectWithLine(const AcGeCircArc3d& arc, const AcGePoint3d& a, const AcGePoint3d& b, int& count,
                                   AcGePoint3d& p1, AcGePoint3d& p2, double tol);
  /// Crossings of two curves, appended to points; false for none or a null curve.
  static bool curveIntersectWithCurve(const AcGeCurve3d* c1, const AcGeCurve3d* c2, std::vector<AcGePoint3d>& points,
                                      double tol);
  /// See the pointer form.
  static bool curveIntersectWithCurve(const AcGeCurve3d& c1, const AcGeCurve3d& c2, std::vector<AcGePoint3d>& points,
                                      double tol) {
    return curveIntersectWithCurve(&c1, &c2, points, tol);
  }
  /// Hit of a line with a planar face (outer outline minus holes; a hit on a
  /// hole's edge still counts). With isRay only points at or ahead of the
  /// origin count. A zero normal is replaced by the outline's own normal.
  static bool faceIntersectWithLine(const std::vector<AcGePoint3d>& outer, const AcGeVector3d& normal,
                                    const AcGePoint3d& origin, const AcGeVector3d& direction, AcGePoint3d& hit,
                                    double tol,
                                    const std::vector<std::vector<AcGePoint3d>>& holes =
                                        std::vector<std::vector<AcGePoint3d>>(),
                                    bool isRay = true);
  /// Inside test in the XY plane; a vertex or edge within tol answers onEdge.
  /// Crossings of a ray towards +x are counted with an edge taken when one
  /// end lies above p and the other not (floatComp), so a vertex on the ray
  /// counts once.
  static bool PtInArea(const AcGePoint3d& p, const std::vector<AcGePoint3d>& polygon, double tol, bool onEdge);
  /// Foot of the perpendicular from p onto the curve; among several, the
  /// one nearest ref. Arcs and ellipses take p into their plane first.
  static bool DroopPoint(const AcGePoint3d& p, const AcGePoint3d& ref, const AcGeCurve3d* curve, AcGePoint3d& foot,
                         double tol);
  static AcGePoint3d getCurveMidPoint(const AcGeCurve3d* curve);  ///< The point at the curve's middle parameter.

  // --- Screen space (window pixels) --------------------------------------
  static bool ptInRect(const CPoint& p, const CRect& rect);  ///< True when p lies inside rect or on its edge (window pixels).
  static bool rectIntersectWithRect(int l1, int t1, int r1, int b1, int l2, int t2, int r2, int b2);  ///< True when two rectangles (left, top, right, bottom) overlap or touch.
  static bool segIntersectWithRect(const CPoint& a, const CPoint& b, const CRect& rect);  ///< True when the segment a-b meets the rectangle or lies inside it.
  static bool segIntersectWithRectSide(const CPoint& a, const CPoint& b, const CRect& rect);  ///< True when the segment a-b crosses a side of the rectangle.
  static bool allInRect(const CSceneMgr* scene, const std::vector<AcGePoint3d>& points, const CRect& rect);  ///< True when every point's screen image lies inside rect.
  /// 0 outside, 1 inside, 2 crossing, 3 the box's screen image encloses the
  /// rectangle.
  static int boxToFrustum(const CSceneMgr* scene, const AcGePoint3d& minPt, const AcGePoint3d& maxPt,
                          const CRect& rect);
  /// Only the first five planes are consulted: the far plane never culls.
  static bool sphereInFrustum(const std::vector<std::vector<double>>& planes, const AcGePoint3d& center,
                              double radius);
  static BOXFACE rayIntersectWithYZ();  ///< Slab test of a fixed built-in ray against -50 <= x <= 50; kept for hosts.

  // --- Conversions ---------------------------------------------------------
  /// m[4 * col + row] = entry[row][col]: OpenGL's column-major order.
  static void convertMatrixTo16(const AcGeMatrix3d& matrix, float* m);
  ///@{
  /// See the float form above; convert16ToMatrix reads the same layout back.
  static void convertMatrixTo16(const AcGeMatrix3d& matrix, double* m);
  static void convert16ToMatrix(const float* m, AcGeMatrix3d& matrix);
  static void convert16ToMatrix(const double* m, AcGeMatrix3d& matrix);
  ///@}
  ///@{
  /// Copies points between the two array types.
  static void acgePtary2vecPtary(const AcArray<AcGePoint3d>& from, std::vector<AcGePoint3d>& to);
  static void vecPtary2acgePtary(const std::vector<AcGePoint3d>& from, AcArray<AcGePoint3d>& to);
  ///@}
  /// Two bytes in the ANSI code page to one UTF-16 unit; returns the number
  /// of units written (0 when the bytes do not form one character).
  static int Gb2312ToUnicode(unsigned short* out, unsigned char* in);
  /// n separators give n + 1 pieces, empty ones included; an empty text
  /// adds nothing.
  static void Str2StrArr(const CString& text, CStringArray& array, char separator);
  /// Folder of the running executable, with a trailing '/' (the native
  /// separator of this platform).
  static CString getDllPath();
};
