// A render object's shadow volume: which shapes cast, when the volume is
// rebuilt, and how it is drawn into the stencil passes.
#include <epoxy/gl.h>

#include <cstring>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "objects/ShadowVolume.h"
#include "support/GLTable.h"

namespace {

bool depthClampAvailable() {
  static const bool available = epoxy_gl_version() >= 32 || epoxy_has_gl_extension("GL_ARB_depth_clamp");
  return available;
}

// The state volumes are drawn in, set once for a run of volumes and put
// back before the next face is drawn. Scenes draw from one GUI thread.
struct VolumeState {
  bool active = false;
  bool clamp = false;
  GLfloat factor = 0.0f, units = 0.0f;
};
VolumeState& volumeState() {
  static VolumeState state;
  return state;
}

}  // namespace

void CRenderObject::releaseShadowVolume() {
  CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
  if (scene && m_shadow.list) scene->addRemovedDispList(m_shadow.list);
  m_shadow = ShadowVolumeState();
}

void CRenderObject::buildShadowVolume(const float* light, const AcGePoint3d& lo, const AcGePoint3d& hi) {
  ShadowVolumeBuilder builder;
  std::vector<AcGeMatrix3d> mats;
  for (const CSimpleMatrix* m : m_smpMats)
    if (m) mats.push_back(m->GetAcgeMatrix());
  // As drawn: the leading shapes under each instance matrix, the rest once.
  const size_t instanced = std::min<size_t>(m_exaGeoShapNum, m_shapes.size());
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    if (!castsShadow(m_shapes[i])) continue;
    if (i >= instanced)
      addCasterTriangles(builder, m_shapes[i], nullptr);
    else
      for (const AcGeMatrix3d& m : mats) addCasterTriangles(builder, m_shapes[i], &m);
  }
  std::vector<float> tris;
  const bool any = builder.build(ShadowLight::fromFloats(light), lo, hi, tris);
  m_shadow.stale = false;
  std::memcpy(m_shadow.light, light, sizeof m_shadow.light);
  m_shadow.lo = lo;
  m_shadow.hi = hi;
  if (!any) {
    CSceneMgr* scene = m_objSet ? m_objSet->getScene() : nullptr;
    if (scene && m_shadow.list) scene->addRemovedDispList(m_shadow.list);
    m_shadow.list = 0;
    return;
  }
  // A light move recompiles the same list: no names are spent on it.
  if (!m_shadow.list || !kgl->IsList(m_shadow.list)) m_shadow.list = kgl->GenLists(1);
  if (!m_shadow.list) return;
  const bool arrays = kgl->IsEnabled(GL_VERTEX_ARRAY);
  if (!arrays) kgl->EnableClientState(GL_VERTEX_ARRAY);
  kgl->VertexPointer(3, GL_FLOAT, 0, tris.data());
  kgl->NewList(m_shadow.list, GL_COMPILE);
  kgl->DrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(tris.size() / 3));
  kgl->EndList();
  if (!arrays) kgl->DisableClientState(GL_VERTEX_ARRAY);
}

void CRenderObject::renderShadowVolume() {
  if (!m_generateShadow || !m_visible || !m_objSet || m_shapes.empty()) return;
  CSceneMgr* scene = m_objSet->getScene();
  if (!scene) return;
  const float* light = scene->getLightpos();
  // A light that is no light casts nothing this frame; the volume built
  // for the last good one is kept for when it comes back.
  if (!ShadowLight::fromFloats(light).valid) return;
  AcGePoint3d lo, hi;
  m_objSet->getBox(lo, hi);
  if (m_shadow.stale || std::memcmp(m_shadow.light, light, sizeof m_shadow.light) != 0 || !(m_shadow.lo == lo) ||
      !(m_shadow.hi == hi) || (m_shadow.list && !kgl->IsList(m_shadow.list)))
    buildShadowVolume(light, lo, hi);
  if (!m_shadow.list) return;

  beginShadowVolumeState();
  kgl->CallList(m_shadow.list);
}

void beginShadowVolumeState() {
  VolumeState& v = volumeState();
  if (v.active) return;
  v.active = true;
  // The front cap lies on the lit faces: pushed just behind them, it fails
  // the depth test there, so a lit face does not shadow itself. The offset
  // the faces were drawn with is put back for the passes that follow.
  kgl->GetFloatv(GL_POLYGON_OFFSET_FACTOR, &v.factor);
  kgl->GetFloatv(GL_POLYGON_OFFSET_UNITS, &v.units);
  kgl->PolygonOffset(v.factor + 1.0f, v.units + 4.0f);
  // Far ends past the view's depth range are clamped, not clipped away,
  // which would open the volume and spoil the count behind them.
  v.clamp = depthClampAvailable();
  if (v.clamp) kgl->Enable(GL_DEPTH_CLAMP);
}

void endShadowVolumeState() {
  VolumeState& v = volumeState();
  if (!v.active) return;
  v.active = false;
  if (v.clamp) kgl->Disable(GL_DEPTH_CLAMP);
  kgl->PolygonOffset(v.factor, v.units);
}
