#pragma once
// Whether the edges of a polygon's contours (given in its plane, z ignored)
// cross each other at most `budget` times. The tessellator's work grows
// with the number of crossings, which can reach n * n / 4 for n vertices:
// an outline that crosses itself that often is refused rather than left to
// run for hours. Close to linear for outlines that cross rarely.
#include <vector>

#include "kxrender/AcGePoint3d.h"

bool contourCrossingsWithin(const std::vector<std::vector<AcGePoint3d>>& contours, size_t budget);
