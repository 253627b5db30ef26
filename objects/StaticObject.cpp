#include "kxrender/CStaticObject.h"

#include "kxrender/AcGeBoundBlock3d.h"

#include "support/GLTable.h"

CStaticObject::CStaticObject() : m_renderList(kgl->GenLists(1)) {}

// A copy names the same list and box; it starts visible whatever the
// source says, so whoever copies decides its visibility.
CStaticObject::CStaticObject(const CStaticObject& o)
    : m_renderList(o.m_renderList), m_objSet(o.m_objSet), m_boxMin(o.m_boxMin), m_boxMax(o.m_boxMax) {}

CStaticObject& CStaticObject::operator=(const CStaticObject& o) {
  m_renderList = o.m_renderList;
  m_objSet = o.m_objSet;
  m_boxMin = o.m_boxMin;
  m_boxMax = o.m_boxMax;
  return *this;
}

void CStaticObject::beginBuild() {
  kgl->NewList(m_renderList, GL_COMPILE);
  m_firstPoint = true;
}

void CStaticObject::endBuild() { kgl->EndList(); }

void CStaticObject::begin(CRenderSystem::ShapeType type) {
  // The host's numbering puts the strip before the loop, unlike GL's.
  GLenum mode;
  switch (type) {
    case CRenderSystem::kPoints: mode = GL_POINTS; break;
    case CRenderSystem::kLines: mode = GL_LINES; break;
    case CRenderSystem::kLineStrip: mode = GL_LINE_STRIP; break;
    case CRenderSystem::kLineLoop: mode = GL_LINE_LOOP; break;
    case CRenderSystem::kTriangles: mode = GL_TRIANGLES; break;
    case CRenderSystem::kTriangleStrip: mode = GL_TRIANGLE_STRIP; break;
    case CRenderSystem::kTriangleFan: mode = GL_TRIANGLE_FAN; break;
    default: return;
  }
  kgl->Begin(mode);
}

void CStaticObject::end() { kgl->End(); }

void CStaticObject::point(double x, double y, double z) {
  kgl->Vertex3d(x, y, z);
  // The first point of a build starts the box afresh.
  const AcGePoint3d p(x, y, z);
  AcGeBoundBlock3d box(p, p);
  if (!m_firstPoint) box.set(m_boxMin, m_boxMax).extend(p);
  m_firstPoint = false;
  box.getMinMaxPoints(m_boxMin, m_boxMax);
}

void CStaticObject::normal(float x, float y, float z) { kgl->Normal3f(x, y, z); }

void CStaticObject::color(unsigned char r, unsigned char g, unsigned char b) { kgl->Color3ub(r, g, b); }

void CStaticObject::textureCoord(float s, float t) { kgl->TexCoord2d(s, t); }

void CStaticObject::releaseDisplayList() {
  // Name 0 is never a list; skipping it keeps a second release free of GL.
  if (m_renderList != 0 && kgl->IsList(m_renderList)) kgl->DeleteLists(m_renderList, 1);
  m_renderList = 0;
}
