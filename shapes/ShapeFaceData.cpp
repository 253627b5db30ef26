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

CRenderShape::MeshArrays& CRenderShape::mesh() {
  if (!m_mesh) m_mesh.reset(new MeshArrays);
  return *m_mesh;
}

void CRenderShape::setFaceVertexArray(std::vector<AcGePoint3d>* v) {
  touchDrawStamp();
  if (v) adopt(mesh().vertices, v, m_shareVertexData);
  if (m_rare) m_rare->faceBvh.reset();
}

void CRenderShape::setFaceTriangleIndexArray(std::vector<int>* v) {
  touchDrawStamp();
  if (v) adopt(mesh().triangleIndices, v, m_shareVertexData);
  if (m_rare) m_rare->faceBvh.reset();
}

void CRenderShape::setFaceNormalArray(std::vector<AcGeVector3d>* v) {
  touchDrawStamp();
  if (v) adopt(mesh().normals, v, m_shareVertexData);
}

void CRenderShape::setFaceTexCoordArray(std::vector<AcGePoint2d>* v) {
  touchDrawStamp();
  if (v) adopt(mesh().texCoords, v, m_shareVertexData);
}

void CRenderShape::initFaceData() {
  m_mesh.reset();  // forgets the arrays, as a fresh shape has none
  m_shareVertexData = false;
  m_faceDisplayList = 0;
}

void CRenderShape::freeFaceData() {
  if (m_mesh && !m_shareVertexData) {
    delete m_mesh->vertices;
    delete m_mesh->triangleIndices;
    delete m_mesh->normals;
    delete m_mesh->texCoords;
  }
  m_mesh.reset();
  if (m_rare) m_rare->faceBvh.reset();
}

// Shared arrays stay shared (same pointers); owned ones are duplicated. An
// absent array stays absent, so a copy of a plain polygon does not turn
// into a face with empty arrays.
void CRenderShape::copyFaceData(const CRenderShape& src) {
  if (&src == this) return;
  freeFaceData();
  m_shareVertexData = src.m_shareVertexData;
  if (src.m_mesh) {
    MeshArrays& m = mesh();
    if (m_shareVertexData) {
      m = *src.m_mesh;
    } else {
      m.vertices = duplicate(src.m_mesh->vertices);
      m.triangleIndices = duplicate(src.m_mesh->triangleIndices);
      m.normals = duplicate(src.m_mesh->normals);
      m.texCoords = duplicate(src.m_mesh->texCoords);
    }
  }
  if (m_rare || src.m_rare) {
    Rare& r = rare();
    r.hitLines = src.getHitLine();
    r.faceBvh = src.rareOrNone().faceBvh;
  }
}

bool CRenderShape::isFaceDataNull() const { return !meshVertices() || !meshTriangleIndices() || !meshNormals(); }
