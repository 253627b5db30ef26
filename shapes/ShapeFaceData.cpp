// The four arrays of a face mesh, owned by the shape or shared with the
// host (shareVertexData).
#include "kxrender/CRenderShape.h"

namespace {
// Shared: keep the caller's array. Owned: copy it, into the array already
// held when there is one, so an earlier pointer handed out stays valid and
// nothing leaks.
template <typename T>
void adopt(std::vector<T>*& slot, std::vector<T>* given, bool shared) {
  if (!given) return;
  if (shared) {
    slot = given;
  } else if (slot) {
    if (slot != given) *slot = *given;
  } else {
    slot = new std::vector<T>(*given);
  }
}

template <typename T>
std::vector<T>* duplicate(const std::vector<T>* v) {
  return v ? new std::vector<T>(*v) : nullptr;
}
}  // namespace

void CRenderShape::setFaceVertexArray(std::vector<AcGePoint3d>* v) {
  touchDrawStamp();
  adopt(m_meshVertices, v, m_shareVertexData);
  if (m_rare) m_rare->faceBvh.reset();
}

void CRenderShape::setFaceTriangleIndexArray(std::vector<int>* v) {
  touchDrawStamp();
  adopt(m_meshTriangleIndices, v, m_shareVertexData);
  if (m_rare) m_rare->faceBvh.reset();
}

void CRenderShape::setFaceNormalArray(std::vector<AcGeVector3d>* v) {
  touchDrawStamp();
  adopt(m_meshNormals, v, m_shareVertexData);
}

void CRenderShape::setFaceTexCoordArray(std::vector<AcGePoint2d>* v) {
  touchDrawStamp();
  adopt(m_meshTexCoords, v, m_shareVertexData);
}

void CRenderShape::initFaceData() {
  m_meshVertices = nullptr;
  m_meshTriangleIndices = nullptr;
  m_meshNormals = nullptr;
  m_meshTexCoords = nullptr;
  m_shareVertexData = false;
  m_faceDisplayList = 0;
}

void CRenderShape::freeFaceData() {
  if (!m_shareVertexData) {
    delete m_meshVertices;
    delete m_meshTriangleIndices;
    delete m_meshNormals;
    delete m_meshTexCoords;
  }
  m_meshVertices = nullptr;
  m_meshTriangleIndices = nullptr;
  m_meshNormals = nullptr;
  m_meshTexCoords = nullptr;
  if (m_rare) m_rare->faceBvh.reset();
}

// Shared arrays stay shared (same pointers); owned ones are duplicated. An
// absent array stays absent, so a copy of a plain polygon does not turn
// into a face with empty arrays.
void CRenderShape::copyFaceData(const CRenderShape& src) {
  if (&src == this) return;
  freeFaceData();
  m_shareVertexData = src.m_shareVertexData;
  if (m_shareVertexData) {
    m_meshVertices = src.m_meshVertices;
    m_meshTriangleIndices = src.m_meshTriangleIndices;
    m_meshNormals = src.m_meshNormals;
    m_meshTexCoords = src.m_meshTexCoords;
  } else {
    m_meshVertices = duplicate(src.m_meshVertices);
    m_meshTriangleIndices = duplicate(src.m_meshTriangleIndices);
    m_meshNormals = duplicate(src.m_meshNormals);
    m_meshTexCoords = duplicate(src.m_meshTexCoords);
  }
  if (m_rare || src.m_rare) {
    Rare& r = rare();
    r.hitLines = src.getHitLine();
    r.faceBvh = src.rareOrNone().faceBvh;
  }
}

bool CRenderShape::isFaceDataNull() const { return !m_meshVertices || !m_meshTriangleIndices || !m_meshNormals; }
