// Occlusion culling of group drawings (see RetainedDraw.h). The groups that
// showed last frame draw inside a samples-passed query; the others are
// tested after the pass by their box, grown by the widest line they draw,
// and drawn late when a sample of the box passes. Only the box faces turned
// to the eye are tested: the view's handedness says which those are. The box is nearer than
// anything inside it and drawn in the lines' depth range, so a box that
// passes nothing hides a group that would have drawn nothing.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "objects/RetainedDraw.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

namespace kxretained {

namespace {

struct OcclusionPass {
  std::vector<unsigned>* queries = nullptr;  // null: culling off
  size_t used = 0;
  double pixel = 0.0;       // the largest pixel, in world units
  double depthSlack = 0.0;  // world units that cover the depth buffer's rounding
  int boxSide = GL_BACK;  // the box faces that look away from the eye
  unsigned frame = 0;
  // A group and its queries: of its drawing, and of its box.
  struct Test {
    GroupDrawing* group;
    unsigned drawing, box;
  };
  std::vector<Test> drawn, tested;  // kept: no allocation per frame
};

thread_local OcclusionPass g_pass;

unsigned nextQuery() {
  std::vector<unsigned>& names = *g_pass.queries;
  if (g_pass.used == names.size()) {
    GLuint name = 0;
    kgl->GenQueries(1, &name);
    if (name == 0) return 0;
    names.push_back(name);
  }
  return names[g_pass.used++];
}

// The determinant of a column-major matrix's 3 x 3 part.
double det3(const GLdouble* m) {
  return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[4] * (m[1] * m[10] - m[2] * m[9]) +
         m[8] * (m[1] * m[6] - m[2] * m[5]);
}

// Parallel views only: a box the eye stands in, or that the near plane
// cuts, would test its far faces. The same for clip planes the host set.
// Gives the view's largest pixel in world units, the depth range's extent
// and the box faces that look away from the eye.
bool viewAllowsCulling(double& pixel, double& depthExtent, int& boxSide) {
  GLdouble p[16] = {}, v[16] = {};
  GLint viewport[4] = {};
  kgl->GetDoublev(GL_PROJECTION_MATRIX, p);
  kgl->GetDoublev(GL_MODELVIEW_MATRIX, v);
  kgl->GetIntegerv(GL_VIEWPORT, viewport);
  if (p[3] != 0.0 || p[7] != 0.0 || p[11] != 0.0 || p[15] != 1.0) return false;
  for (GLenum plane = GL_CLIP_PLANE0; plane <= GL_CLIP_PLANE5; ++plane)
    if (kgl->IsEnabled(plane)) return false;
  // Outward faces turned to the eye wind counter-clockwise on screen unless
  // the view mirrors them.
  const double turn = det3(p) * det3(v), scale = std::cbrt(std::fabs(det3(v)));
  pixel = std::max(2.0 / (std::fabs(p[0]) * scale * viewport[2]), 2.0 / (std::fabs(p[5]) * scale * viewport[3]));
  depthExtent = 2.0 / (std::fabs(p[10]) * scale);
  boxSide = turn < 0.0 ? GL_BACK : GL_FRONT;
  return turn != 0.0 && std::isfinite(turn) && std::isfinite(pixel) && std::isfinite(depthExtent);
}

void drawBox(const GroupDrawing& g) {
  // Wide lines reach half their width past their vertices; one more pixel
  // covers rounding at the box's edges.
  const double grow = g_pass.pixel * (0.5 * g.widestLine + 1.0) + g_pass.depthSlack;
  const double lo[3] = {g.box[0] - grow, g.box[1] - grow, g.box[2] - grow};
  const double hi[3] = {g.box[3] + grow, g.box[4] + grow, g.box[5] + grow};
  // Corner i takes hi on axis k where bit k of i is set.
  static const int kFaces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                   {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  kgl->Begin(GL_QUADS);
  for (const auto& face : kFaces)
    for (int i : face) kgl->Vertex3d(i & 1 ? hi[0] : lo[0], i & 2 ? hi[1] : lo[1], i & 4 ? hi[2] : lo[2]);
  kgl->End();
}

GLuint samples(unsigned query) {
  GLuint n = 1;  // unknown counts as showing
  if (query) kgl->GetQueryObjectuiv(query, GL_QUERY_RESULT, &n);
  return n;
}

}  // namespace

void beginOcclusion(std::vector<unsigned>* queries) {
  g_pass.used = 0;
  ++g_pass.frame;
  g_pass.drawn.clear();
  g_pass.tested.clear();
  double depthExtent = 0.0;
  const bool on = queries && viewAllowsCulling(g_pass.pixel, depthExtent, g_pass.boxSide);
  g_pass.queries = on ? queries : nullptr;
  g_pass.depthSlack = depthExtent * 1e-6;
}

void drawGroup(GroupDrawing& g) {
  const LeanVertex* last = g.hasLast ? &g.last : nullptr;
  if (!g_pass.queries || !g.boxed) {
    replay(g.steps, g.buffer, last);
    return;
  }
  if (g.hidden) {
    // Tested after the pass; what it would leave current is current now.
    if (last) {
      kgl->Color4ub(last->c[0], last->c[1], last->c[2], last->c[3]);
      kgl->Normal3f(last->n[0], last->n[1], last->n[2]);
    }
    g_pass.tested.push_back({&g, 0u, 0u});
    return;
  }
  const unsigned query = nextQuery();
  if (query) kgl->BeginQuery(GL_SAMPLES_PASSED, query);
  replay(g.steps, g.buffer, last);
  if (query) kgl->EndQuery(GL_SAMPLES_PASSED);
  g_pass.drawn.push_back({&g, query, 0u});
}

void endOcclusion() {
  if (!g_pass.queries) return;
  // Drawn groups are told hidden by their drawing's query, which passes
  // samples that nearer groups drawn later cover; their boxes, tested a
  // sixteenth each frame, catch those. Hidden groups are tested every frame.
  constexpr unsigned kRecheck = 16;
  const size_t waiting = g_pass.tested.size();
  for (size_t i = 0; i < g_pass.drawn.size(); ++i)
    if ((i + g_pass.frame) % kRecheck == 0) g_pass.tested.push_back({g_pass.drawn[i].group, 0u, 0u});
  if (!g_pass.tested.empty()) {
    // Depth test only: nothing written, nothing discarded but by depth.
    kgl->PushAttrib(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_POLYGON_BIT | GL_VIEWPORT_BIT);
    kgl->ColorMask(0, 0, 0, 0);
    kgl->DepthMask(0);
    for (GLenum cap : {GL_LIGHTING, GL_POLYGON_OFFSET_FILL, GL_TEXTURE_2D, GL_ALPHA_TEST, GL_POLYGON_STIPPLE,
                       GL_STENCIL_TEST, GL_BLEND})
      kgl->Disable(cap);
    kgl->PolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    kgl->FrontFace(GL_CCW);
    kgl->Enable(GL_CULL_FACE);
    kgl->CullFace(GLenum(g_pass.boxSide));
    kgl->DepthRange(kxshape::kOverlayNear, kxshape::kOverlayFar);
    for (OcclusionPass::Test& t : g_pass.tested) {
      t.box = nextQuery();
      if (!t.box) continue;
      kgl->BeginQuery(GL_SAMPLES_PASSED, t.box);
      drawBox(*t.group);
      kgl->EndQuery(GL_SAMPLES_PASSED);
    }
    kgl->PopAttrib();
  }
  for (const OcclusionPass::Test& d : g_pass.drawn) d.group->hidden = samples(d.drawing) == 0;
  bool saved = false;
  GLfloat colour[4] = {1, 1, 1, 1}, normal[3] = {0, 0, 1};
  for (size_t i = 0; i < g_pass.tested.size(); ++i) {
    const OcclusionPass::Test& t = g_pass.tested[i];
    const bool shows = samples(t.box) != 0;
    if (i >= waiting) {  // drawn this frame: only its next frame is at stake
      if (!shows) t.group->hidden = true;
      continue;
    }
    if (!shows) continue;
    if (!saved) {
      // Late drawings leave the current colour and normal as the pass did.
      kgl->GetFloatv(GL_CURRENT_COLOR, colour);
      kgl->GetFloatv(GL_CURRENT_NORMAL, normal);
      saved = true;
    }
    t.group->hidden = false;
    replay(t.group->steps, t.group->buffer, nullptr);
  }
  if (saved) {
    kgl->Color4f(colour[0], colour[1], colour[2], colour[3]);
    kgl->Normal3f(normal[0], normal[1], normal[2]);
  }
  g_pass.queries = nullptr;
  g_pass.drawn.clear();
  g_pass.tested.clear();
}

}  // namespace kxretained
