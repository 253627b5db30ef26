// Model files through assimp into render objects of face meshes.
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "import/IfcNodeName.h"
#include "import/MeshEdges.h"
#include "import/PlyCheck.h"
#include "import/SceneImport.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CTextureMgr.h"
#include "kxrender/KxModelImport.h"

namespace {

using kximport::IfcNodeName;

// Reading is the first half of the work, building objects the second.
class Progress : public Assimp::ProgressHandler {
 public:
  explicit Progress(const KxImportOptions& o) : m_options(o) {}
  bool Update(float percentage) override { return report(0.5 * std::clamp(double(percentage), 0.0, 1.0), "reading"); }
  bool report(double fraction, const char* phase) {
    if (m_cancelled) return false;
    if (m_options.progress && !m_options.progress(fraction, phase)) m_cancelled = true;
    return !m_cancelled;
  }
  bool cancelled() const { return m_cancelled; }

 private:
  const KxImportOptions& m_options;
  bool m_cancelled = false;
};

std::string lower(std::string s) {
  for (char& c : s) c = char(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

// What assimp cannot tell apart from a format it does not know.
const char* contentProblem(const unsigned char* data, size_t size) {
  if (size == 0) return "the file is empty";
  if (size >= 2 && ((data[0] == 0xFF && data[1] == 0xFE) || (data[0] == 0xFE && data[1] == 0xFF)))
    return "UTF-16 text is not supported (save the file as UTF-8)";
  return nullptr;
}

// A mesh of the scene (by index) placed in the world.
struct Part {
  unsigned mesh;
  aiMatrix4x4 world;
};

// One object in the making: the meshes of a node (and, for an IFC product,
// of the mapped items below it) with their world transforms.
struct Pending {
  std::string name;
  std::map<CString, CString> tags;
  std::vector<Part> parts;
};

struct Walker {
  const aiScene& scene;
  bool ifc;
  std::vector<Pending> objects;

  void walk(const aiNode& node, const aiMatrix4x4& parentWorld, Pending* owner, const std::string& storey) {
    const aiMatrix4x4 world = parentWorld * node.mTransformation;
    const std::string name = node.mName.C_Str();
    std::string childStorey = storey;
    IfcNodeName ifcName;
    const bool isIfc = ifc && kximport::parseIfcNodeName(name, ifcName);
    if (isIfc && ifcName.ifcClass == "IfcBuildingStorey") childStorey = ifcName.name;
    // An IFC product owns everything below it up to the next product; in
    // other formats every node with meshes is an object of its own.
    const bool mappedItem = ifc && name == "IfcMappedItem";
    if ((isIfc || node.mNumMeshes > 0) && !(mappedItem && owner)) {
      objects.emplace_back();
      Pending& p = objects.back();
      p.name = name;
      if (isIfc) {
        p.tags["IfcClass"] = ifcName.ifcClass;
        p.tags["GlobalId"] = ifcName.globalId;
        p.tags["Name"] = ifcName.name;
        if (!storey.empty()) p.tags["Storey"] = storey;
      } else if (!name.empty()) {
        p.tags["name"] = name;
      }
      addMetadata(node, p);
      owner = &p;
    }
    // Children may add objects and so move the vector: keep the owner by
    // index.
    const size_t ownerIndex = owner ? size_t(owner - objects.data()) : size_t(-1);
    for (unsigned i = 0; i < node.mNumMeshes; ++i)
      if (node.mMeshes[i] < scene.mNumMeshes)
        objects[ownerIndex].parts.push_back(Part{node.mMeshes[i], world});
    for (unsigned i = 0; i < node.mNumChildren; ++i) {
      Pending* o = ownerIndex == size_t(-1) ? nullptr : &objects[ownerIndex];
      // A new IFC product or mesh node below a relationship starts afresh.
      const bool passOn = !ifc || std::string(node.mChildren[i]->mName.C_Str()) == "IfcMappedItem";
      walk(*node.mChildren[i], world, passOn ? o : nullptr, childStorey);
    }
  }

  static void addMetadata(const aiNode& node, Pending& p) {
    const aiMetadata* md = node.mMetaData;
    if (!md) return;
    for (unsigned i = 0; i < md->mNumProperties; ++i) {
      const aiMetadataEntry& e = md->mValues[i];
      std::string v;
      switch (e.mType) {
        case AI_AISTRING: v = static_cast<const aiString*>(e.mData)->C_Str(); break;
        case AI_BOOL: v = *static_cast<const bool*>(e.mData) ? "true" : "false"; break;
        case AI_INT32: v = std::to_string(*static_cast<const int32_t*>(e.mData)); break;
        case AI_UINT64: v = std::to_string(*static_cast<const uint64_t*>(e.mData)); break;
        case AI_FLOAT: v = std::to_string(*static_cast<const float*>(e.mData)); break;
        case AI_DOUBLE: v = std::to_string(*static_cast<const double*>(e.mData)); break;
        default: continue;
      }
      p.tags[md->mKeys[i].C_Str()] = v;
    }
  }
};

CColor materialColor(const aiScene& scene, unsigned index) {
  aiColor4D c(0.7f, 0.7f, 0.7f, 1.0f);
  float opacity = 1.0f;
  if (index < scene.mNumMaterials) {
    const aiMaterial* m = scene.mMaterials[index];
    if (m->Get(AI_MATKEY_BASE_COLOR, c) != AI_SUCCESS) m->Get(AI_MATKEY_COLOR_DIFFUSE, c);
    m->Get(AI_MATKEY_OPACITY, opacity);
  }
  auto byte = [](double v) { return static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 1.0) * 255.0)); };
  return CColor(byte(c.r), byte(c.g), byte(c.b), byte(double(c.a) * opacity));
}

// Texture names come from other systems: with '\\' between folders and in
// any case. The path of the file, or empty when there is none.
std::string findTexture(const std::filesystem::path& folder, std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  const std::filesystem::path rel(name);
  std::error_code ec;
  if (std::filesystem::is_regular_file(folder / rel, ec)) return (folder / rel).string();
  if (std::filesystem::is_regular_file(rel, ec)) return rel.string();
  const std::filesystem::path dir = (folder / rel).parent_path();
  const std::string wanted = lower(rel.filename().string());
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec))
    if (lower(it->path().filename().string()) == wanted && it->is_regular_file(ec)) return it->path().string();
  return {};
}

// The diffuse textures of the materials, registered in the scene's texture
// manager. A texture that cannot be had is a warning: the faces are drawn
// in the material's colour instead.
struct ModelTextures {
  std::vector<unsigned> byMaterial;  // GL texture names, 0 for none
  std::vector<CString> used, added, warnings;
  CTextureMgr* manager = nullptr;
  bool keep = false;
  ~ModelTextures() {
    // A failed import leaves the manager as it was.
    if (!keep && manager)
      for (const CString& name : added) manager->delTexture(name);
  }
};

void loadTextures(const aiScene& scene, const std::string& file, const std::filesystem::path& folder,
                  CTextureMgr* manager, ModelTextures& out) {
  out.manager = manager;
  out.byMaterial.assign(scene.mNumMaterials, 0u);
  for (unsigned m = 0; m < scene.mNumMaterials; ++m) {
    aiString path;
    const aiMaterial& material = *scene.mMaterials[m];
    if (material.GetTexture(aiTextureType_DIFFUSE, 0, &path) != AI_SUCCESS &&
        material.GetTexture(aiTextureType_BASE_COLOR, 0, &path) != AI_SUCCESS)
      continue;
    const std::string p = path.C_Str();
    if (p.empty()) continue;
    auto warn = [&](const std::string& problem) {
      const CString w(file + ": " + problem + "; drawn without it");
      if (std::find(out.warnings.begin(), out.warnings.end(), w) == out.warnings.end()) out.warnings.push_back(w);
    };
    std::string name;
    bool registered = false;
    if (const aiTexture* embedded = scene.GetEmbeddedTexture(p.c_str())) {
      // Compressed pictures (PNG, JPEG) are the bytes of a file; raw texels
      // come from formats outside the offered ones.
      if (embedded->mHeight != 0) {
        warn("embedded texture '" + p + "' is not a compressed picture");
        continue;
      }
      if (!manager) continue;
      name = file + p;
      registered = manager->exist(CString(name));
      if (!manager->addTexture(CString(name), embedded->pcData, embedded->mWidth)) {
        warn("embedded texture '" + p + "' is not a picture that can be read");
        continue;
      }
    } else {
      if (folder.empty() || p[0] == '*') continue;
      name = findTexture(folder, p);
      if (name.empty()) {
        warn("texture file '" + p + "' not found");
        continue;
      }
      if (!manager) continue;
      registered = manager->exist(CString(name));
      if (!manager->addTexture(CString(name))) {
        warn("texture file '" + name + "' is not a picture that can be read");
        continue;
      }
    }
    unsigned id = 0;
    if (!manager->getTexture(CString(name), id)) continue;
    out.byMaterial[m] = id;
    if (std::find(out.used.begin(), out.used.end(), CString(name)) == out.used.end()) out.used.emplace_back(name);
    if (!registered) out.added.emplace_back(name);
  }
}

// An OBJ's material libraries that are not there (assimp would only warn).
std::string missingMaterialLibrary(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::string line;
  while (std::getline(in, line)) {
    if (line.compare(0, 7, "mtllib ") != 0) continue;
    std::string lib = line.substr(7);
    while (!lib.empty() && std::isspace(static_cast<unsigned char>(lib.back()))) lib.pop_back();
    std::error_code ec;
    if (!std::filesystem::exists(file.parent_path() / lib, ec)) return lib;
  }
  return {};
}

// The scene's meshes are freed as soon as the last object using them is
// built: a large file never holds assimp's copy of all its geometry next to
// the engine's.
class MeshUsers {
 public:
  MeshUsers(aiScene& scene, const std::vector<Pending>& objects) : m_scene(scene), m_users(scene.mNumMeshes, 0) {
    for (const Pending& p : objects)
      for (const Part& part : p.parts) ++m_users[part.mesh];
    for (unsigned i = 0; i < scene.mNumMeshes; ++i)
      if (m_users[i] == 0) release(i);
  }
  void done(unsigned mesh) {
    if (--m_users[mesh] == 0) release(mesh);
  }

 private:
  void release(unsigned mesh) {
    delete m_scene.mMeshes[mesh];
    m_scene.mMeshes[mesh] = nullptr;
  }
  aiScene& m_scene;
  std::vector<size_t> m_users;
};

// One face shape of the meshes of one material, in world coordinates,
// textured when the material has a texture (GL names are never 0).
CRenderShape buildShape(const aiScene& scene, const std::vector<Part>& parts, const aiMatrix4x4& axes,
                        const CColor& color, unsigned texture, MeshUsers& users, const KxImportOptions& options) {
  std::vector<AcGePoint3d> pts;
  std::vector<AcGeVector3d> normals;
  std::vector<AcGePoint2d> uv;
  std::vector<int> tris;
  std::vector<int> index;  // a mesh's vertex in pts, -1 when left out
  bool allNormals = true;
  for (const Part& part : parts) {
    const aiMesh* mesh = scene.mMeshes[part.mesh];
    const aiMatrix4x4 m = axes * part.world;
    const aiMatrix3x3 n = aiMatrix3x3(m).Inverse().Transpose();
    allNormals = allNormals && mesh->HasNormals();
    // A position at infinity or NaN (in the file or after the node's
    // transform) would poison the box, and the shape would be dropped
    // whole: such vertices are left out, with the faces that use them.
    index.assign(mesh->mNumVertices, -1);
    for (unsigned v = 0; v < mesh->mNumVertices; ++v) {
      const aiVector3D p = m * mesh->mVertices[v];
      if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) continue;
      index[v] = int(pts.size());
      pts.emplace_back(p.x, p.y, p.z);
      aiVector3D d = mesh->HasNormals() ? n * mesh->mNormals[v] : aiVector3D();
      d.NormalizeSafe();
      normals.emplace_back(d.x, d.y, d.z);
      if (texture != 0) {
        const aiVector3D t = mesh->HasTextureCoords(0) ? mesh->mTextureCoords[0][v] : aiVector3D();
        uv.emplace_back(t.x, t.y);
      }
    }
    for (unsigned f = 0; f < mesh->mNumFaces; ++f) {
      const aiFace& face = mesh->mFaces[f];
      if (face.mNumIndices != 3 || index[face.mIndices[0]] < 0 || index[face.mIndices[1]] < 0 ||
          index[face.mIndices[2]] < 0)
        continue;
      for (int c = 0; c < 3; ++c) tris.push_back(index[face.mIndices[c]]);
    }
    users.done(part.mesh);
  }
  const std::vector<std::vector<AcGePoint3d>> lines = kximport::featureLines(pts, tris, options.featureAngle);
  if (!allNormals) kximport::creaseNormals(pts, tris, normals, options.creaseAngle, texture != 0 ? &uv : nullptr);
  CRenderShape s;
  s.setFaceType(false);
  s.setClr(color);
  s.setFaceVertexArray(&pts);
  s.setFaceTriangleIndexArray(&tris);
  s.setFaceNormalArray(&normals);
  if (texture != 0) {
    s.setFaceTexCoordArray(&uv);
    s.setTexture(texture);
  }
  for (const auto& line : lines) s.addHitLine(line);
  s.calBox();
  s.calArea();
  return s;
}

// The formats offered; assimp reads more, but those are not looked after.
bool supported(const std::string& ext) {
  for (const char* e : {"obj", "gltf", "glb", "stl", "ply", "3ds", "dxf", "ifc"})
    if (ext == e) return true;
  return false;
}
const char* kUnsupported = " is not a supported format (OBJ, glTF, STL, PLY, 3DS, DXF, IFC)";

bool fail(CString& error, const std::string& file, const std::string& problem) {
  error = CString(file + ": " + problem);
  return false;
}

// The objects of a scene assimp has read and validated; the scene is ours,
// so that its meshes can go while objects are built.
bool buildObjects(std::unique_ptr<aiScene> owned, Progress& progress, const std::string& file, const std::string& ext,
                  const std::filesystem::path& folder, CObjectSetMgr& set, CString& error,
                  const KxImportOptions& options, KxImportResult* result) {
  aiScene* scene = owned.get();
  if (!scene || scene->mFlags & AI_SCENE_FLAGS_INCOMPLETE || !scene->mRootNode || scene->mNumMeshes == 0)
    return fail(error, file, "the file holds no triangle meshes");
  ModelTextures textures;
  loadTextures(*scene, file, folder, options.textures, textures);
  const bool ifc = ext == "ifc";
  // glTF's convention, and assimp's IFC output, is y up.
  aiMatrix4x4 axes;
  if (options.zUp && (ifc || ext == "gltf" || ext == "glb")) aiMatrix4x4::RotationX(1.5707963267948966f, axes);

  Walker walker{*scene, ifc, {}};
  walker.walk(*scene->mRootNode, aiMatrix4x4(), nullptr, "");
  MeshUsers users(*scene, walker.objects);
  KxImportResult counts;
  std::vector<CRenderObject*> built;
  auto discard = [&] {
    for (CRenderObject* o : built) delete o;
  };
  for (size_t i = 0; i < walker.objects.size(); ++i) {
    const Pending& p = walker.objects[i];
    if (!progress.report(0.5 + 0.5 * double(i) / double(walker.objects.size()), "building")) {
      discard();
      return fail(error, file, "import cancelled");
    }
    std::map<unsigned, std::vector<Part>> byMaterial;
    for (const Part& part : p.parts) byMaterial[scene->mMeshes[part.mesh]->mMaterialIndex].push_back(part);
    if (byMaterial.empty()) continue;
    auto* o = new CRenderObject;
    for (const auto& [material, parts] : byMaterial) {
      const unsigned texture = material < textures.byMaterial.size() ? textures.byMaterial[material] : 0u;
      CRenderShape s = buildShape(*scene, parts, axes, materialColor(*scene, material), texture, users, options);
      for (const auto& [k, v] : p.tags) s.setXdata(k, v);
      o->addShape(s);
    }
    o->setXdata(CString(p.name));
    o->endAddShape();
    if (options.snapCurves) {
      // The hit lines are the edges a user snaps to.
      std::vector<AcGeCurve3d*> curves;
      for (const CRenderShape& s : o->getShps())
        for (const auto& line : s.getHitLine())
          for (size_t k = 1; k < line.size(); ++k) curves.push_back(new AcGeLineSeg3d(line[k - 1], line[k]));
      o->setSnapCurves(curves);
    }
    if (o->numShp() == 0) {
      delete o;
      continue;
    }
    // Counted as added: endAddShape drops shapes whose box is not finite.
    for (const CRenderShape& s : o->getShps()) {
      if (const std::vector<int>* tris = s.getFaceTriangleIndexArray()) counts.triangles += tris->size() / 3;
      counts.hitLines += s.getHitLine().size();
    }
    built.push_back(o);
  }
  if (built.empty()) return fail(error, file, "the file holds no triangle meshes");
  progress.report(1.0, "building");
  for (CRenderObject* o : built) counts.ids.push_back(set.addObject(o));
  set.freshBox();
  textures.keep = true;
  counts.textures = textures.used;
  counts.warnings = textures.warnings;
  if (result) *result = std::move(counts);
  return true;
}

bool importScene(Assimp::Importer& importer, bool read, Progress& progress, const std::string& file,
                 const std::string& ext, const std::filesystem::path& folder, CObjectSetMgr& set, CString& error,
                 const KxImportOptions& options, KxImportResult* result) {
  if (progress.cancelled()) return fail(error, file, "import cancelled");
  if (!read) {
    std::string why = importer.GetErrorString();
    return fail(error, file, why.empty() ? "not a model file assimp can read" : why);
  }
  return buildObjects(std::unique_ptr<aiScene>(importer.GetOrphanedScene()), progress, file, ext, folder, set, error,
                      options, result);
}

unsigned importFlags() {
  return aiProcess_Triangulate | aiProcess_JoinIdenticalVertices | aiProcess_SortByPType |
         aiProcess_ValidateDataStructure;
}

void configure(Assimp::Importer& importer, Progress* progress) {
  // Points and lines have no faces to draw.
  importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
  importer.SetProgressHandler(progress);
}

}  // namespace

bool kximport::importAssimpScene(aiScene* scene, const std::string& ext, CObjectSetMgr& set, CString& error,
                                 const KxImportOptions& options, KxImportResult* result) {
  Progress progress(options);
  return buildObjects(std::unique_ptr<aiScene>(scene), progress, "<scene." + ext + ">", ext, {}, set, error, options,
                      result);
}

bool KxImportModel(const char* path, CObjectSetMgr& set, CString& error, const KxImportOptions& options,
                   KxImportResult* result) {
  const std::string file = path ? path : "";
  std::error_code ec;
  if (file.empty() || !std::filesystem::is_regular_file(file, ec)) return fail(error, file, "no such file");
  std::ifstream in(file, std::ios::binary);
  unsigned char head[2] = {0, 0};
  in.read(reinterpret_cast<char*>(head), 2);
  const size_t size = size_t(std::filesystem::file_size(file, ec));
  if (const char* problem = contentProblem(head, std::min<size_t>(size, 2))) return fail(error, file, problem);
  const std::filesystem::path fs(file);
  const std::string ext = lower(fs.extension().string()).substr(std::min<size_t>(1, fs.extension().string().size()));
  if (!supported(ext)) return fail(error, file, "'." + ext + "'" + kUnsupported);
  if (ext == "ply" || (head[0] == 'p' && head[1] == 'l')) {
    std::ifstream whole(file, std::ios::binary);
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(whole)), std::istreambuf_iterator<char>());
    if (ext == "ply" || kximport::isPly(bytes.data(), bytes.size())) {
      const std::string problem = kximport::plyProblem(bytes.data(), bytes.size());
      if (!problem.empty()) return fail(error, file, problem);
    }
  }
  if (ext == "obj") {
    const std::string lib = missingMaterialLibrary(fs);
    if (!lib.empty()) return fail(error, file, "material library '" + lib + "' not found");
  }
  Progress progress(options);
  Assimp::Importer importer;
  configure(importer, &progress);
  const bool read = importer.ReadFile(file, importFlags()) != nullptr;
  const bool ok = importScene(importer, read, progress, file, ext, fs.parent_path().empty() ? "." : fs.parent_path(),
                              set, error, options, result);
  importer.SetProgressHandler(nullptr);
  return ok;
}

bool KxImportModelFromMemory(const void* data, size_t size, const char* formatHint, CObjectSetMgr& set, CString& error,
                             const KxImportOptions& options, KxImportResult* result) {
  const std::string ext = lower(formatHint ? formatHint : "");
  const std::string file = "<memory" + (ext.empty() ? std::string() : "." + ext) + ">";
  if (!supported(ext)) return fail(error, file, "'" + ext + "'" + kUnsupported);
  if (!data && size) return fail(error, file, "no data");
  if (const char* problem = contentProblem(static_cast<const unsigned char*>(data), size))
    return fail(error, file, problem);
  const auto* bytes = static_cast<const uint8_t*>(data);
  if (ext == "ply" || kximport::isPly(bytes, size)) {
    const std::string problem = kximport::plyProblem(bytes, size);
    if (!problem.empty()) return fail(error, file, problem);
  }
  Progress progress(options);
  Assimp::Importer importer;
  configure(importer, &progress);
  const bool read = importer.ReadFileFromMemory(data, size, importFlags(), ext.c_str()) != nullptr;
  const bool ok = importScene(importer, read, progress, file, ext, {}, set, error, options, result);
  importer.SetProgressHandler(nullptr);
  return ok;
}
