#pragma once
// Numerical building blocks shared by the curve classes: arc length, the
// parameter at a length, nearest points and feet of perpendiculars. Every
// loop has a fixed iteration limit so that any input terminates.
#include <vector>

#include "kxrender/AcGeCurve3d.h"

namespace kxgeom {

inline bool isFinite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
inline bool isFinite(const AcGeVector3d& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// True when the curve's interval is finite and not reversed.
bool boundedInterval(const AcGeCurve3d& curve, double& lower, double& upper);

// Arc length over [a, b], a <= b, by adaptive Gauss-Legendre quadrature of
// the speed |C'(t)|; 0 when the speed is not finite.
double arcLength(const AcGeCurve3d& curve, double a, double b);

// Parameter at arc length len from "from" (inside the interval), towards the
// upper end when forward. Clamped at the interval's ends.
double paramAtArcLength(const AcGeCurve3d& curve, double from, double len, bool forward);

// Parameter of the nearest curve point, the ends included.
double closestParam(const AcGeCurve3d& curve, const AcGePoint3d& pnt);

// Parameters where C'(t) is perpendicular to C(t) - pnt and not zero.
void footParams(const AcGeCurve3d& curve, const AcGePoint3d& pnt, std::vector<double>& params);

// Root of f in [a, b] where f(a) and f(b) differ in sign (Illinois method
// falling back to bisection).
template <class F>
double bracketedRoot(F f, double a, double b, double fa, double fb) {
  if (fa == 0.0) return a;
  if (fb == 0.0) return b;
  int side = 0;
  for (int iter = 0; iter < 200; ++iter) {
    double t = (fa * b - fb * a) / (fa - fb);
    if (!(t > a && t < b)) t = 0.5 * (a + b);
    double ft = f(t);
    if (ft == 0.0 || !std::isfinite(ft)) return t;
    if ((ft > 0.0) == (fb > 0.0)) {
      b = t;
      fb = ft;
      if (side == -1) fa *= 0.5;
      side = -1;
    } else {
      a = t;
      fa = ft;
      if (side == 1) fb *= 0.5;
      side = 1;
    }
    if (b - a <= 4e-16 * (std::fabs(a) + std::fabs(b)) + 1e-300) break;
  }
  return std::fabs(fa) < std::fabs(fb) ? a : b;
}

}  // namespace kxgeom

namespace kxgeom {

// Exact box of C(t) = center + U cos t + V sin t over [start, end]: the ends
// and every coordinate extremum inside the range.
AcGeBoundBlock3d trigArcBox(const AcGePoint3d& center, const AcGeVector3d& U, const AcGeVector3d& V, double start,
                            double end);

// Brings end above start by whole turns, at most one full turn. False (and
// nothing changed) for non-finite angles.
bool normalizeArcAngles(double& start, double& end);

}  // namespace kxgeom
