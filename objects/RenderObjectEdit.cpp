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
  deleteCurves(m_snapCurves);
  deleteCurves(m_snapCurvesExa);
}

void CRenderObject::copySanpCurves(const CRenderObject& o) {
  if (this == &o) return;
  clearSnapCurves();
  copyCurves(o.m_snapCurves, m_snapCurves);
  copyCurves(o.m_snapCurvesExa, m_snapCurvesExa);
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
  for (size_t level = 0; level < m_lodShps.size(); ++level) {
    const unsigned n = level < m_lodExaShapeNum.size() ? m_lodExaShapeNum[level] : 0;
    for (size_t i = 0; i < m_lodShps[level].size(); ++i) m_lodShps[level][i].transformBy(i < n ? exact : m);
  }
  for (AcGePoint3d& p : m_snapPoints) p = m * p;
  for (AcGeCurve3d* c : m_snapCurves)
    if (c) c->transformBy(m);
  for (AcGePoint3d& p : m_snapPointsExa) p = exact * p;
  for (AcGeCurve3d* c : m_snapCurvesExa)
    if (c) c->transformBy(exact);
  for (CGripPoint& g : m_grips) {
    g.setPos(m * g.getPos());
    g.setDir(m * g.getDir());
  }
  calBox();
  // Bounds of the exact data: its points and its curves' bounding blocks.
  AcGeBoundBlock3d box;
  for (const AcGePoint3d& p : m_snapPointsExa) box.extend(p);
  for (const AcGeCurve3d* c : m_snapCurvesExa) {
    if (!c) continue;
    AcGePoint3d a, b;
    c->boundBlock().getMinMaxPoints(a, b);
    box.extend(a).extend(b);
  }
  if (!box.isEmpty()) {
    AcGePoint3d lo, hi;
    box.getMinMaxPoints(lo, hi);
    m_snapExaCenter = lo + (hi - lo) * 0.5;
    m_snapExaRadius = static_cast<float>(m_snapExaCenter.distanceTo(lo));
  }
}

void CRenderObject::updateSnapExaSphere() {
  if (m_snapPointsExa.empty() && m_snapCurvesExa.empty()) return;
  AcGeBoundBlock3d box;
  for (const AcGePoint3d& p : m_snapPointsExa) box.extend(p);
  for (const AcGeCurve3d* c : m_snapCurvesExa) {
    if (!c) continue;
    AcArray<AcGePoint3d> samples;
    c->getSamplePoints(16, samples);
    for (int i = 0; i < samples.length(); ++i) box.extend(samples[i]);
  }
  if (box.isEmpty()) return;
  AcGePoint3d lo, hi;
  box.getMinMaxPoints(lo, hi);
  m_snapExaCenter = lo + (hi - lo) * 0.5;
  // Half the diagonal: a sphere that holds the whole box.
  m_snapExaRadius = static_cast<float>(m_snapExaCenter.distanceTo(lo));
}

void CRenderObject::AutoCountCatchPoint() {
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    const CRenderShape& s = m_shapes[i];
    if (s.getShpType() == CRenderShape::kText || s.getShpType() == CRenderShape::kFace) continue;
    std::vector<AcGePoint3d>& to = i < m_exaGeoShapNum ? m_snapPointsExa : m_snapPoints;
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
    std::vector<AcGeCurve3d*>& to = i < m_exaGeoShapNum ? m_snapCurvesExa : m_snapCurves;
    addSegments(s.getPts(), to);
    for (const std::vector<AcGePoint3d>& hole : s.getHoles()) addSegments(hole, to);
  }
}
