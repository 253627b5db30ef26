// Drawing a render object: culling, level of detail, instancing, grips.
#include <algorithm>
#include <cmath>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "objects/RetainedDraw.h"
#include "objects/ShadowVolume.h"
#include "support/GLTable.h"

void CRenderObject::addOutlineShape(const CRenderShape* s) {
  if (m_objSet && s) m_objSet->addOutlineShape(s);
}

void CRenderObject::drawShape(CRenderShape& s, bool cullBackFaces, const double* pixelsPerUnit,
                              const AcGeVector3d* viewDirection, bool isLod) {
  if (!s.getVisible()) return;
  if (cullBackFaces && viewDirection && s.getShpType() == CRenderShape::kPgon) {
    const AcGeVector3d& n = s.getUcs();
    // Faces seen edge-on (dot exactly 0) are culled too.
    if (!(n.x * viewDirection->x + n.y * viewDirection->y + n.z * viewDirection->z > 0.0)) return;
  }
  s.render(m_renderMode, this, pixelsPerUnit, isLod);
}

void CRenderObject::drawShapes(std::vector<CRenderShape>& shapes, unsigned instanced, bool cullBackFaces,
                               const double* pixelsPerUnit, const AcGeVector3d* viewDirection, bool isLod) {
  for (const CSimpleMatrix* m : m_smpMats) {
    if (!m) continue;
    kgl->PushMatrix();
    m->MultOpenGLMatrix();
    for (unsigned i = 0; i < instanced; ++i) drawShape(shapes[i], cullBackFaces, pixelsPerUnit, viewDirection, isLod);
    kgl->PopMatrix();
  }
  for (size_t i = instanced; i < shapes.size(); ++i)
    drawShape(shapes[i], cullBackFaces, pixelsPerUnit, viewDirection, isLod);
}

void CRenderObject::render(bool cullBackFaces, const double* unitsPerPixel, const double* pixelsPerUnit,
                           const AcGeVector3d* viewDirection) {
  endShadowVolumeState();  // faces are drawn in their own state
  if (!m_visible || !m_objSet) return;
  CSceneMgr* scene = m_objSet->getScene();

  if (scene && scene->isAccelerate()) {
    const double side = std::min(scene->getViewWidth(), scene->getViewHeight());
    const double size = ((m_ptMax.x - m_ptMin.x) + (m_ptMax.y - m_ptMin.y)) * side / scene->dRange();
    if (size < 120.0) return;
  }

  if (m_extra && m_extra->hasMaxUnitsPerPixel) {
    if (unitsPerPixel && m_extra->maxUnitsPerPixel <= *unitsPerPixel) return;
  } else if (pixelsPerUnit && m_radius > 1e-10) {
    const long n = std::lround(m_radius * *pixelsPerUnit);
    if (n < 11) {
      // Too small to show any shape: a single point in the object colour,
      // or nothing when the scene is nearly see-through.
      if (scene && scene->getTransparent() < 30) return;
      if (kxretained::queuePoint(m_color, m_ptCenter)) return;
      kgl->Normal3f(0.0f, 0.0f, 1.0f);
      kgl->PointSize(3.0f);
      kgl->PolygonOffset(0.0f, 0.0f);
      kgl->Begin(GL_POINTS);
      kgl->Color4ub(m_color.r, m_color.g, m_color.b, m_color.a);
      kgl->Vertex3d(m_ptCenter.x, m_ptCenter.y, m_ptCenter.z);
      kgl->End();
      return;
    }
  }

  std::vector<CRenderShape>* shapes = &m_shapes;
  unsigned instanced = m_exaGeoShapNum;
  bool isLod = false;
  if (unitsPerPixel && m_extra && !m_extra->lodUnitsPerPixel.empty()) {
    Extra& e = *m_extra;
    const float current = static_cast<float>(*unitsPerPixel);
    // Hosts size the three level lists themselves: only levels present in
    // all of them count.
    for (size_t i = std::min(e.lodUnitsPerPixel.size(), e.lodShps.size()); i-- > 0;) {
      if (current - e.lodUnitsPerPixel[i] > -1e-5) {
        shapes = &e.lodShps[i];
        instanced = i < e.lodExaShapeNum.size() ? e.lodExaShapeNum[i] : 0;
        isLod = true;
        break;
      }
    }
  }
  if (instanced > shapes->size()) instanced = static_cast<unsigned>(shapes->size());

  m_renderedFlag1 = m_renderedFlag2 = true;
  if (!drawRetained(*shapes, instanced, cullBackFaces, pixelsPerUnit, viewDirection, isLod)) {
    if (m_trackerXor) {
      kgl->Enable(GL_COLOR_LOGIC_OP);
      kgl->LogicOp(GL_XOR);
    }
    drawShapes(*shapes, instanced, cullBackFaces, pixelsPerUnit, viewDirection, isLod);
    if (m_trackerXor) kgl->Disable(GL_COLOR_LOGIC_OP);
  }

  if (!m_shapes.empty() && m_shapes.front().getHit() && scene && scene->isDrawGrip()) {
    kgl->PointSize(11.0f);
    kgl->Color3ub(0, 172, 255);
    kgl->Begin(GL_POINTS);
    const std::vector<CGripPoint>& grips = extraOrNone().grips;
    for (size_t i = 0; i < grips.size(); ++i) {
      const AcGePoint3d& p = grips[i].getPos();
      kgl->Vertex3d(p.x, p.y, p.z);
      GripPoint* g = new GripPoint;
      g->obj = this;
      g->pt = scene->world2screen(p);
      g->index = static_cast<int>(i);
      scene->addGripPt(g);
    }
    kgl->End();
  }
}
