#include "objects/DepthTiles.h"

#include <algorithm>
#include <cmath>

#include "support/GLTable.h"

namespace kxretained {

namespace {
constexpr int kFine = 8, kCoarse = 32;  // pixels a side; a coarse tile holds whole fine ones
// The buffer keeps 24 bits; a few of its steps cover the driver's float
// arithmetic against ours.
constexpr double kDepthSlack = 4.0 / 16777215.0;
// Pictures drawn in tiles set viewports as large as GL allows over a small
// framebuffer; reading such a viewport would cost more than culling saves.
constexpr double kMostPixels = 4096.0 * 4096.0;
}  // namespace

// What the tile walk needs of a box: its outline on screen, the near face
// of each pair whose depth is a plane over the screen, and its nearest
// corner.
struct DepthTiles::Box {
  double hull[8][2];
  int hullSize = 0;  // below 3 the outline is a line: only its extent counts
  double plane[3][3];  // depth = a x + b y + c
  int planes = 0;
  double nearest = 0.0;
  int x0 = 0, y0 = 0, x1 = 0, y1 = 0;  // pixels it may touch, inclusive
};

bool DepthTiles::canRead(const int viewport[4]) {
  GLint packBuffer = 0;
  kgl->GetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
  return viewport[2] > 0 && viewport[3] > 0 && double(viewport[2]) * viewport[3] <= kMostPixels && packBuffer == 0;
}

bool DepthTiles::read(const int viewport[4]) {
  m_width = m_height = 0;
  if (!canRead(viewport)) return false;
  std::vector<float>& depth = m_levels[2].farthest;
  depth.resize(size_t(viewport[2]) * size_t(viewport[3]));
  // The host's pixel store and depth scale would change what is read.
  kgl->PushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  kgl->PushAttrib(GL_PIXEL_MODE_BIT);
  for (GLenum p : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST})
    kgl->PixelStorei(p, 0);
  kgl->PixelStorei(GL_PACK_ALIGNMENT, 4);
  kgl->PixelTransferf(GL_DEPTH_SCALE, 1.0f);
  kgl->PixelTransferf(GL_DEPTH_BIAS, 0.0f);
  kgl->ReadPixels(viewport[0], viewport[1], viewport[2], viewport[3], GL_DEPTH_COMPONENT, GL_FLOAT, depth.data());
  kgl->PopAttrib();
  kgl->PopClientAttrib();
  m_width = viewport[2];
  m_height = viewport[3];
  reduce();
  return true;
}

void DepthTiles::reduce() {
  const int sizes[kLevels] = {kCoarse, kFine, 1};
  for (int i = 0; i < kLevels; ++i) {
    Level& level = m_levels[i];
    level.size = sizes[i];
    level.columns = (m_width + level.size - 1) / level.size;
    level.rows = (m_height + level.size - 1) / level.size;
    if (level.size > 1) level.farthest.assign(size_t(level.columns) * size_t(level.rows), 0.0f);
  }
  const std::vector<float>& depth = m_levels[2].farthest;
  Level &fine = m_levels[1], &coarse = m_levels[0];
  const int whole = m_width / kFine;  // fine tiles of a row with all their pixels
  for (int y = 0; y < m_height; ++y) {
    const float* row = &depth[size_t(y) * size_t(m_width)];
    float* tiles = &fine.farthest[size_t(y / kFine) * size_t(fine.columns)];
    for (int c = 0; c < whole; ++c) {
      float far = tiles[c];
      for (int i = 0; i < kFine; ++i) far = std::max(far, row[c * kFine + i]);
      tiles[c] = far;
    }
    for (int x = whole * kFine; x < m_width; ++x) tiles[whole] = std::max(tiles[whole], row[x]);
  }
  constexpr int per = kCoarse / kFine;
  for (int r = 0; r < fine.rows; ++r)
    for (int c = 0; c < fine.columns; ++c) {
      float& far = coarse.farthest[size_t(r / per) * size_t(coarse.columns) + size_t(c / per)];
      far = std::max(far, fine.farthest[size_t(r) * size_t(fine.columns) + size_t(c)]);
    }
}

bool DepthTiles::tileMayShow(const Box& box, const Level& level, int column, int row) const {
  const double x0 = column * level.size, y0 = row * level.size;
  const double x1 = std::min(x0 + level.size, double(m_width)), y1 = std::min(y0 + level.size, double(m_height));
  // Outside one edge of the outline with all four corners: no overlap.
  for (int i = 0; i < box.hullSize && box.hullSize >= 3; ++i) {
    const double* p = box.hull[i];
    const double* q = box.hull[(i + 1) % box.hullSize];
    const double ex = q[0] - p[0], ey = q[1] - p[1];
    auto left = [&](double x, double y) { return ex * (y - p[1]) - ey * (x - p[0]); };
    if (left(x0, y0) < 0 && left(x1, y0) < 0 && left(x0, y1) < 0 && left(x1, y1) < 0) return false;
  }
  // The box's front at a pixel is the farthest of its near faces there, so
  // each near face's least depth over the tile bounds the box's from below.
  double front = box.nearest;
  for (int i = 0; i < box.planes; ++i) {
    const double* p = box.plane[i];
    front = std::max(front, p[2] + std::min(p[0] * x0, p[0] * x1) + std::min(p[1] * y0, p[1] * y1));
  }
  return front <= level.farthest[size_t(row) * size_t(level.columns) + size_t(column)] + kDepthSlack;
}

// A tile the box may show in is looked at in the next level's tiles, down
// to pixels, so that only a box that could pass a sample shows.
bool DepthTiles::mayShowIn(const Box& box, int level, int column, int row) const {
  if (!tileMayShow(box, m_levels[level], column, row)) return false;
  if (level + 1 == kLevels) return true;
  const int size = m_levels[level].size, next = m_levels[level + 1].size;
  const int c0 = std::max(column * size, box.x0) / next, c1 = std::min(column * size + size - 1, box.x1) / next;
  const int r0 = std::max(row * size, box.y0) / next, r1 = std::min(row * size + size - 1, box.y1) / next;
  for (int r = r0; r <= r1; ++r)
    for (int c = c0; c <= c1; ++c)
      if (mayShowIn(box, level + 1, c, r)) return true;
  return false;
}

bool DepthTiles::mayShow(const double corners[8][3]) const {
  if (m_width == 0) return true;
  Box box;
  double lo[2] = {corners[0][0], corners[0][1]}, hi[2] = {lo[0], lo[1]};
  box.nearest = corners[0][2];
  for (int i = 0; i < 8; ++i) {
    if (!std::isfinite(corners[i][0]) || !std::isfinite(corners[i][1]) || !std::isfinite(corners[i][2])) return true;
    for (int k = 0; k < 2; ++k) {
      lo[k] = std::min(lo[k], corners[i][k]);
      hi[k] = std::max(hi[k], corners[i][k]);
    }
    box.nearest = std::min(box.nearest, corners[i][2]);
  }
  if (hi[0] < 0 || hi[1] < 0 || lo[0] >= m_width || lo[1] >= m_height) return false;
  // Clamped before the conversion: far corners are past what int holds.
  box.x0 = int(std::max(0.0, std::floor(lo[0])));
  box.y0 = int(std::max(0.0, std::floor(lo[1])));
  box.x1 = int(std::min(m_width - 1.0, std::floor(hi[0])));
  box.y1 = int(std::min(m_height - 1.0, std::floor(hi[1])));

  // The outline: the convex hull of the corners, counter-clockwise.
  int order[8] = {0, 1, 2, 3, 4, 5, 6, 7};
  std::sort(order, order + 8, [&](int a, int b) {
    return corners[a][0] < corners[b][0] || (corners[a][0] == corners[b][0] && corners[a][1] < corners[b][1]);
  });
  auto turn = [](const double* o, const double* a, const double* b) {
    return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0]);
  };
  double chain[16][2];
  int n = 0;
  for (int pass = 0; pass < 2; ++pass) {
    const int start = n;
    for (int j = 0; j < 8; ++j) {
      const double* p = corners[order[pass == 0 ? j : 7 - j]];
      while (n >= start + 2 && turn(chain[n - 2], chain[n - 1], p) <= 0) --n;
      chain[n][0] = p[0];
      chain[n][1] = p[1];
      ++n;
    }
    --n;  // each chain's last point starts the other
  }
  box.hullSize = n;
  for (int i = 0; i < n && n <= 8; ++i) std::copy(chain[i], chain[i] + 2, box.hull[i]);
  if (n > 8) box.hullSize = 0;

  // Each axis's faces are parallel: the one nearer at any pixel is nearer at all.
  for (int axis = 0; axis < 3; ++axis) {
    const int b = 1 << ((axis + 1) % 3), c = 1 << ((axis + 2) % 3), up = 1 << axis;
    double e1[3], e2[3];
    for (int k = 0; k < 3; ++k) {
      e1[k] = corners[b][k] - corners[0][k];
      e2[k] = corners[c][k] - corners[0][k];
    }
    const double nx = e1[1] * e2[2] - e1[2] * e2[1], ny = e1[2] * e2[0] - e1[0] * e2[2],
                 nz = e1[0] * e2[1] - e1[1] * e2[0];
    // A face seen edge on has no depth plane over the screen, and one seen
    // nearly so a plane too steep to evaluate without large rounding.
    if (!(std::fabs(nz) > 1e-3 * (std::fabs(nx) + std::fabs(ny)))) continue;
    double* p = box.plane[box.planes++];
    p[0] = -nx / nz;
    p[1] = -ny / nz;
    const double lower = corners[0][2] - p[0] * corners[0][0] - p[1] * corners[0][1];
    const double upper = corners[up][2] - p[0] * corners[up][0] - p[1] * corners[up][1];
    p[2] = std::min(lower, upper);
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) --box.planes;
  }

  for (int row = box.y0 / kCoarse; row <= box.y1 / kCoarse; ++row)
    for (int column = box.x0 / kCoarse; column <= box.x1 / kCoarse; ++column)
      if (mayShowIn(box, 0, column, row)) return true;
  return false;
}

}  // namespace kxretained
