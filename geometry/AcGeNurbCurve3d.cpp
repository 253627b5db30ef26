#include "kxrender/AcGeNurbCurve3d.h"

#include <algorithm>
#include <vector>

#include "CurveNumerics.h"
#include "LinearSolve.h"
#include "kxrender/AcGeMatrix3d.h"

namespace {

// Index k of the knot span [U[k], U[k+1]) holding u, for p <= k < n; the
// upper end of the range belongs to the last non-empty span.
int findSpan(int n, int p, double u, const AcGeKnotVector& U) {
  if (u >= U[n]) {
    int k = n - 1;
    while (k > p && U[k] >= U[n]) --k;
    return k;
  }
  if (u <= U[p]) {
    int k = p;
    while (k < n - 1 && U[k + 1] <= U[p]) ++k;
    return k;
  }
  int lo = p, hi = n;
  while (hi - lo > 1) {
    int mid = (lo + hi) / 2;
    if (u < U[mid]) hi = mid;
    else lo = mid;
  }
  return lo;
}

// Non-zero basis functions N[span-p .. span] at u and their derivatives
// (Cox-de Boor triangle; derivatives from the degree p-1 row).
void basisFunctions(int span, double u, int p, const AcGeKnotVector& U, double* N, double* dN) {
  double ndu[AcGeNurbCurve3d::kMaxDegree + 1][AcGeNurbCurve3d::kMaxDegree + 1];
  double left[AcGeNurbCurve3d::kMaxDegree + 1], right[AcGeNurbCurve3d::kMaxDegree + 1];
  ndu[0][0] = 1.0;
  for (int j = 1; j <= p; ++j) {
    left[j] = u - U[span + 1 - j];
    right[j] = U[span + j] - u;
    double saved = 0.0;
    for (int r = 0; r < j; ++r) {
      ndu[j][r] = right[r + 1] + left[j - r];
      double temp = ndu[j][r] != 0.0 ? ndu[r][j - 1] / ndu[j][r] : 0.0;
      ndu[r][j] = saved + right[r + 1] * temp;
      saved = left[j - r] * temp;
    }
    ndu[j][j] = saved;
  }
  for (int r = 0; r <= p; ++r) N[r] = ndu[r][p];
  if (!dN) return;
  for (int r = 0; r <= p; ++r) {
    int i = span - p + r;
    double lower = r >= 1 ? ndu[r - 1][p - 1] : 0.0;
    double upper = r <= p - 1 ? ndu[r][p - 1] : 0.0;
    double d1 = U[i + p] - U[i], d2 = U[i + p + 1] - U[i + 1];
    dN[r] = p * ((d1 != 0.0 ? lower / d1 : 0.0) - (d2 != 0.0 ? upper / d2 : 0.0));
  }
}

}  // namespace

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                                 bool)
    : mDegree(degree), mKnots(knots), mControlPoints(controlPoints) {
  validate();
}

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                                 const AcGeDoubleArray& weights, bool)
    : mDegree(degree), mKnots(knots), mControlPoints(controlPoints), mWeights(weights) {
  validate();
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                                 const AcGeVector3d& endTangent, bool startTangentDefined, bool endTangentDefined,
                                 const AcGeTol& fitTolerance)
    : mFitTol(fitTolerance) {
  interpolate(fitPoints, startTangent, endTangent, startTangentDefined, endTangentDefined);
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeTol& fitTolerance)
    : mFitTol(fitTolerance) {
  interpolate(fitPoints, AcGeVector3d(), AcGeVector3d(), false, false);
}

void AcGeNurbCurve3d::validate() {
  int n = mControlPoints.length(), p = mDegree;
  mValid = false;
  if (p < 1 || p > kMaxDegree || n < p + 1 || mKnots.length() != n + p + 1) return;
  for (int i = 0; i < mKnots.length(); ++i) {
    if (!std::isfinite(mKnots[i])) return;
    if (i > 0 && mKnots[i] < mKnots[i - 1]) return;
  }
  if (!(mKnots[p] < mKnots[n])) return;
  if (!mWeights.isEmpty()) {
    if (mWeights.length() != n) return;
    for (double w : mWeights)
      if (!(w > 0.0) || !std::isfinite(w)) return;
  }
  mValid = true;
}

void AcGeNurbCurve3d::interpolate(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                                  const AcGeVector3d& endTangent, bool startDefined, bool endDefined) {
  mHasFitData = true;
  mDegree = 3;
  for (const AcGePoint3d& q : fitPoints) {
    if (!kxgeom::isFinite(q)) { mFitPoints.removeAll(); mValid = false; return; }
    if (mFitPoints.isEmpty() || !mFitPoints.last().isEqualTo(q, mFitTol)) mFitPoints.append(q);
  }
  int n = mFitPoints.length() - 1;  // Q0..Qn
  if (n < 1) { mValid = false; return; }
  const AcGePoint3dArray& Q = mFitPoints;

  // Chord-length parameters: the curve is then close to unit speed.
  std::vector<double> u(n + 1, 0.0);
  for (int k = 1; k <= n; ++k) u[k] = u[k - 1] + Q[k].distanceTo(Q[k - 1]);

  auto bessel = [&](int a, int b, int c, double ua, double ub, double uc) {
    // Derivative at ua of the parabola through the three points.
    double h1 = ub - ua, h2 = uc - ub;
    return (Q[a].asVector() * (-(2.0 * h1 + h2) / (h1 * (h1 + h2))) +
            Q[b].asVector() * ((h1 + h2) / (h1 * h2)) - Q[c].asVector() * (h1 / (h2 * (h1 + h2))));
  };
  AcGeVector3d d0 = startDefined ? startTangent.normal() : AcGeVector3d();
  AcGeVector3d dn = endDefined ? endTangent.normal() : AcGeVector3d();
  if (d0.lengthSqrd() == 0.0)
    d0 = n == 1 ? (Q[1] - Q[0]) / u[1] : bessel(0, 1, 2, u[0], u[1], u[2]);
  if (dn.lengthSqrd() == 0.0)
    dn = n == 1 ? (Q[1] - Q[0]) / u[1] : -bessel(n, n - 1, n - 2, -u[n], -u[n - 1], -u[n - 2]);

  // Clamped cubic with knots at the interior parameters: n + 3 control
  // points, fixed by the end points, the end tangents and C(u_k) = Q_k.
  mKnots = AcGeKnotVector();
  for (int i = 0; i < 4; ++i) mKnots.append(u[0]);
  for (int k = 1; k < n; ++k) mKnots.append(u[k]);
  for (int i = 0; i < 4; ++i) mKnots.append(u[n]);
  int size = n + 3;
  std::vector<double> A(size * size, 0.0);
  std::vector<AcGePoint3d> rhs(size);
  A[0] = 1.0;
  rhs[0] = Q[0];
  A[1 * size + 1] = 1.0;
  rhs[1] = Q[0] + d0 * ((u[1] - u[0]) / 3.0);
  for (int k = 1; k < n; ++k) {
    double N[4];
    int span = findSpan(size, 3, u[k], mKnots);
    basisFunctions(span, u[k], 3, mKnots, N, nullptr);
    for (int r = 0; r <= 3; ++r) A[(k + 1) * size + span - 3 + r] = N[r];
    rhs[k + 1] = Q[k];
  }
  A[(n + 1) * size + n + 1] = 1.0;
  rhs[n + 1] = Q[n] - dn * ((u[n] - u[n - 1]) / 3.0);
  A[(n + 2) * size + n + 2] = 1.0;
  rhs[n + 2] = Q[n];
  mControlPoints.removeAll();
  mWeights.removeAll();
  if (!kxgeom::solveLinearSystem(A, rhs, size)) { mValid = false; return; }
  for (const AcGePoint3d& P : rhs) mControlPoints.append(P);
  validate();
}

AcGePoint3d AcGeNurbCurve3d::controlPointAt(int index) const {
  if (mControlPoints.isEmpty()) return AcGePoint3d();
  return mControlPoints[std::min(std::max(index, 0), mControlPoints.length() - 1)];
}

double AcGeNurbCurve3d::knotAt(int index) const {
  if (mKnots.isEmpty()) return 0.0;
  return mKnots[std::min(std::max(index, 0), mKnots.length() - 1)];
}

double AcGeNurbCurve3d::weightAt(int index) const {
  if (mWeights.isEmpty()) return 1.0;
  return mWeights[std::min(std::max(index, 0), mWeights.length() - 1)];
}

bool AcGeNurbCurve3d::getFitPointAt(int index, AcGePoint3d& pnt) const {
  if (!mHasFitData || index < 0 || index >= mFitPoints.length()) return false;
  pnt = mFitPoints[index];
  return true;
}

void AcGeNurbCurve3d::getInterval(double& lower, double& upper) const {
  if (!mValid) {
    lower = upper = std::numeric_limits<double>::quiet_NaN();
    return;
  }
  lower = mKnots[mDegree];
  upper = mKnots[mControlPoints.length()];
}

void AcGeNurbCurve3d::evaluate(double param, AcGePoint3d& pnt, AcGeVector3d* deriv) const {
  pnt = AcGePoint3d();
  if (deriv) *deriv = AcGeVector3d();
  if (!mValid || std::isnan(param)) return;
  int n = mControlPoints.length(), p = mDegree;
  double u = std::min(std::max(param, mKnots[p]), mKnots[n]);
  int span = findSpan(n, p, u, mKnots);
  double N[kMaxDegree + 1], dN[kMaxDegree + 1];
  basisFunctions(span, u, p, mKnots, N, deriv ? dN : nullptr);
  // Homogeneous sums: A = sum N w P, W = sum N w, and their derivatives.
  AcGeVector3d A, dA;
  double W = 0.0, dW = 0.0;
  for (int r = 0; r <= p; ++r) {
    int i = span - p + r;
    double w = weightAt(i);
    AcGeVector3d P = mControlPoints[i].asVector();
    A += P * (N[r] * w);
    W += N[r] * w;
    if (deriv) {
      dA += P * (dN[r] * w);
      dW += dN[r] * w;
    }
  }
  AcGeVector3d C = A / W;
  pnt = AcGePoint3d(C.x, C.y, C.z);
  if (deriv) *deriv = (dA - C * dW) / W;
}

AcGePoint3d AcGeNurbCurve3d::evalPoint(double param) const {
  AcGePoint3d p;
  evaluate(param, p, nullptr);
  return p;
}

AcGeVector3d AcGeNurbCurve3d::evalDeriv(double param) const {
  AcGePoint3d p;
  AcGeVector3d d;
  evaluate(param, p, &d);
  return d;
}

int AcGeNurbCurve3d::sampleSpans() const {
  if (!mValid) return 1;
  int spans = 0;
  for (int i = mDegree; i < mControlPoints.length(); ++i)
    if (mKnots[i + 1] > mKnots[i]) ++spans;
  return std::min(4096, std::max(1, spans) * std::max(8, 4 * mDegree));
}

AcGeBoundBlock3d AcGeNurbCurve3d::boundBlock() const {
  AcGeBoundBlock3d box;
  if (!mValid) return box;
  for (const AcGePoint3d& p : mControlPoints) box.extend(p);
  return box;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::transformBy(const AcGeMatrix3d& mat) {
  for (AcGePoint3d& p : mControlPoints) p.transformBy(mat);
  for (AcGePoint3d& p : mFitPoints) p.transformBy(mat);
  return *this;
}
