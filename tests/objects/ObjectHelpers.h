#pragma once
// Small builders for object-store tests: real shapes, real objects.
#include <vector>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CRenderShape.h"
#include "support/PrivateAccess.h"

typedef std::vector<AcGePoint3d> Pts;

// A horizontal rectangle x0..x1 by y0..y1 at height z, facing +z.
inline CRenderShape rectShape(double x0, double y0, double x1, double y1, double z,
                              const CColor& c = CColor(200, 100, 50, 255)) {
  CRenderShape s;
  s.set({{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}}, {}, CRenderShape::kPgon, c, AcGeVector3d(0, 0, 1));
  return s;
}

// A rectangle standing in the plane x = x, facing +x (or -x when flipped).
inline CRenderShape wallShape(double x, double y0, double y1, double z0, double z1, bool facingPlusX,
                              const CColor& c = CColor(200, 100, 50, 255)) {
  CRenderShape s;
  s.set({{x, y0, z0}, {x, y1, z0}, {x, y1, z1}, {x, y0, z1}}, {}, CRenderShape::kPgon, c,
        AcGeVector3d(facingPlusX ? 1 : -1, 0, 0));
  return s;
}

// A face mesh of one triangle (0,0)-(8,0)-(0,8) facing +z, with its edge
// as a hit line; the shape keeps its own copies of the arrays.
inline CRenderShape faceTriangle(const CColor& c = CColor()) {
  CRenderShape s;
  s.setFaceType(false);
  std::vector<AcGePoint3d> v{{0, 0, 0}, {8, 0, 0}, {0, 8, 0}};
  std::vector<int> tri{0, 1, 2};
  std::vector<AcGeVector3d> n(3, AcGeVector3d(0, 0, 1));
  s.setFaceVertexArray(&v);
  s.setFaceTriangleIndexArray(&tri);
  s.setFaceNormalArray(&n);
  s.setClr(c);
  s.addHitLine(v);
  s.calBox();
  return s;
}

// Adds an instance matrix that shifts the instanced shapes by (dx, dy, dz).
inline void addShift(CRenderObject& o, float dx, float dy = 0, float dz = 0) {
  CSimpleMatrix* m = new CSimpleMatrix;
  m->setTranslate(dx, dy, dz);
  o.addSmpMat(m);
}

inline CRenderObject* objectOf(const std::vector<CRenderShape>& shapes) {
  CRenderObject* o = new CRenderObject;
  for (const CRenderShape& s : shapes) o->addShape(s);
  o->endAddShape();
  return o;
}

// One shape through the points: a polyline unless told otherwise.
inline CRenderObject* object(const Pts& pts, CRenderShape::ShapeType kind = CRenderShape::kPline,
                             const std::vector<Pts>& holes = {}, AcGeVector3d normal = AcGeVector3d(0, 0, 1)) {
  CRenderShape s;
  s.set(pts, holes, kind, CColor(), normal);
  return objectOf({s});
}

inline CRenderObject* rectObject(double x0, double y0, double x1, double y1, double z = 0.0,
                                 const CColor& c = CColor(200, 100, 50, 255)) {
  return objectOf({rectShape(x0, y0, x1, y1, z, c)});
}

KX_PRIVATE_MEMBER(ObjectsOf, &CObjectSetMgr::m_objects);
KX_PRIVATE_MEMBER(NextIdOf, &CObjectSetMgr::m_nextId);
KX_PRIVATE_MEMBER(IdAttemptLimitOf, &CObjectSetMgr::m_idAttemptLimit);
struct CObjectSetMgrTestAccess {
  static std::map<unsigned, CRenderObject*>& objects(CObjectSetMgr& s) { return s.*privateMember(ObjectsOf{}); }
  static unsigned& nextId(CObjectSetMgr& s) { return s.*privateMember(NextIdOf{}); }
  static uint32_t& attemptLimit(CObjectSetMgr& s) { return s.*privateMember(IdAttemptLimitOf{}); }
};
