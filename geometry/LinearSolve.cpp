#include "LinearSolve.h"

#include <cmath>
#include <utility>

namespace kxgeom {

bool solveLinearSystem(std::vector<double>& A, std::vector<AcGePoint3d>& B, int size) {
  auto at = [&](int r, int c) -> double& { return A[static_cast<size_t>(r) * size + c]; };
  for (int col = 0; col < size; ++col) {
    int pivot = col;
    for (int r = col + 1; r < size; ++r)
      if (std::fabs(at(r, col)) > std::fabs(at(pivot, col))) pivot = r;
    if (!(at(pivot, col) != 0.0) || !std::isfinite(at(pivot, col))) return false;
    if (pivot != col) {
      for (int c = 0; c < size; ++c) std::swap(at(pivot, c), at(col, c));
      std::swap(B[pivot], B[col]);
    }
    for (int r = col + 1; r < size; ++r) {
      if (at(r, col) == 0.0) continue;
      double f = at(r, col) / at(col, col);
      for (int c = col; c < size; ++c)
        if (at(col, c) != 0.0) at(r, c) -= f * at(col, c);
      B[r] -= B[col].asVector() * f;
    }
  }
  for (int r = size - 1; r >= 0; --r) {
    AcGeVector3d sum = B[r].asVector();
    for (int c = r + 1; c < size; ++c)
      if (at(r, c) != 0.0) sum -= B[c].asVector() * at(r, c);
    sum /= at(r, r);
    if (!std::isfinite(sum.x) || !std::isfinite(sum.y) || !std::isfinite(sum.z)) return false;
    B[r] = AcGePoint3d(sum.x, sum.y, sum.z);
  }
  return true;
}

}  // namespace kxgeom
