#pragma once
// The reference building ("tower"): a deterministic office tower used to
// measure the engine and to exercise it with a realistic mix of shapes.
//
// S storeys of 3 m, B bays of 6 m per side (footprint 6B x 6B). Each storey,
// in this order: a floor slab with a stair and a lift opening; for each of
// the four sides and each bay, a wall panel with a window opening followed
// by the window (glass face mesh and frame polyline); the interior walls on
// the 6 m grid (x lines, then y lines, each in B bays; every third one with
// a door through it); one room label per 2 x 2 bays. Then one hipped roof
// object of four sloped polygons tagged "坡屋顶" = "外面" (outer faces: they
// cast shadows).
#include <cstddef>

#include "kxrender/Export.h"

class CObjectSetMgr;

/// What a model holds, as counted by KxBuildTower and KxCountModel.
struct KXRENDER_API KxModelCounts {
  size_t objects = 0;  ///< render objects
  size_t polygons = 0;   ///< polygon shapes
  size_t holes = 0;      ///< holes of those polygons
  size_t triangles = 0;  ///< drawn triangles: polygon strips and face meshes
  size_t vertices = 0;   ///< their vertices: triangulated points and face mesh vertices
};

/// Named sizes of the benchmarks: storeys and bays of tower-M and tower-XL.
///@{
constexpr int kTowerMStoreys = 20, kTowerMBays = 10;
constexpr int kTowerXLStoreys = 60, kTowerXLBays = 20;
///@}
/// What KxBuildTower accepts. The stair and lift openings need a footprint
/// of at least two bays (12 m) to lie inside the slab.
///@{
constexpr int kTowerMinBays = 2;
constexpr int kTowerMaxStoreys = 1000, kTowerMaxBays = 100;
///@}

/// Adds the tower's objects to the set, in the order above, and returns the
/// counts of what it added. Sizes outside 1..kTowerMaxStoreys and
/// kTowerMinBays..kTowerMaxBays add nothing and give zero counts.
KXRENDER_API KxModelCounts KxBuildTower(CObjectSetMgr& set, int storeys, int bays);
/// The same with the room labels as real text in `labelFont` (one text shape
/// per character, see KxAddTextLine()) instead of their outlines; a null
/// labelFont gives the outlines.
KXRENDER_API KxModelCounts KxBuildTower(CObjectSetMgr& set, int storeys, int bays, const char* labelFont);

/// The same counts for everything a set holds (full-detail shapes).
KXRENDER_API KxModelCounts KxCountModel(const CObjectSetMgr& set);
