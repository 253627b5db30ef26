// The depth buffer after a frame's pass, reduced to the farthest depth of
// each tile, and a conservative test of a box against it: the occlusion
// test of group drawings that are not drawn. Rasterising their boxes costs
// as much as drawing them once a zoomed view makes the boxes large; this
// test costs a depth read and a walk over tiles.
#ifndef KXRENDER_OBJECTS_DEPTHTILES_H
#define KXRENDER_OBJECTS_DEPTHTILES_H

#include <vector>

namespace kxretained {

class DepthTiles {
 public:
  // Whether the viewport (x, y, width, height) is one read() takes: not
  // empty, not past the size worth reading, no pack buffer bound.
  static bool canRead(const int viewport[4]);
  // Reads the depth of the viewport from the bound framebuffer; false when
  // it cannot.
  bool read(const int viewport[4]);

  // Whether a fragment of the box's faces turned to the eye could pass a
  // depth test of less or less-or-equal. The corners are in window
  // coordinates of a parallel view (x, y in pixels from the viewport's
  // corner, z in [0, 1]); corner i takes the box's upper bound on axis k
  // where bit k of i is set. False only when every such fragment is
  // farther than what the buffer holds.
  bool mayShow(const double corners[8][3]) const;

 private:
  struct Level {
    int size = 0;  // pixels a side of a tile
    int columns = 0, rows = 0;
    std::vector<float> farthest;
  };
  struct Box;

  void reduce();
  bool tileMayShow(const Box& box, const Level& level, int column, int row) const;
  bool mayShowIn(const Box& box, int level, int column, int row) const;

  // Tiles of 32 and 8 pixels a side, then the pixels' own depths; kept
  // from frame to frame, so that reading allocates nothing.
  static constexpr int kLevels = 3;
  int m_width = 0, m_height = 0;
  Level m_levels[kLevels];
};

}  // namespace kxretained

#endif
