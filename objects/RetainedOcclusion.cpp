// Occlusion culling of group drawings (see RetainedDraw.h). After the pass
// every group's box, grown by the widest line it draws and placed in the
// lines' depth range, nearer than anything inside it, is held against the
// depth the pass left, read back in tiles. A group left out this frame is
// drawn late when its box could pass a sample, so a group stays out only
// where it would have drawn nothing; a drawn group whose box could not is
// left out the next frame.
#include <algorithm>
#include <cmath>
#include <vector>

#include "objects/DepthTiles.h"
#include "objects/RetainedDraw.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

namespace kxretained {

namespace {

struct OcclusionPass {
  bool on = false;
  double pixel = 0.0;       // the largest pixel, in world units
  double depthSlack = 0.0;  // world units that cover the depth buffer's rounding
  double toWindow[16] = {};  // world to window: pixels from the viewport's corner, depth
  int viewport[4] = {};
  std::vector<GroupDrawing*> drawn, waiting;
  std::vector<std::pair<double, uint32_t>> unrecorded;  // nearest depth, index
  int sinceFlush = 0;  // groups drawn since the last flush
  DepthTiles tiles;  // kept with the lists above: no allocation per frame
};

thread_local OcclusionPass g_pass;

// The determinant of a column-major matrix's 3 x 3 part.
double det3(const GLdouble* m) {
  return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[4] * (m[1] * m[10] - m[2] * m[9]) +
         m[8] * (m[1] * m[6] - m[2] * m[5]);
}

// A column-major product a b.
void multiply(const double* a, const double* b, double* out) {
  for (int c = 0; c < 4; ++c)
    for (int r = 0; r < 4; ++r)
      out[c * 4 + r] = a[r] * b[c * 4] + a[4 + r] * b[c * 4 + 1] + a[8 + r] * b[c * 4 + 2] + a[12 + r] * b[c * 4 + 3];
}

// Parallel views only: in a perspective view a box the eye stands in, or
// that the near plane cuts, has no front to test; clip planes the host set
// cut boxes too. The depth test must be one that a nearer box passes
// first, and the depth buffer read must be the one drawn into. Sets the
// pass's largest pixel in world units, the depth range's extent and the
// world-to-window transform the boxes take.
bool viewAllowsCulling(OcclusionPass& pass, double& depthExtent) {
  GLdouble p[16] = {}, v[16] = {};
  GLint viewport[4] = {}, depthFunc = 0, samples = 0, reading = 0, drawing = 0;
  kgl->GetDoublev(GL_PROJECTION_MATRIX, p);
  kgl->GetDoublev(GL_MODELVIEW_MATRIX, v);
  kgl->GetIntegerv(GL_VIEWPORT, viewport);
  kgl->GetIntegerv(GL_DEPTH_FUNC, &depthFunc);
  kgl->GetIntegerv(GL_SAMPLE_BUFFERS, &samples);
  kgl->GetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &reading);
  kgl->GetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawing);
  if (p[3] != 0.0 || p[7] != 0.0 || p[11] != 0.0 || p[15] != 1.0) return false;
  if (!kgl->IsEnabled(GL_DEPTH_TEST) || kgl->IsEnabled(GL_DEPTH_CLAMP) || samples != 0 || reading != drawing ||
      (depthFunc != GL_LESS && depthFunc != GL_LEQUAL))
    return false;
  for (GLenum plane = GL_CLIP_PLANE0; plane <= GL_CLIP_PLANE5; ++plane)
    if (kgl->IsEnabled(plane)) return false;
  const double scale = std::cbrt(std::fabs(det3(v)));
  pass.pixel = std::max(2.0 / (std::fabs(p[0]) * scale * viewport[2]), 2.0 / (std::fabs(p[5]) * scale * viewport[3]));
  depthExtent = 2.0 / (std::fabs(p[10]) * scale);
  // Normalised coordinates to the viewport's pixels and to the depth range
  // the lines draw in, which is where the box stands.
  const double half = 0.5 * (kxshape::kOverlayFar - kxshape::kOverlayNear);
  const double window[16] = {0.5 * viewport[2], 0, 0, 0, 0, 0.5 * viewport[3], 0, 0, 0, 0, half, 0,
                             0.5 * viewport[2], 0.5 * viewport[3], kxshape::kOverlayNear + half, 1};
  double clip[16];
  multiply(p, v, clip);
  multiply(window, clip, pass.toWindow);
  std::copy(viewport, viewport + 4, pass.viewport);
  // Unread, every box would show and the groups left out draw late, out of
  // their order.
  if (!DepthTiles::canRead(viewport)) return false;
  for (double x : pass.toWindow)
    if (!std::isfinite(x)) return false;
  return scale != 0.0 && std::isfinite(pass.pixel) && std::isfinite(depthExtent);
}

// Whether the group's box, grown by the widest line it draws, could pass a
// sample through the depth the pass left. Wide lines reach half their width
// past their vertices; one more pixel covers rounding at the box's edges.
bool boxMayShow(const GroupDrawing& g) {
  const double grow = g_pass.pixel * (0.5 * g.widestLine + 1.0) + g_pass.depthSlack;
  const double lo[3] = {g.box[0] - grow, g.box[1] - grow, g.box[2] - grow};
  const double hi[3] = {g.box[3] + grow, g.box[4] + grow, g.box[5] + grow};
  const double* m = g_pass.toWindow;
  double corners[8][3];
  for (int i = 0; i < 8; ++i) {
    const double p[3] = {i & 1 ? hi[0] : lo[0], i & 2 ? hi[1] : lo[1], i & 4 ? hi[2] : lo[2]};
    for (int k = 0; k < 3; ++k) corners[i][k] = m[k] * p[0] + m[4 + k] * p[1] + m[8 + k] * p[2] + m[12 + k];
  }
  return g_pass.tiles.mayShow(corners);
}

// The software rasteriser starts on a frame's triangles only once they are
// flushed: handing them over every few groups keeps its threads busy while
// this one goes on drawing, instead of leaving all of it to the depth read
// after the pass. Eight rather than sixteen also keeps less of the frame
// binned at once, for the same frame time.
constexpr int kGroupsPerFlush = 8;

void replayAndHandOver(const GroupDrawing& g, const LeanVertex* last) {
  replay(g.steps, g.buffer, last);
  if (++g_pass.sinceFlush < kGroupsPerFlush) return;
  g_pass.sinceFlush = 0;
  kgl->Flush();
}

// The window depth of the box's nearest corner.
double nearestDepth(const GroupDrawing& g) {
  const double* m = g_pass.toWindow;
  double nearest = INFINITY;
  for (int i = 0; i < 8; ++i) {
    const double p[3] = {g.box[i & 1 ? 3 : 0], g.box[i & 2 ? 4 : 1], g.box[i & 4 ? 5 : 2]};
    nearest = std::min(nearest, m[2] * p[0] + m[6] * p[1] + m[10] * p[2] + m[14]);
  }
  return nearest;
}

// Draws a group after the pass, leaving the colour and normal as it found
// them.
class LateDrawing {
 public:
  ~LateDrawing() {
    if (!m_saved) return;
    kgl->Color4f(m_colour[0], m_colour[1], m_colour[2], m_colour[3]);
    kgl->Normal3f(m_normal[0], m_normal[1], m_normal[2]);
  }
  void save() {
    if (m_saved) return;
    kgl->GetFloatv(GL_CURRENT_COLOR, m_colour);
    kgl->GetFloatv(GL_CURRENT_NORMAL, m_normal);
    m_saved = true;
  }

 private:
  bool m_saved = false;
  GLfloat m_colour[4] = {1, 1, 1, 1}, m_normal[3] = {0, 0, 1};
};

// Groups never recorded, nearest first, in rounds that grow by half: each
// round records and draws those whose box may still show, and the depth is
// read again before the next. So a first frame records what a frame with
// every group recorded would draw, not the whole model. A read waits for
// the rasteriser to catch up, which costs about as much as recording ten
// groups: the first round takes eight, a thirty-second of the groups when
// that is more, and a quarter when fewer than 32 wait.
void drawUnrecorded(LateDrawing& late) {
  std::vector<std::pair<double, uint32_t>>& order = g_pass.unrecorded;
  order.clear();
  for (size_t i = 0; i < waitingUnrecorded(); ++i)
    if (const GroupDrawing* g = unrecordedGroup(i)) order.push_back({nearestDepth(*g), uint32_t(i)});
  std::sort(order.begin(), order.end());
  size_t next = 0, round = std::max({size_t{1}, order.size() / 32, std::min<size_t>(8, order.size() / 4)});
  while (next < order.size()) {
    for (size_t drawn = 0; next < order.size() && drawn < round; ++next) {
      GroupDrawing& g = *unrecordedGroup(order[next].second);
      if (!boxMayShow(g)) continue;
      late.save();
      recordWaiting(order[next].second);
      ++drawn;
    }
    if (next < order.size() && !g_pass.tiles.read(g_pass.viewport)) break;
    round = std::max(round + 1, round + round / 2);
  }
  // Past a failed read every group left may show.
  for (; next < order.size(); ++next) {
    late.save();
    recordWaiting(order[next].second);
  }
}

}  // namespace

bool occlusionOn() { return g_pass.on; }

void beginOcclusion() {
  forgetWaiting();
  g_pass.drawn.clear();
  g_pass.waiting.clear();
  double depthExtent = 0.0;
  g_pass.on = viewAllowsCulling(g_pass, depthExtent);
  g_pass.depthSlack = depthExtent * 1e-6;
}

void drawGroup(GroupDrawing& g) {
  const LeanVertex* last = g.hasLast ? &g.last : nullptr;
  if (!g_pass.on || !g.boxed) {
    replayAndHandOver(g, last);
    return;
  }
  if (g.hidden) {
    // Tested after the pass; what it would leave current is current now.
    if (last) {
      kgl->Color4ub(last->c[0], last->c[1], last->c[2], last->c[3]);
      kgl->Normal3f(last->n[0], last->n[1], last->n[2]);
    }
    g_pass.waiting.push_back(&g);
    return;
  }
  replayAndHandOver(g, last);
  g_pass.drawn.push_back(&g);
}

void endOcclusion() {
  if (!g_pass.on) return;
  // What follows the pass finds the state its last drawing left.
  settleWaiting();
  g_pass.on = false;
  if (g_pass.drawn.empty() && g_pass.waiting.empty() && waitingUnrecorded() == 0) return;
  g_pass.tiles.read(g_pass.viewport);  // unread, the tiles let every box show
  for (GroupDrawing* g : g_pass.drawn) g->hidden = !boxMayShow(*g);
  LateDrawing late;
  for (GroupDrawing* g : g_pass.waiting) {
    if (!boxMayShow(*g)) continue;
    late.save();
    g->hidden = false;
    replayAndHandOver(*g, nullptr);
  }
  drawUnrecorded(late);
  g_pass.drawn.clear();
  g_pass.waiting.clear();
  forgetWaiting();
}

}  // namespace kxretained
