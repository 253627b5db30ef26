// Editing side of a render object: rigid transforms, instance matrices,
// snap points and snap curves.
#include <algorithm>
#include <cmath>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"

namespace {

void deleteCurves(std::vector<AcGeCurve3d*>& curves) {
  for (AcGeCurve3d* c : curves) delete c;
  curves.clear();
}

void copyCurves(const std::vector<AcGeCurve3d*>& from, std::vector<AcGeCurve3d*>& to) {
  to.clear();
  to.reserve(from.size());
  for (const AcGeCurve3d* c : from) to.push_back(c ? static_cast<AcGeCurve3d*>(c->copy()) : nullptr);
}

}  // namespace

void CRenderObject::clearSmpMat() {
  for (CSimpleMatrix* m : m_smpMats) delete m;
  m_smpMats.clear();
  m_shadow.stale = true;
  snapChanged();
}

void CRenderObject::snapChanged() {
  if (m_inSet && m_objSet) m_objSet->snapDataChanged(m_id);
}

void CRenderObject::clearSnapCurves() {
  if (!m_extra) return;
  deleteCurves(m_extra->snapCurves);
  deleteCurves(m_extra->snapCurvesExa);
}

void CRenderObject::copySanpCurves(const CRenderObject& o) {
  if (this == &o) return;
  clearSnapCurves();
  if (!o.m_extra) return;
  copyCurves(o.m_extra->snapCurves, extra().snapCurves);
  copyCurves(o.m_extra->snapCurvesExa, extra().snapCurvesExa);
}

void CRenderObject::move(const AcGeVector3d& v) {
  transformBy(AcGeMatrix3d::translation(v));
  updateTree();
}

void CRenderObject::rotate(const AcGePoint3d& centre, double angle) {
  transformBy(AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis, centre));
  updateTree();
}

void CRenderObject::mirror(const AcGeLine3d& line) {
  const AcGePoint3d p = line.pointOnLine();
  const AcGeVector3d dir = line.direction().normal();
  const AcGePlane plane(p, p + dir, p + AcGeVector3d::kZAxis);
  transformBy(AcGeMatrix3d::mirroring(plane));
  updateTree();
}

void CRenderObject::updateTree() {
  if (m_objSet) m_objSet->updateSearchTree(this);
}

void CRenderObject::transformBy(const AcGeMatrix3d& m) {
  // Instanced shapes and the exact snap data live in the frame under the
  // instance matrices: conjugating by the first matrix moves what is drawn
  // (matrix * shape) by m in the world. For the usual instance matrices
  // (moves and z scales) under moves this is exact for every instance.
  AcGeMatrix3d exact = m;
  if (!m_smpMats.empty() && m_smpMats.front()) {
    const AcGeMatrix3d inst = m_smpMats.front()->GetAcgeMatrix();
    AcGeMatrix3d inv;
    if (inst.inverse(inv)) exact = inv * m * inst;
  }
  for (size_t i = 0; i < m_shapes.size(); ++i) m_shapes[i].transformBy(i < m_exaGeoShapNum ? exact : m);
  calBox();
  if (!m_extra) return;
  Extra& e = *m_extra;
  for (size_t level = 0; level < e.lodShps.size(); ++level) {
    const unsigned n = level < e.lodExaShapeNum.size() ? e.lodExaShapeNum[level] : 0;
    for (size_t i = 0; i < e.lodShps[level].size(); ++i) e.lodShps[level][i].transformBy(i < n ? exact : m);
  }
  for (AcGePoint3d& p : e.snapPoints) p = m * p;
  for (AcGeCurve3d* c : e.snapCurves)
    if (c) c->transformBy(m);
  for (AcGePoint3d& p : e.snapPointsExa) p = exact * p;
  for (AcGeCurve3d* c : e.snapCurvesExa)
    if (c) c->transformBy(exact);
  for (CGripPoint& g : e.grips) {
    g.setPos(m * g.getPos());
    g.setDir(m * g.getDir());
  }
  // Bounds of the exact data: its points and its curves' bounding blocks.
  AcGeBoundBlock3d box;
  for (const AcGePoint3d& p : e.snapPointsExa) box.extend(p);
  for (const AcGeCurve3d* c : e.snapCurvesExa) {
    if (!c) continue;
    AcGePoint3d a, b;
    c->boundBlock().getMinMaxPoints(a, b);
    box.extend(a).extend(b);
  }
  if (!box.isEmpty()) {
    AcGePoint3d lo, hi;
    box.getMinMaxPoints(lo, hi);
    e.snapExaCenter = lo + (hi - lo) * 0.5;
    e.snapExaRadius = static_cast<float>(e.snapExaCenter.distanceTo(lo));
  }
}

void CRenderObject::updateSnapExaSphere() {
  if (!m_extra || (m_extra->snapPointsExa.empty() && m_extra->snapCurvesExa.empty())) return;
  Extra& e = *m_extra;
  AcGeBoundBlock3d box;
  for (const AcGePoint3d& p : e.snapPointsExa) box.extend(p);
  for (const AcGeCurve3d* c : e.snapCurvesExa) {
    if (!c) continue;
    AcArray<AcGePoint3d> samples;
    c->getSamplePoints(16, samples);
    for (int i = 0; i < samples.length(); ++i) box.extend(samples[i]);
  }
  if (box.isEmpty()) return;
  AcGePoint3d lo, hi;
  box.getMinMaxPoints(lo, hi);
  e.snapExaCenter = lo + (hi - lo) * 0.5;
  // Half the diagonal: a sphere that holds the whole box.
  e.snapExaRadius = static_cast<float>(e.snapExaCenter.distanceTo(lo));
}

void CRenderObject::AutoCountCatchPoint() {
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    const CRenderShape& s = m_shapes[i];
    if (s.getShpType() == CRenderShape::kText || s.getShpType() == CRenderShape::kFace) continue;
    std::vector<AcGePoint3d>& to = i < m_exaGeoShapNum ? extra().snapPointsExa : extra().snapPoints;
    to.insert(to.end(), s.getPts().begin(), s.getPts().end());
    for (const std::vector<AcGePoint3d>& hole : s.getHoles()) to.insert(to.end(), hole.begin(), hole.end());
  }
  snapChanged();
}

void CRenderObject::AutoCountCatchLine() {
  auto addSegments = [](const std::vector<AcGePoint3d>& pts, std::vector<AcGeCurve3d*>& to) {
    for (size_t k = 1; k < pts.size(); ++k) to.push_back(new AcGeLineSeg3d(pts[k - 1], pts[k]));
  };
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    const CRenderShape& s = m_shapes[i];
    if (s.getShpType() == CRenderShape::kText || s.getShpType() == CRenderShape::kFace) continue;
    std::vector<AcGeCurve3d*>& to = i < m_exaGeoShapNum ? extra().snapCurvesExa : extra().snapCurves;
    addSegments(s.getPts(), to);
    for (const std::vector<AcGePoint3d>& hole : s.getHoles()) addSegments(hole, to);
  }
}
