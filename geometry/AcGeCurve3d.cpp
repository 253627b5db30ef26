#include "kxrender/AcGeCurve3d.h"

#include <algorithm>

#include "CurveNumerics.h"
#include "kxrender/AcGeCurveCurveInt3d.h"

using kxgeom::isFinite;

double AcGeCurve3d::paramOf(const AcGePoint3d& pnt, const AcGeTol&) const { return closestParamTo(pnt); }

double AcGeCurve3d::length(double fromParam, double toParam, const AcGeTol&) const {
  double lower, upper;
  if (!kxgeom::boundedInterval(*this, lower, upper)) return 0.0;
  double a = std::min(std::max(std::min(fromParam, toParam), lower), upper);
  double b = std::min(std::max(std::max(fromParam, toParam), lower), upper);
  return kxgeom::arcLength(*this, a, b);
}

double AcGeCurve3d::paramAtLength(double fromParam, double length, bool forward, const AcGeTol&) const {
  return kxgeom::paramAtArcLength(*this, fromParam, length, forward);
}

double AcGeCurve3d::closestParamTo(const AcGePoint3d& pnt) const { return kxgeom::closestParam(*this, pnt); }

void AcGeCurve3d::normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const {
  kxgeom::footParams(*this, pnt, params);
}

bool AcGeCurve3d::hasStartPoint(AcGePoint3d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  if (!std::isfinite(lower)) return false;
  pnt = evalPoint(lower);
  return true;
}

bool AcGeCurve3d::hasEndPoint(AcGePoint3d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  if (!std::isfinite(upper)) return false;
  pnt = evalPoint(upper);
  return true;
}

bool AcGeCurve3d::isClosed(const AcGeTol& tol) const {
  AcGePoint3d s, e;
  return hasStartPoint(s) && hasEndPoint(e) && s.isEqualTo(e, tol);
}

AcGePoint3d AcGeCurve3d::closestPointTo(const AcGePoint3d& pnt, const AcGeTol&) const {
  return evalPoint(closestParamTo(pnt));
}

AcGePoint3d AcGeCurve3d::closestPointTo(const AcGeCurve3d& other, AcGePoint3d& pntOnOther, const AcGeTol& tol) const {
  // Meeting curves are nearest where they meet.
  AcGeCurveCurveInt3d ints(*this, other, AcGeVector3d::kIdentity, tol);
  if (ints.numIntPoints() > 0) {
    pntOnOther = ints.intPoint(0);
    return ints.intPoint(0);
  }
  // Otherwise start from the nearest pair of samples and alternate
  // projections; each step cannot increase the distance.
  AcArray<AcGePoint3d> samples;
  getSamplePoints(std::max(sampleSpans(), 2) + 1, samples);
  if (samples.isEmpty()) {
    double lower, upper;
    getInterval(lower, upper);
    samples.append(evalPoint(std::isfinite(lower) ? lower : 0.0));
  }
  AcGePoint3d mine = samples[0];
  AcGePoint3d theirs = other.closestPointTo(mine, tol);
  double best = mine.distanceTo(theirs);
  for (const AcGePoint3d& s : samples) {
    AcGePoint3d q = other.closestPointTo(s, tol);
    double d = s.distanceTo(q);
    if (d < best) { best = d; mine = s; theirs = q; }
  }
  for (int iter = 0; iter < 100; ++iter) {
    AcGePoint3d p = closestPointTo(theirs, tol);
    AcGePoint3d q = other.closestPointTo(p, tol);
    double d = p.distanceTo(q);
    if (!(d < best)) break;
    bool settled = best - d <= 1e-15 * (1.0 + best);
    best = d;
    mine = p;
    theirs = q;
    if (settled) break;
  }
  pntOnOther = theirs;
  return mine;
}

void AcGeCurve3d::getClosestPointTo(const AcGePoint3d& pnt, AcGePointOnCurve3d& pntOnCrv, const AcGeTol&) const {
  double t = closestParamTo(pnt);
  pntOnCrv.set(this, t, evalPoint(t));
}

bool AcGeCurve3d::getNormalPoint(const AcGePoint3d& pnt, AcGePointOnCurve3d& pntOnCrv, const AcGeTol&) const {
  std::vector<double> params;
  normalParams(pnt, params);
  if (params.empty()) return false;
  bool useGuess = pntOnCrv.curve() == this && pntOnCrv.hasParameter() && std::isfinite(pntOnCrv.parameter());
  AcGePoint3d target = useGuess ? evalPoint(pntOnCrv.parameter()) : pnt;
  double best = params[0], bestD = INFINITY;
  for (double t : params) {
    double d = evalPoint(t).distanceTo(target);
    if (d < bestD) { bestD = d; best = t; }
  }
  AcGePoint3d foot = evalPoint(best);
  if (!isFinite(foot)) return false;
  pntOnCrv.set(this, best, foot);
  return true;
}

void AcGeCurve3d::getSamplePoints(int numSample, AcArray<AcGePoint3d>& pointArray) const {
  pointArray.removeAll();
  double lower, upper;
  if (numSample < 1 || !kxgeom::boundedInterval(*this, lower, upper)) return;
  if (numSample == 1) {
    pointArray.append(evalPoint(lower));
    return;
  }
  double step = (upper - lower) / (numSample - 1);
  for (int i = 0; i < numSample; ++i) pointArray.append(evalPoint(i + 1 == numSample ? upper : lower + i * step));
}

AcGeBoundBlock3d AcGeCurve3d::boundBlock() const {
  // Box of dense samples, widened by the largest gap between a sample
  // chord and the curve at the chord's middle parameter (twice, for margin).
  AcGeBoundBlock3d box;
  double lower, upper;
  if (!kxgeom::boundedInterval(*this, lower, upper)) return box;
  int spans = 4 * std::min(std::max(sampleSpans(), 1), 1024);
  double step = (upper - lower) / spans, bulge = 0.0;
  AcGePoint3d prev = evalPoint(lower);
  box.extend(prev);
  for (int i = 1; i <= spans; ++i) {
    double t = i == spans ? upper : lower + i * step;
    AcGePoint3d p = evalPoint(t);
    AcGePoint3d mid = evalPoint(t - 0.5 * step);
    AcGePoint3d chordMid = prev + (p - prev) * 0.5;
    bulge = std::max(bulge, mid.distanceTo(chordMid));
    box.extend(p);
    prev = p;
  }
  return box.swell(2.0 * bulge);
}
