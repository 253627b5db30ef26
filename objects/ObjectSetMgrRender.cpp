// Render passes of the object set: static objects, culled render objects
// (opaque, blended, or under stencil shadows), then the dashed outlines of
// hit shapes.
#include <algorithm>
#include <cmath>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CSceneMgr.h"
#include "objects/ObjectSearchTree.h"
#include "objects/RetainedDraw.h"
#include "support/GLTable.h"

namespace {
// The numeric value of GL_DEPTH_RANGE, passed as an attribute mask; it is
// what the rest of the engine pushes and pops everywhere.
const GLbitfield kAttribMask = 0x0B70;
// Tree places per shared retained list: large enough that a frame replays
// few lists, small enough that an edit recompiles little.
constexpr unsigned kGroupShift = 6;
}  // namespace

void CObjectSetMgr::setRenderMode(CRenderObject::RenderMode mode) {
  m_renderMode = mode;
  for (auto& kv : m_objects)
    if (kv.second) kv.second->setRenderMode(mode);
}

std::vector<unsigned> CObjectSetMgr::retainedGroupBuffers() const {
  std::vector<unsigned> names;
  for (const auto& g : m_groupDrawings)
    if (g && g->buffer != 0) names.push_back(g->buffer);
  return names;
}

void CObjectSetMgr::releaseGroupDrawings() {
  for (const auto& g : m_groupDrawings)
    if (g) kxretained::releaseGroup(*g, m_scene);
  m_groupDrawings.clear();
}

void CObjectSetMgr::releaseDispList() {
  // Like the shapes' lists, the groups' buffers go now, in the current
  // context, which may be about to go or be left for another.
  for (const auto& g : m_groupDrawings)
    if (g && g->buffer != 0 && kgl->IsBuffer(g->buffer)) kgl->DeleteBuffers(1, &g->buffer);
  m_groupDrawings.clear();
  for (auto& kv : m_objects) {
    if (!kv.second) continue;
    kv.second->releaseRetainedList();
    // Like the shapes' lists, the volume goes now, in the current context.
    const unsigned volume = kv.second->getShadowVolumeList();
    if (volume && kgl->IsList(volume)) kgl->DeleteLists(volume, 1);
    kv.second->m_shadow = CRenderObject::ShadowVolumeState();
    for (CRenderShape& s : kv.second->getShps()) s.releaseDisplayList();
    if (kv.second->m_extra)
      for (std::vector<CRenderShape>& level : kv.second->m_extra->lodShps)
        for (CRenderShape& s : level) s.releaseDisplayList();
  }
}

void CObjectSetMgr::render() {
  if (!m_scene) return;
  kgl->RenderMode(GL_RENDER);
  kgl->Enable(GL_NORMALIZE);
  m_scene->updateFrustumAndMatrix();
  kgl->PushAttrib(kAttribMask);
  kgl->DepthRange(0.1, 1.0);
  if (m_scene->isLightOpen())
    kgl->Enable(GL_LIGHTING);
  else
    kgl->Disable(GL_LIGHTING);
  kgl->Enable(GL_POLYGON_OFFSET_FILL);
  m_outlineShapes.clear();
  kgl->LineWidth(1.0f);
  if (!m_scene->isAccelerate()) {
    for (const CStaticObject* s : m_staticObjects)
      if (s && s->getVisible()) kgl->CallList(s->getRenderList());
  }
  renderObjs(m_scene->isShadow() ? 1 : 0);
  renderOutlines();
  kgl->PopAttrib();
  kgl->LineWidth(1.2f);
}

void CObjectSetMgr::renderOutlines() {
  kgl->Enable(GL_LINE_STIPPLE);
  kgl->LineStipple(1, 0x0F0F);
  kgl->PushAttrib(kAttribMask);
  // Just in front of the faces drawn at 0.1, so outlines win the depth test.
  kgl->DepthRange(0.09995, 1.0);
  kgl->Normal3f(0.0f, 0.0f, 1.0f);
  for (const CRenderShape* s : m_outlineShapes) {
    if (!s) continue;
    const CColor& c = s->getClr();
    if (s->getShpType() == CRenderShape::kFace) {
      kgl->LineWidth(s->getBorderWidth());
      const GLubyte v = (c.r + c.g + c.b < 551) ? 255 : 0;
      kgl->Color3ub(v, v, 255);
      for (const std::vector<AcGePoint3d>& line : s->getHitLine()) {
        kgl->Begin(GL_LINE_STRIP);
        for (const AcGePoint3d& p : line) kgl->Vertex3d(p.x, p.y, p.z);
        kgl->End();
      }
    } else if (s->getShpType() == CRenderShape::kPline) {
      kgl->LineWidth(2.2f);
      kgl->Color4ub(c.r, c.g, c.b, c.a);
      kgl->Begin(GL_LINE_STRIP);
      for (const AcGePoint3d& p : s->getPts()) kgl->Vertex3d(p.x, p.y, p.z);
      kgl->End();
    }
  }
  kgl->PopAttrib();
  kgl->LineWidth(1.2f);
  kgl->Disable(GL_LINE_STIPPLE);
  kgl->Disable(GL_POLYGON_OFFSET_FILL);
}

void CObjectSetMgr::sortForTransparent(std::vector<CRenderObject*>& objs) {
  // Keys are computed once: distances come from the camera and must not be
  // re-evaluated inside the comparison, and NaN must not reach it.
  struct Key {
    CRenderObject* obj;
    bool single;
    double area;
    double distance;
  };
  // Reused between frames: sorting must not allocate per frame. Scenes are
  // drawn from their GUI thread, so one buffer per thread suffices.
  static thread_local std::vector<Key> keys;
  keys.clear();
  for (CRenderObject* o : objs) {
    Key k{o, false, 0.0, 0.0};
    if (o) {
      k.single = o->numShp() == 1;
      k.area = k.single ? o->getShape(0).getArea() : 0.0;
      k.distance = o->distanceToCamera();
      if (std::isnan(k.area)) k.area = -INFINITY;
      if (std::isnan(k.distance)) k.distance = -INFINITY;
    }
    keys.push_back(k);
  }
  std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
    if (!b.obj) return false;
    if (!a.obj) return true;
    if (a.single != b.single) return a.single;  // single-shape objects first
    if (a.single) return a.area > b.area;       // larger faces first
    return a.distance > b.distance;             // farther objects first
  });
  for (size_t i = 0; i < keys.size(); ++i) objs[i] = keys[i].obj;
}

void CObjectSetMgr::renderObjs(int mode) {
  m_frameSlots.clear();
  const std::vector<std::vector<double>>* planes = m_scene ? &m_scene->getFrustumPlanes() : nullptr;
  if (planes && planes->size() >= 5) {
    m_frameObjects.clear();
    m_searchTree->queryPlanes(*planes, m_frameObjects, &m_frameSlots);
  } else {
    getObjsInFrustum(m_frameObjects);
  }
  if (!m_scene) return;
  kgl->EnableClientState(GL_VERTEX_ARRAY);
  const std::vector<unsigned>& partIds = m_scene->partTransIds();
  if (m_scene->getTransparent() == 255 || (m_scene->GetPartTrans() && partIds.empty())) {
    kgl->Disable(GL_BLEND);
    renderObjs(m_frameObjects, mode, &m_frameSlots);
  } else if (!m_scene->GetPartTrans()) {
    kgl->Enable(GL_BLEND);
    kgl->BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    sortForTransparent(m_frameObjects);
    renderObjs(m_frameObjects, mode);
  } else {
    // Listed objects are drawn blended after everything else, whether the
    // frustum holds them or not.
    m_transparentObjects.clear();
    for (unsigned id : partIds)
      if (CRenderObject* o = getObj(id)) m_transparentObjects.push_back(o);
    // One pass over the frame list against the sorted listed objects, not
    // a search of the frame list per id.
    m_listedObjects.assign(m_transparentObjects.begin(), m_transparentObjects.end());
    std::sort(m_listedObjects.begin(), m_listedObjects.end());
    m_frameObjects.erase(std::remove_if(m_frameObjects.begin(), m_frameObjects.end(),
                                        [this](CRenderObject* o) {
                                          return std::binary_search(m_listedObjects.begin(),
                                                                    m_listedObjects.end(), o);
                                        }),
                         m_frameObjects.end());
    kgl->Disable(GL_BLEND);
    renderObjs(m_frameObjects, mode);
    kgl->Enable(GL_BLEND);
    kgl->BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    sortForTransparent(m_transparentObjects);
    renderObjs(m_transparentObjects, mode);
  }
  kgl->DisableClientState(GL_VERTEX_ARRAY);
  kgl->Disable(GL_BLEND);
}

void CObjectSetMgr::drawObjects(const std::vector<CRenderObject*>& objs, const std::vector<uint32_t>* slots) {
  const double pixelsPerUnit = m_scene->getPixelsPerUnit();
  const double unitsPerPixel = 1.0 / pixelsPerUnit;
  const AcGeVector3d viewDirection = -m_scene->camera()->GetVForward();
  const kxretained::ObjectPassScope points(m_scene);
  const bool grouped = slots && slots->size() == objs.size() && kxretained::inObjectPass();
  constexpr uint32_t kNone = CObjectSearchTree::kNoSlot;
  uint32_t open = kNone;
  if (grouped) kxretained::beginOcclusion();
  for (size_t i = 0; i < objs.size(); ++i) {
    if (grouped) {
      const uint32_t slot = (*slots)[i];
      const uint32_t group = slot == kNone ? kNone : slot >> kGroupShift;
      if (group != open) {
        if (open != kNone) kxretained::closeGroup(m_scene);
        open = group;
        if (open != kNone) {
          if (m_groupDrawings.size() <= open) m_groupDrawings.resize(open + 1);
          if (!m_groupDrawings[open]) m_groupDrawings[open] = std::make_shared<kxretained::GroupDrawing>();
          kxretained::openGroup(m_groupDrawings[open].get());
        }
      }
    }
    if (objs[i]) objs[i]->render(true, &unitsPerPixel, &pixelsPerUnit, &viewDirection);
  }
  if (open != kNone) kxretained::closeGroup(m_scene);
  if (!grouped) return;
  kxretained::endOcclusion();
  // A rebuilt, smaller tree leaves groups past its end.
  const size_t groups = (m_searchTree->slotCount() >> kGroupShift) + 1;
  while (m_groupDrawings.size() > groups) {
    if (m_groupDrawings.back()) kxretained::releaseGroup(*m_groupDrawings.back(), m_scene);
    m_groupDrawings.pop_back();
  }
}

void CObjectSetMgr::renderObjs(const std::vector<CRenderObject*>& objs, int mode) {
  renderObjs(objs, mode, nullptr);
}

void CObjectSetMgr::renderObjs(const std::vector<CRenderObject*>& objs, int mode, const std::vector<uint32_t>* slots) {
  if (!m_scene) return;
  kgl->PointSize(3.0f);
  if (mode == 0) {
    drawObjects(objs, slots);
    return;
  }
  if (mode != 1) return;
  // Depth-fail stencil shadows: an unlit pass fills depth, the volumes
  // count into the stencil, and a lit pass draws where the count is 0.
  kgl->Disable(GL_LIGHT0);
  drawObjects(objs, nullptr);
  kgl->Enable(GL_LIGHT0);
  kgl->ColorMask(0, 0, 0, 0);
  kgl->DepthMask(0);
  kgl->DepthFunc(GL_LESS);
  kgl->Enable(GL_STENCIL_TEST);
  kgl->StencilFunc(GL_ALWAYS, 0, ~0u);
  kgl->StencilOp(GL_KEEP, GL_INCR_WRAP, GL_KEEP);
  kgl->Enable(GL_CULL_FACE);
  kgl->CullFace(GL_FRONT);
  for (CRenderObject* o : objs)
    if (o) o->renderShadowVolume();
  kgl->StencilOp(GL_KEEP, GL_DECR_WRAP, GL_KEEP);
  kgl->CullFace(GL_BACK);
  for (CRenderObject* o : objs)
    if (o) o->renderShadowVolume();
  kgl->DepthMask(1);
  kgl->DepthFunc(GL_LEQUAL);
  kgl->ColorMask(1, 1, 1, 1);
  kgl->StencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
  kgl->Disable(GL_CULL_FACE);
  kgl->StencilFunc(GL_EQUAL, 0, ~0u);
  kgl->Enable(GL_LIGHT0);
  drawObjects(objs, nullptr);
  kgl->DepthFunc(GL_LESS);
  kgl->Disable(GL_STENCIL_TEST);
}
