// Retained drawing: an object's shapes are compiled, with the calls the
// per-shape drawers make, into one display list on first draw and replayed
// while nothing they read has changed; single points of small objects go
// out as one batch per frame.
#include <cstring>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "objects/RetainedDraw.h"
#include "objects/RetainedLean.h"
#include "support/GLTable.h"

namespace {

// Everything a drawer reads is folded into one 64-bit key; a changed key
// recompiles the list. Each step is a bijection of the state for a given
// word, so a change in any one word always changes the key; one multiply a
// word keeps the hashing of every visible object cheap enough for every
// frame, and a final mix spreads the bits.
class KeyHash {
 public:
  void add(uint64_t v) {
    const uint64_t z = (m_h ^ v) * 0x9e3779b97f4a7c15ULL;
    m_h = z ^ (z >> 29);
  }
  void add(double d) {
    uint64_t v;
    std::memcpy(&v, &d, sizeof v);
    add(v);
  }
  void add(float f) { add(static_cast<double>(f)); }
  void add(const void* p) { add(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(p))); }
  void add(const CColor& c) { add(static_cast<uint64_t>(c.r | c.g << 8 | c.b << 16 | uint32_t(c.a) << 24)); }
  template <class V>
  void addVec(const V& v) {
    add(static_cast<const void*>(v.data()));
    add(static_cast<uint64_t>(v.size()));
  }
  uint64_t value() const {
    uint64_t z = (m_h ^ (m_h >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }

 private:
  uint64_t m_h = 0x84222325cbf29ce4ULL;
};

// Whether drawShape would cull s; the same test, so the key follows it.
bool culled(const CRenderShape& s, bool cullBackFaces, const AcGeVector3d* viewDirection) {
  if (!cullBackFaces || !viewDirection || s.getShpType() != CRenderShape::kPgon) return false;
  const AcGeVector3d& n = s.getUcs();
  return !(n.x * viewDirection->x + n.y * viewDirection->y + n.z * viewDirection->z > 0.0);
}

// Adds what the drawers read from s; false when s needs the per-shape path
// (see kxretained::canWrite).
bool addShapeKey(KeyHash& k, const CRenderShape& s, bool cullBackFaces, const double* pixelsPerUnit,
                 const AcGeVector3d* viewDirection) {
  if (!s.getVisible()) {
    k.add(uint64_t{1});
    return true;
  }
  if (culled(s, cullBackFaces, viewDirection)) {
    k.add(uint64_t{2});
    return true;
  }
  if (!kxretained::canWrite(s)) return false;
  k.add(static_cast<uint64_t>(s.getShpType()) + 3);
  k.add(static_cast<uint64_t>(s.drawStamp()));
  k.add(s.getClr());
  k.add(s.getBorderColor());
  k.add(static_cast<uint64_t>(s.getShowBorder()));
  k.add(s.lineWidth(pixelsPerUnit));
  k.add(s.getBorderWidth());
  k.add(s.getOffsetFactor());
  k.add(s.getOffsetUnits());
  k.add(s.getZOffset());
  k.add(s.getUcs().x);
  k.add(s.getUcs().y);
  k.add(s.getUcs().z);
  k.addVec(s.getPts());
  k.addVec(s.getHoles());
  for (const auto& hole : s.getHoles()) k.addVec(hole);
  k.addVec(s.getGlPts());
  k.addVec(s.getStrips());
  k.addVec(s.getHitLine());
  k.add(static_cast<const void*>(s.getFaceVertexArray()));
  k.add(static_cast<const void*>(s.getFaceTriangleIndexArray()));
  k.add(static_cast<const void*>(s.getFaceNormalArray()));
  return true;
}

struct PointItem {
  CColor color;
  AcGePoint3d centre;
};

struct PointBatch {
  bool active = false;
  std::vector<PointItem> items;  // kept between frames: no allocation per frame
};

thread_local PointBatch g_points;

}  // namespace

namespace kxretained {

ObjectPassScope::ObjectPassScope(const CSceneMgr* scene) {
  // The shadow passes keep their own polygon offsets, which a point drawn
  // in place resets: they keep the per-object points.
  m_on = scene && scene->isRetainedDraw() && !scene->isShadow() && !g_points.active;
  if (!m_on) return;
  g_points.active = true;
  g_points.items.clear();
}

ObjectPassScope::~ObjectPassScope() {
  if (!m_on) return;
  g_points.active = false;
  if (g_points.items.empty()) return;
  // The state each single point sets, once, then every point.
  kgl->Normal3f(0.0f, 0.0f, 1.0f);
  kgl->PointSize(3.0f);
  kgl->PolygonOffset(0.0f, 0.0f);
  kgl->Begin(GL_POINTS);
  for (const PointItem& p : g_points.items) {
    kgl->Color4ub(p.color.r, p.color.g, p.color.b, p.color.a);
    kgl->Vertex3d(p.centre.x, p.centre.y, p.centre.z);
  }
  kgl->End();
  g_points.items.clear();
}

bool inObjectPass() { return g_points.active; }

bool queuePoint(const CColor& color, const AcGePoint3d& centre) {
  if (!g_points.active) return false;
  g_points.items.push_back({color, centre});
  return true;
}

}  // namespace kxretained

bool CRenderObject::drawRetained(std::vector<CRenderShape>& shapes, unsigned instanced, bool cullBackFaces,
                                 const double* pixelsPerUnit, const AcGeVector3d* viewDirection, bool isLod) {
  const CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
  // Blending depends on the drawing order of every fill and line, and the
  // shadow passes set their own offsets: both keep the per-shape path.
  if (!scene || !scene->isRetainedDraw() || m_trackerXor || scene->isShadow() || scene->getTransparent() != 255 ||
      !kxretained::inObjectPass()) {
    kxretained::interruptGroup();
    return false;
  }

  KeyHash k;
  k.add(static_cast<const void*>(shapes.data()));
  k.add(static_cast<uint64_t>(shapes.size()));
  k.add(static_cast<uint64_t>(instanced) << 1 | isLod);
  k.add(static_cast<uint64_t>(static_cast<uint32_t>(m_renderMode)));
  for (const CSimpleMatrix* m : m_smpMats) {
    k.add(static_cast<const void*>(m));
    if (!m) continue;
    k.add(static_cast<uint64_t>(m->getKind()));
    for (float v : m->getValues()) k.add(v);
  }
  for (const CRenderShape& s : shapes)
    if (!addShapeKey(k, s, cullBackFaces, pixelsPerUnit, viewDirection)) {
      // Drawn the per-shape way, in its place among its neighbours.
      kxretained::interruptGroup();
      return false;
    }
  const uint64_t key = k.value();

  if (kxretained::joinGroup(this, &shapes, instanced, key, cullBackFaces, pixelsPerUnit, viewDirection)) {
    releaseRetainedList();
    return true;
  }
  if (m_retainedList != 0 && key == m_retainedKey) {
    kgl->CallList(m_retainedList);
    return true;
  }
  if (kxretained::compilingOtherList()) return false;
  releaseRetainedList();
  const GLuint list = kgl->GenLists(1);
  if (list == 0) return false;
  kgl->NewList(list, GL_COMPILE_AND_EXECUTE);
  {
    kxretained::LeanWriter w(m_renderMode, 255);
    writeRetained(w, shapes, instanced, cullBackFaces, pixelsPerUnit, viewDirection);
  }
  kgl->EndList();
  m_retainedList = list;
  m_retainedKey = key;
  return true;
}

void CRenderObject::writeRetained(kxretained::LeanWriter& w, const std::vector<CRenderShape>& shapes,
                                  unsigned instanced, bool cullBackFaces, const double* pixelsPerUnit,
                                  const AcGeVector3d* viewDirection) const {
  w.setMode(m_renderMode);
  auto put = [&](const CRenderShape& s) {
    if (s.getVisible() && !culled(s, cullBackFaces, viewDirection)) w.shape(s, pixelsPerUnit);
  };
  for (const CSimpleMatrix* m : m_smpMats) {
    if (!m) continue;
    w.pushMatrix(*m);
    for (unsigned i = 0; i < instanced; ++i) put(shapes[i]);
    w.popMatrix();
  }
  for (size_t i = instanced; i < shapes.size(); ++i) put(shapes[i]);
}

void CRenderObject::releaseRetainedList() {
  if (m_retainedList == 0) return;
  // The context may not be current here: the scene deletes it at the start
  // of its next frame, like shape lists.
  CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
  if (scene) scene->addRemovedDispList(m_retainedList);
  m_retainedList = 0;
}
