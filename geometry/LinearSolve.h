#pragma once
#include <vector>

#include "kxrender/AcGePoint3d.h"

namespace kxgeom {

// Solves A X = B for a dense size x size matrix A (row-major) and point
// right-hand sides, in place in B, by Gaussian elimination with partial
// pivoting. Zero entries are skipped, so banded systems cost little.
// False for a singular or non-finite system.
bool solveLinearSystem(std::vector<double>& A, std::vector<AcGePoint3d>& B, int size);

}  // namespace kxgeom
