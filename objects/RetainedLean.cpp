// The lean list writer: the pictures of the shape drawers with few state
// changes (see RetainedLean.h).
#include "objects/RetainedLean.h"

#include <cstddef>

#include "kxrender/CSimpleMatrix.h"
#include "shapes/FaceTriangles.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

namespace kxretained {

namespace {
// The object pass's depth range; lines over faces take the shape drawers'
// overlay range, which the occlusion boxes use too.
constexpr double kPassNear = 0.1, kFar = kxshape::kOverlayFar;
using kxshape::kFaceLineWidth;
using kxshape::kOverlayNear;

bool fits(const std::vector<uint16_t>& strip, size_t vertexCount) {
  for (uint16_t i : strip)
    if (i >= vertexCount) return false;
  return true;
}
}  // namespace

namespace {
// The state a bucket is drawn in, as the writer and the replay both send
// it: lines take their width and, over the faces, the overlay's depth
// range; fills take their polygon offset and the pass's range.
void sendState(bool lines, float a, float b, bool overlay, bool& overlaySent) {
  if (lines) {
    kgl->LineWidth(a);
    if (overlay != overlaySent) kgl->DepthRange(overlay ? kOverlayNear : kPassNear, kFar);
    overlaySent = overlay;
  } else {
    kgl->PolygonOffset(a, b);
    if (overlaySent) kgl->DepthRange(kPassNear, kFar);
    overlaySent = false;
  }
}
}  // namespace

bool canWrite(const CRenderShape& s) {
  return !s.getHit() && !s.getHighLight() && !s.isDotLine() && !s.hasTexture() &&
         s.getShpType() != CRenderShape::kText;
}

namespace {
thread_local const void* t_storageOwner = nullptr;  // the writer using the thread's buckets
}

LeanWriter::LeanWriter(int mode, unsigned char alpha, LeanRecording* record)
    : m_mode(mode), m_alpha(alpha), m_record(record), m_buckets(&m_own) {
  thread_local std::vector<Bucket> storage;
  if (!t_storageOwner) {
    t_storageOwner = this;
    m_buckets = &storage;
  }
}

LeanWriter::~LeanWriter() {
  finish();
  if (t_storageOwner == this) t_storageOwner = nullptr;
}

void LeanWriter::select(bool lines, float a, float b, bool overlay) {
  Bucket* c = m_current;
  if (c && c->lines == lines && c->a == a && c->b == b && c->overlay == overlay) return;
  std::vector<Bucket>& all = *m_buckets;
  for (size_t i = 0; i < m_used; ++i) {
    Bucket& k = all[i];
    if (k.lines == lines && k.a == a && k.b == b && k.overlay == overlay) {
      m_current = &k;
      return;
    }
  }
  if (m_used == all.size()) all.emplace_back();
  Bucket& k = all[m_used++];
  k.lines = lines;
  k.a = a;
  k.b = b;
  k.overlay = overlay;
  k.vertices.clear();
  m_current = &k;
}

void LeanWriter::fillState(float factor, float units) { select(false, factor, units, false); }

void LeanWriter::lineState(float width, bool overlay) { select(true, width, 0.0f, overlay); }

void LeanWriter::flush() {
  for (size_t i = 0; i < m_used; ++i) {
    Bucket& k = (*m_buckets)[i];
    if (k.vertices.empty()) continue;
    if (m_record) {
      std::vector<Vertex>& all = m_record->vertices;
      m_record->steps.push_back({LeanRecording::Step::kDraw, k.lines, k.overlay, k.a, k.b, uint32_t(all.size()),
                                 uint32_t(k.vertices.size())});
      all.insert(all.end(), k.vertices.begin(), k.vertices.end());
      k.vertices.clear();
      continue;
    }
    sendState(k.lines, k.a, k.b, k.overlay, m_overlaySent);
    kgl->Begin(k.lines ? GL_LINES : GL_TRIANGLES);
    // Every vertex carries the full set, so the whole list keeps one
    // vertex layout and Mesa never splits it for a format change.
    for (const Vertex& v : k.vertices) {
      kgl->Color4ub(v.c[0], v.c[1], v.c[2], v.c[3]);
      kgl->Normal3f(v.n[0], v.n[1], v.n[2]);
      kgl->Vertex3f(v.p[0], v.p[1], v.p[2]);
    }
    kgl->End();
    k.vertices.clear();
  }
  m_used = 0;
  m_current = nullptr;
}

void LeanWriter::colour(const CColor& c) {
  m_rgba[0] = c.r;
  m_rgba[1] = c.g;
  m_rgba[2] = c.b;
  m_rgba[3] = m_alpha;
}

void LeanWriter::vertex(float x, float y, float z) {
  if (!m_current) return;
  m_current->vertices.push_back(
      {{x, y, z}, {m_normal[0], m_normal[1], m_normal[2]}, {m_rgba[0], m_rgba[1], m_rgba[2], m_rgba[3]}});
}

void LeanWriter::contourLines(const std::vector<AcGePoint3d>& c, float zLift) {
  for (size_t i = 1; i < c.size(); ++i) {
    vertex(static_cast<float>(c[i - 1].x), static_cast<float>(c[i - 1].y), static_cast<float>(c[i - 1].z + zLift));
    vertex(static_cast<float>(c[i].x), static_cast<float>(c[i].y), static_cast<float>(c[i].z + zLift));
  }
}

void LeanWriter::polygonFill(const CRenderShape& s) {
  const std::vector<double>& v = s.getGlPts();
  const size_t count = v.size() / 3;
  fillState(s.getOffsetFactor(), s.getOffsetUnits());
  if (!m_current) return;
  std::vector<Vertex>& out = m_current->vertices;
  // Every vertex of the fill carries the same normal and colour.
  Vertex w{{0.0f, 0.0f, 0.0f}, {m_normal[0], m_normal[1], m_normal[2]}, {m_rgba[0], m_rgba[1], m_rgba[2], m_rgba[3]}};
  auto put = [&](uint16_t i) {
    const double* p = &v[3 * size_t(i)];
    w.p[0] = static_cast<float>(p[0]);
    w.p[1] = static_cast<float>(p[1]);
    w.p[2] = static_cast<float>(p[2]);
    out.push_back(w);
  };
  for (const std::vector<uint16_t>& strip : s.getStrips()) {
    if (strip.size() < 3 || !fits(strip, count)) continue;
    // A strip's triangles in the order GL takes them: odd ones swap their
    // first two vertices to keep the winding.
    for (size_t k = 0; k + 2 < strip.size(); ++k) {
      const bool odd = k & 1;
      put(strip[odd ? k + 1 : k]);
      put(strip[odd ? k : k + 1]);
      put(strip[k + 2]);
    }
  }
}

void LeanWriter::face(const CRenderShape& s) {
  const std::vector<AcGePoint3d>& v = *s.getFaceVertexArray();
  const std::vector<int>& idx = *s.getFaceTriangleIndexArray();
  const std::vector<AcGeVector3d>& n = *s.getFaceNormalArray();
  const float z = s.getZOffset();
  colour(s.getClr());
  if (m_mode == 0) {
    lineState(kFaceLineWidth, false);
    for (const auto& line : s.getHitLine()) contourLines(line, 0.0f);
    return;
  }
  // Fills keep the offset render() set for the face.
  fillState(s.getOffsetFactor(), s.getOffsetUnits());
  forEachFaceCorner(idx, v.size(), n.size(), [&](size_t i) {
    m_normal[0] = static_cast<float>(n[i].x);
    m_normal[1] = static_cast<float>(n[i].y);
    m_normal[2] = static_cast<float>(n[i].z);
    vertex(static_cast<float>(v[i].x), static_cast<float>(v[i].y), static_cast<float>(v[i].z + z));
  });
  if (!s.getShowBorder()) return;
  // The border keeps the last triangle's normal, as the face's own list does.
  colour(s.getBorderColor());
  lineState(s.getBorderWidth(), true);
  for (const auto& line : s.getHitLine()) contourLines(line, z);
}

void LeanWriter::shape(const CRenderShape& s, const double* viewScale) {
  const CRenderShape::ShapeType type = s.getShpType();
  if (type != CRenderShape::kPline && type != CRenderShape::kPgon && type != CRenderShape::kFace) return;
  if (s.getPts().empty() && type != CRenderShape::kFace) return;
  const AcGeVector3d& ucs = s.getUcs();
  m_normal[0] = static_cast<float>(ucs.x);
  m_normal[1] = static_cast<float>(ucs.y);
  m_normal[2] = static_cast<float>(ucs.z);
  if (type == CRenderShape::kFace) {
    if (s.getFaceVertexArray() && s.getFaceTriangleIndexArray() && s.getFaceNormalArray()) face(s);
    return;
  }
  const bool shaded = m_mode == 2 || m_mode == 4;
  if (m_mode != 0 && !shaded) return;
  const float width = s.lineWidth(viewScale);
  if (m_mode == 0 || type == CRenderShape::kPline) {
    // Wire frame draws every contour; a shaded polyline only its points,
    // lifted over the faces.
    colour(s.getClr());
    lineState(width, m_mode != 0);
    contourLines(s.getPts(), 0.0f);
    if (m_mode == 0)
      for (const auto& hole : s.getHoles()) contourLines(hole, 0.0f);
    return;
  }
  if (s.getGlPts().empty()) return;
  colour(s.getClr());
  polygonFill(s);
  if (!s.getShowBorder()) return;
  colour(s.getBorderColor());
  lineState(width, false);
  contourLines(s.getPts(), 0.0f);
  for (const auto& hole : s.getHoles()) contourLines(hole, 0.0f);
}

void LeanWriter::pushMatrix(const CSimpleMatrix& m) {
  flush();
  if (m_record) {
    m_record->steps.push_back({LeanRecording::Step::kPush, false, false, 0.0f, 0.0f,
                               uint32_t(m_record->matrices.size()), 0});
    m_record->matrices.push_back(m);
    return;
  }
  kgl->PushMatrix();
  m.MultOpenGLMatrix();
}

void LeanWriter::popMatrix() {
  flush();
  if (m_record) {
    m_record->steps.push_back({LeanRecording::Step::kPop, false, false, 0.0f, 0.0f, 0, 0});
    return;
  }
  kgl->PopMatrix();
}

void LeanWriter::finish() {
  flush();
  if (m_record) return;
  if (m_overlaySent) kgl->DepthRange(kPassNear, kFar);
  m_overlaySent = false;
}

void replay(const LeanRecording& r, unsigned buffer, const LeanVertex* last) {
  kgl->PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
  kgl->BindBuffer(GL_ARRAY_BUFFER, buffer);
  kgl->EnableClientState(GL_VERTEX_ARRAY);
  kgl->EnableClientState(GL_NORMAL_ARRAY);
  kgl->EnableClientState(GL_COLOR_ARRAY);
  const GLsizei stride = sizeof(LeanVertex);
  kgl->VertexPointer(3, GL_FLOAT, stride, reinterpret_cast<const void*>(offsetof(LeanVertex, p)));
  kgl->NormalPointer(GL_FLOAT, stride, reinterpret_cast<const void*>(offsetof(LeanVertex, n)));
  kgl->ColorPointer(4, GL_UNSIGNED_BYTE, stride, reinterpret_cast<const void*>(offsetof(LeanVertex, c)));
  bool overlaySent = false;
  for (const LeanRecording::Step& s : r.steps) {
    switch (s.kind) {
      case LeanRecording::Step::kDraw:
        sendState(s.lines, s.a, s.b, s.overlay, overlaySent);
        kgl->DrawArrays(s.lines ? GL_LINES : GL_TRIANGLES, GLint(s.first), GLsizei(s.count));
        break;
      case LeanRecording::Step::kPush:
        kgl->PushMatrix();
        r.matrices[s.first].MultOpenGLMatrix();
        break;
      case LeanRecording::Step::kPop:
        kgl->PopMatrix();
        break;
    }
  }
  if (overlaySent) kgl->DepthRange(kPassNear, kFar);
  kgl->BindBuffer(GL_ARRAY_BUFFER, 0);
  kgl->PopClientAttrib();
  // Drawing from arrays leaves the current colour and normal as they were;
  // the writer's own calls leave those of the last vertex.
  if (last) {
    kgl->Color4ub(last->c[0], last->c[1], last->c[2], last->c[3]);
    kgl->Normal3f(last->n[0], last->n[1], last->n[2]);
  }
}

}  // namespace kxretained
