#include "kxrender/CSimpleMatrix.h"

#include "kxrender/CRenderSysUtils.h"
#include "support/GLTable.h"

namespace {
// How many values each kind carries; a mismatch means the transform is not
// applied at all.
size_t valueCount(int kind) {
  switch (kind) {
    case CSimpleMatrix::kFull: return 16;
    case CSimpleMatrix::kZMove: return 1;
    case CSimpleMatrix::kZMoveZScale: return 2;
    case CSimpleMatrix::kTranslate: return 3;
    default: return 0;
  }
}
}  // namespace

void CSimpleMatrix::setFullMatrix(const AcGeMatrix3d& m) {
  m_kind = kFull;
  m_values.assign(16, 0.0f);
  CRenderSysUtils::convertMatrixTo16(m, m_values.data());
}

void CSimpleMatrix::setZMove(float dz) {
  m_kind = kZMove;
  m_values = {dz};
}

void CSimpleMatrix::setZMoveAndZScale(float dz, float sz) {
  m_kind = kZMoveZScale;
  m_values = {dz, sz};
}

void CSimpleMatrix::setTranslate(float x, float y, float z) {
  m_kind = kTranslate;
  m_values = {x, y, z};
}

void CSimpleMatrix::MultOpenGLMatrix() const {
  const size_t n = valueCount(m_kind);
  if (n == 0 || m_values.size() != n) return;
  const float* v = m_values.data();
  switch (m_kind) {
    case kFull: kgl->MultMatrixf(v); break;
    case kZMove: kgl->Translatef(0.0f, 0.0f, v[0]); break;
    case kZMoveZScale:
      // Translate first: the scale then acts on the shape in its own frame
      // and does not stretch the move.
      kgl->Translatef(0.0f, 0.0f, v[0]);
      kgl->Scalef(1.0f, 1.0f, v[1]);
      break;
    case kTranslate: kgl->Translatef(v[0], v[1], v[2]); break;
  }
}

AcGeMatrix3d CSimpleMatrix::GetAcgeMatrix() const {
  AcGeMatrix3d m;  // identity: what an unapplied transform amounts to
  const size_t n = valueCount(m_kind);
  if (n == 0 || m_values.size() != n) return m;
  const float* v = m_values.data();
  switch (m_kind) {
    case kFull: CRenderSysUtils::convert16ToMatrix(v, m); break;
    case kZMove: m.entry[2][3] = v[0]; break;
    case kZMoveZScale:
      // T(0, 0, dz) * S(1, 1, sz)
      m.entry[2][2] = v[1];
      m.entry[2][3] = v[0];
      break;
    case kTranslate:
      m.entry[0][3] = v[0];
      m.entry[1][3] = v[1];
      m.entry[2][3] = v[2];
      break;
  }
  return m;
}
