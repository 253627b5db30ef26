#include "CurveNumerics.h"

#include <algorithm>
#include <cmath>

namespace kxgeom {
namespace {

// 10-point Gauss-Legendre nodes and weights on [-1, 1] (positive half).
const double kNodes[5] = {0.1488743389816312108848260, 0.4333953941292471907992659, 0.6794095682990244062343274,
                          0.8650633666889845107320967, 0.9739065285171717200779640};
const double kWeights[5] = {0.2955242247147528701738930, 0.2692667193099963550912269, 0.2190863625159820439955349,
                            0.1494513491505805931457763, 0.0666713443086881375935688};

double gaussSpeed(const AcGeCurve3d& curve, double a, double b) {
  double mid = 0.5 * (a + b), half = 0.5 * (b - a), sum = 0.0;
  for (int i = 0; i < 5; ++i) {
    sum += kWeights[i] * (curve.evalDeriv(mid - half * kNodes[i]).length() +
                          curve.evalDeriv(mid + half * kNodes[i]).length());
  }
  return sum * half;
}

int clampedSpans(const AcGeCurve3d& curve) { return std::min(std::max(curve.sampleSpans(), 1), 4096); }

// g(t) = C'(t) . (C(t) - P): zero where the curve is perpendicular to the
// direction towards P; rises through a local minimum of the distance.
double footFunction(const AcGeCurve3d& curve, const AcGePoint3d& pnt, double t) {
  return curve.evalDeriv(t).dotProduct(curve.evalPoint(t) - pnt);
}

}  // namespace

bool boundedInterval(const AcGeCurve3d& curve, double& lower, double& upper) {
  curve.getInterval(lower, upper);
  return std::isfinite(lower) && std::isfinite(upper) && lower <= upper;
}

double arcLength(const AcGeCurve3d& curve, double a, double b) {
  if (!(a < b) || !std::isfinite(a) || !std::isfinite(b)) return 0.0;
  int spans = clampedSpans(curve);
  double step = (b - a) / spans;
  // A first estimate fixes the absolute accuracy asked of each piece.
  std::vector<double> coarse(spans);
  double estimate = 0.0;
  for (int i = 0; i < spans; ++i) {
    double lo = a + i * step, hi = (i + 1 == spans) ? b : a + (i + 1) * step;
    coarse[i] = gaussSpeed(curve, lo, hi);
    estimate += coarse[i];
  }
  if (!std::isfinite(estimate)) return 0.0;
  if (estimate == 0.0) return 0.0;

  struct Piece { double lo, hi, value; int depth; };
  std::vector<Piece> stack;
  for (int i = spans - 1; i >= 0; --i)
    stack.push_back({a + i * step, (i + 1 == spans) ? b : a + (i + 1) * step, coarse[i], 0});
  double total = 0.0;
  int budget = 20000;  // pieces split at most; bounds the work on any input
  while (!stack.empty()) {
    Piece p = stack.back();
    stack.pop_back();
    double mid = 0.5 * (p.lo + p.hi);
    double left = gaussSpeed(curve, p.lo, mid), right = gaussSpeed(curve, mid, p.hi);
    double allowed = 1e-15 * estimate * std::max((p.hi - p.lo) / (b - a), 1e-3);
    if (std::fabs(left + right - p.value) <= allowed || p.depth >= 40 || budget <= 0 || !(mid > p.lo && mid < p.hi)) {
      total += left + right;
      continue;
    }
    --budget;
    stack.push_back({mid, p.hi, right, p.depth + 1});
    stack.push_back({p.lo, mid, left, p.depth + 1});
  }
  return total;
}

double paramAtArcLength(const AcGeCurve3d& curve, double from, double len, bool forward) {
  double lower, upper;
  if (!boundedInterval(curve, lower, upper) || !std::isfinite(from) || !std::isfinite(len) || !(len >= 0.0))
    return from;
  from = std::min(std::max(from, lower), upper);
  if (len == 0.0) return from;
  // Work in u = distance in parameter from "from", so that s(u) increases.
  double dir = forward ? 1.0 : -1.0;
  double uMax = forward ? upper - from : from - lower;
  auto lengthTo = [&](double u) {
    double t = from + dir * u;
    return forward ? arcLength(curve, from, t) : arcLength(curve, t, from);
  };
  double total = lengthTo(uMax);
  if (!(len < total)) return from + dir * uMax;

  double ua = 0.0, ub = uMax, sa = 0.0;
  double u = uMax * (len / total);
  for (int iter = 0; iter < 100; ++iter) {
    // Length from the bracket's low end keeps each quadrature short.
    double t = from + dir * u;
    double s = sa + (forward ? arcLength(curve, from + dir * ua, t) : arcLength(curve, t, from + dir * ua));
    double f = s - len;
    if (std::fabs(f) <= 1e-15 * total) break;
    if (f < 0.0) { ua = u; sa = s; } else { ub = u; }
    double speed = curve.evalDeriv(t).length();
    double next = u - f / speed;
    if (!(next > ua && next < ub)) next = 0.5 * (ua + ub);
    if (!(ub - ua > 4e-16 * std::max(std::fabs(from + dir * ua), std::fabs(from + dir * ub)))) break;
    u = next;
  }
  return from + dir * u;
}

double closestParam(const AcGeCurve3d& curve, const AcGePoint3d& pnt) {
  double lower, upper;
  if (!boundedInterval(curve, lower, upper)) return std::isfinite(lower) ? lower : 0.0;
  if (!isFinite(pnt) || lower == upper) return lower;
  int spans = clampedSpans(curve);
  double step = (upper - lower) / spans;
  auto paramAt = [&](int i) { return i == spans ? upper : lower + i * step; };
  auto dist2 = [&](double t) { return (curve.evalPoint(t) - pnt).lengthSqrd(); };
  auto g = [&](double t) { return footFunction(curve, pnt, t); };

  double best = lower, bestD = dist2(lower);
  if (!std::isfinite(bestD)) bestD = INFINITY;
  double tPrev = lower, gPrev = g(lower);
  for (int i = 1; i <= spans; ++i) {
    double t = paramAt(i), gt = g(t);
    double d = dist2(t);
    if (d < bestD) { bestD = d; best = t; }
    // A local minimum of the distance lies where g rises through zero.
    if (gPrev < 0.0 && gt > 0.0) {
      double r = bracketedRoot(g, tPrev, t, gPrev, gt);
      double dr = dist2(r);
      if (dr < bestD) { bestD = dr; best = r; }
    }
    tPrev = t;
    gPrev = gt;
  }
  return best;
}

void footParams(const AcGeCurve3d& curve, const AcGePoint3d& pnt, std::vector<double>& params) {
  params.clear();
  double lower, upper;
  if (!boundedInterval(curve, lower, upper) || !isFinite(pnt)) return;
  int spans = clampedSpans(curve);
  double step = (upper - lower) / spans;
  auto g = [&](double t) { return footFunction(curve, pnt, t); };
  auto accept = [&](double t) {
    // A stationary point of the curve has no tangent, hence no perpendicular.
    AcGeVector3d d = curve.evalDeriv(t);
    if (!(d.length() > 1e-300) || !isFinite(d)) return;
    AcGeVector3d toPnt = curve.evalPoint(t) - pnt;
    // A jump of g across a kink is no foot: the angle there must be right,
    // up to the rounding of coordinates of the curve's size.
    double scale = curve.evalPoint(t).asVector().length() + pnt.asVector().length();
    double slack = 1e-6 * toPnt.length() + 1e-12 * scale;
    if (!(std::fabs(d.dotProduct(toPnt)) <= d.length() * slack)) return;
    if (!params.empty() && curve.evalPoint(params.back()).isEqualTo(curve.evalPoint(t))) return;
    params.push_back(t);
  };
  double tPrev = lower, gPrev = g(lower);
  if (gPrev == 0.0) accept(lower);
  for (int i = 1; i <= spans; ++i) {
    double t = (i == spans) ? upper : lower + i * step, gt = g(t);
    if (gt == 0.0)
      accept(t);
    else if ((gPrev < 0.0 && gt > 0.0) || (gPrev > 0.0 && gt < 0.0))
      accept(bracketedRoot(g, tPrev, t, gPrev, gt));
    tPrev = t;
    gPrev = gt;
  }
  // A closed curve may report its seam twice.
  if (params.size() > 1 && curve.evalPoint(params.front()).isEqualTo(curve.evalPoint(params.back())))
    params.pop_back();
}

}  // namespace kxgeom

namespace kxgeom {

AcGeBoundBlock3d trigArcBox(const AcGePoint3d& center, const AcGeVector3d& U, const AcGeVector3d& V, double start,
                            double end) {
  auto at = [&](double t) { return center + U * std::cos(t) + V * std::sin(t); };
  AcGeBoundBlock3d box(at(start), at(end));
  if (!(end > start) || !std::isfinite(end - start)) return box;
  for (int i = 0; i < 3; ++i) {
    // d/dt (U_i cos t + V_i sin t) = 0 at t = atan2(V_i, U_i) + k pi.
    double t0 = std::atan2(V[i], U[i]);
    double k = std::ceil((start - t0) / M_PI);
    for (int step = 0; step < 4; ++step) {
      double t = t0 + (k + step) * M_PI;
      if (t > end) break;
      box.extend(at(t));
    }
  }
  return box;
}

bool normalizeArcAngles(double& start, double& end) {
  if (!std::isfinite(start) || !std::isfinite(end)) return false;
  const double turn = 2.0 * M_PI;
  if (end < start) end += turn * std::ceil((start - end) / turn);
  // Far from zero a turn is below the angles' precision and the sum above
  // can land short of the start: the arc has no measurable sweep.
  if (end < start) end = start;
  if (end - start > turn) end = start + turn;
  return true;
}

}  // namespace kxgeom
