// The import's own work on any scene a model file can become, whatever its
// format: the node tree (IFC products, mapped items and storeys, other
// formats' mesh nodes, metadata), meshes with NaN, infinite or huge
// positions, faces of one to four corners, missing normals and texture
// coordinates, shared meshes (freed after their last user), and materials
// with colours, opacity and texture names. The scene is one assimp's
// validation lets through: every index is in range. Reading a file costs
// assimp 32 MB of line buffers in some formats; building the scene here
// lets this part run millions of times.
#include <assimp/material.h>
#include <assimp/metadata.h>
#include <assimp/scene.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "import/SceneImport.h"
#include "kxrender/CRenderObject.h"

// assimp's own leaks are its own; ours are still reported.
extern "C" const char* __lsan_default_suppressions() { return "leak:libassimp.so\n"; }

namespace {

// The input as a stream of choices; zeros once it runs out.
struct Bytes {
  const uint8_t* data;
  size_t size;
  size_t at = 0;
  unsigned byte() { return at < size ? data[at++] : 0u; }
  unsigned below(unsigned n) { return byte() % n; }
  // Mostly small coordinates; one byte in five gives raw float bits (NaN,
  // infinities, denormals, 3e38).
  float real() {
    const unsigned b = byte();
    if (b < 205) return (float(b) - 102.0f) / 8.0f;
    uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
  }
  // In order: arguments of one call are read in no fixed order.
  aiVector3D vec(bool withZ = true) {
    const float x = real(), y = real(), z = withZ ? real() : 0.0f;
    return aiVector3D(x, y, z);
  }
  aiColor4D colour() {
    const aiVector3D c = vec();
    return aiColor4D(c.x, c.y, c.z, real());
  }
};

const char* const kGuid = "3rPX_Juz59peXXY6wDJl18";

std::string nodeName(Bytes& in) {
  switch (in.below(8)) {
    case 0: return "";
    case 1: return "Wall";
    case 2: return "IfcMappedItem";
    case 3: return std::string("IfcBuildingStorey_Level ") + char('0' + in.below(10)) + "_" + kGuid;
    case 4: return std::string("IfcWallStandardCase_W_") + kGuid;
    case 5: return std::string("IfcSlab_") + kGuid;
    case 6: return "IfcRelAggregates";
    default: {
      std::string s(in.below(40), ' ');
      for (char& c : s) c = char(in.byte());
      return s;
    }
  }
}

aiMesh* makeMesh(Bytes& in, unsigned materials) {
  auto* m = new aiMesh;
  m->mMaterialIndex = in.below(materials);
  m->mNumVertices = 1 + in.below(12);
  m->mVertices = new aiVector3D[m->mNumVertices];
  for (unsigned v = 0; v < m->mNumVertices; ++v) m->mVertices[v] = in.vec();
  const unsigned flags = in.byte();
  if (flags & 1) {
    m->mNormals = new aiVector3D[m->mNumVertices];
    for (unsigned v = 0; v < m->mNumVertices; ++v) m->mNormals[v] = in.vec();
  }
  if (flags & 2) {
    m->mTextureCoords[0] = new aiVector3D[m->mNumVertices];
    m->mNumUVComponents[0] = 2;
    for (unsigned v = 0; v < m->mNumVertices; ++v) m->mTextureCoords[0][v] = in.vec(false);
  }
  m->mNumFaces = in.below(16);
  m->mFaces = new aiFace[m->mNumFaces];
  for (unsigned f = 0; f < m->mNumFaces; ++f) {
    aiFace& face = m->mFaces[f];
    face.mNumIndices = in.below(8) == 0 ? 1 + in.below(4) : 3;  // lines and points slip through at times
    face.mIndices = new unsigned[face.mNumIndices];
    for (unsigned c = 0; c < face.mNumIndices; ++c) face.mIndices[c] = in.below(m->mNumVertices);
  }
  m->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
  return m;
}

aiMaterial* makeMaterial(Bytes& in) {
  auto* m = new aiMaterial;
  const unsigned flags = in.byte();
  if (flags & 1) {
    const aiColor4D c = in.colour();
    m->AddProperty(&c, 1, AI_MATKEY_COLOR_DIFFUSE);
  }
  if (flags & 2) {
    const aiColor4D c = in.colour();
    m->AddProperty(&c, 1, AI_MATKEY_BASE_COLOR);
  }
  if (flags & 4) {
    const float opacity = in.real();
    m->AddProperty(&opacity, 1, AI_MATKEY_OPACITY);
  }
  if (flags & 8) {
    const aiString path(flags & 16 ? "*0" : "walls\\Brick.PNG");
    m->AddProperty(&path, AI_MATKEY_TEXTURE_DIFFUSE(0));
  }
  return m;
}

aiMatrix4x4 makeTransform(Bytes& in) {
  aiMatrix4x4 t;
  switch (in.below(4)) {
    case 0: break;
    case 1: aiMatrix4x4::Translation(in.vec(), t); break;
    case 2: aiMatrix4x4::Scaling(in.vec(), t); break;
    default:
      for (unsigned i = 0; i < 4; ++i)
        for (unsigned j = 0; j < 4; ++j) t[i][j] = in.real();
  }
  return t;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes in{data, size};
  const unsigned head = in.byte();
  static const char* const kFormats[] = {"obj", "ifc", "gltf", "stl"};
  const std::string ext = kFormats[head & 3];
  KxImportOptions options;
  options.zUp = head & 4;
  options.snapCurves = head & 8;
  options.creaseAngle = in.below(181);
  options.featureAngle = in.below(181);

  auto* scene = new aiScene;
  scene->mNumMaterials = 1 + in.below(3);
  scene->mMaterials = new aiMaterial*[scene->mNumMaterials];
  for (unsigned i = 0; i < scene->mNumMaterials; ++i) scene->mMaterials[i] = makeMaterial(in);
  scene->mNumMeshes = 1 + in.below(4);
  scene->mMeshes = new aiMesh*[scene->mNumMeshes];
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) scene->mMeshes[i] = makeMesh(in, scene->mNumMaterials);

  // Nodes in creation order, each below one made before it.
  std::vector<aiNode*> nodes(1 + in.below(8));
  std::vector<std::vector<aiNode*>> children(nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    aiNode* n = nodes[i] = new aiNode(nodeName(in));
    n->mTransformation = makeTransform(in);
    n->mNumMeshes = in.below(3);
    n->mMeshes = n->mNumMeshes ? new unsigned[n->mNumMeshes] : nullptr;
    for (unsigned k = 0; k < n->mNumMeshes; ++k) n->mMeshes[k] = in.below(scene->mNumMeshes);
    if (in.below(4) == 0) {
      n->mMetaData = aiMetadata::Alloc(2);
      n->mMetaData->Set(0, "Storey", aiString(nodeName(in)));
      n->mMetaData->Set(1, "Height", double(in.real()));
    }
    if (i > 0) children[in.below(unsigned(i))].push_back(n);
  }
  for (size_t i = 0; i < nodes.size(); ++i)
    if (!children[i].empty()) nodes[i]->addChildren(unsigned(children[i].size()), children[i].data());
  scene->mRootNode = nodes[0];

  CObjectSetMgr set;
  CString error;
  KxImportResult result;
  const bool ok = kximport::importAssimpScene(scene, ext, set, error, options, &result);
  if (ok != (set.numObjs() == result.ids.size() && set.numObjs() > 0)) std::abort();
  if (!ok && (set.numObjs() != 0 || error.IsEmpty())) std::abort();
  size_t triangles = 0;
  for (unsigned id : result.ids)
    for (const CRenderShape& s : set.getObj(id)->getShps())
      if (const std::vector<int>* tris = s.getFaceTriangleIndexArray()) triangles += tris->size() / 3;
  if (triangles != result.triangles) std::abort();
  return 0;
}
