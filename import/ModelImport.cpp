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
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/CRenderObject.h"
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

// One object in the making: the meshes of a node (and, for an IFC product,
// of the mapped items below it) with their world transforms.
struct Pending {
  std::string name;
  std::map<CString, CString> tags;
  std::vector<std::pair<const aiMesh*, aiMatrix4x4>> parts;
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
        objects[ownerIndex].parts.emplace_back(scene.mMeshes[node.mMeshes[i]], world);
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
// any case.
bool textureExists(const std::filesystem::path& folder, std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  const std::filesystem::path rel(name);
  std::error_code ec;
  if (std::filesystem::exists(folder / rel, ec) || std::filesystem::exists(rel, ec)) return true;
  const std::filesystem::path dir = (folder / rel).parent_path();
  const std::string wanted = lower(rel.filename().string());
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec))
    if (lower(it->path().filename().string()) == wanted) return true;
  return false;
}

// The first texture file of the materials that cannot be found.
std::string missingTexture(const aiScene& scene, const std::filesystem::path& folder) {
  for (unsigned m = 0; m < scene.mNumMaterials; ++m)
    for (aiTextureType type : {aiTextureType_DIFFUSE, aiTextureType_BASE_COLOR}) {
      for (unsigned t = 0; t < scene.mMaterials[m]->GetTextureCount(type); ++t) {
        aiString path;
        if (scene.mMaterials[m]->GetTexture(type, t, &path) != AI_SUCCESS) continue;
        const std::string p = path.C_Str();
        if (p.empty() || p[0] == '*' || scene.GetEmbeddedTexture(p.c_str())) continue;
        if (!textureExists(folder, p)) return p;
      }
    }
  return {};
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

// One face shape of the meshes of one material, in world coordinates.
CRenderShape buildShape(const std::vector<std::pair<const aiMesh*, aiMatrix4x4>>& parts, const aiMatrix4x4& axes,
                        const CColor& color, const KxImportOptions& options, KxImportResult& counts) {
  std::vector<AcGePoint3d> pts;
  std::vector<AcGeVector3d> normals;
  std::vector<int> tris;
  bool allNormals = true;
  for (const auto& [mesh, transform] : parts) {
    const aiMatrix4x4 m = axes * transform;
    const aiMatrix3x3 n = aiMatrix3x3(m).Inverse().Transpose();
    const int base = int(pts.size());
    allNormals = allNormals && mesh->HasNormals();
    for (unsigned v = 0; v < mesh->mNumVertices; ++v) {
      const aiVector3D p = m * mesh->mVertices[v];
      pts.emplace_back(p.x, p.y, p.z);
      aiVector3D d = mesh->HasNormals() ? n * mesh->mNormals[v] : aiVector3D();
      d.NormalizeSafe();
      normals.emplace_back(d.x, d.y, d.z);
    }
    auto finite = [&](unsigned i) {
      const AcGePoint3d& p = pts[size_t(base) + i];
      return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    };
    for (unsigned f = 0; f < mesh->mNumFaces; ++f) {
      const aiFace& face = mesh->mFaces[f];
      // A corner at infinity or NaN would poison the box and the sorting.
      if (face.mNumIndices != 3 || !finite(face.mIndices[0]) || !finite(face.mIndices[1]) || !finite(face.mIndices[2]))
        continue;
      for (int c = 0; c < 3; ++c) tris.push_back(base + int(face.mIndices[c]));
    }
  }
  const std::vector<std::vector<AcGePoint3d>> lines = kximport::featureLines(pts, tris, options.featureAngle);
  if (!allNormals) kximport::creaseNormals(pts, tris, normals, options.creaseAngle);
  CRenderShape s;
  s.setFaceType(false);
  s.setClr(color);
  s.setFaceVertexArray(&pts);
  s.setFaceTriangleIndexArray(&tris);
  s.setFaceNormalArray(&normals);
  for (const auto& line : lines) s.addHitLine(line);
  s.calBox();
  s.calArea();
  counts.triangles += tris.size() / 3;
  counts.hitLines += lines.size();
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

bool importScene(Assimp::Importer& importer, const aiScene* scene, Progress& progress, const std::string& file,
                 const std::string& ext, const std::filesystem::path& folder, CObjectSetMgr& set, CString& error,
                 const KxImportOptions& options, KxImportResult* result) {
  if (progress.cancelled()) return fail(error, file, "import cancelled");
  if (!scene) {
    std::string why = importer.GetErrorString();
    return fail(error, file, why.empty() ? "not a model file assimp can read" : why);
  }
  if (scene->mFlags & AI_SCENE_FLAGS_INCOMPLETE || !scene->mRootNode || scene->mNumMeshes == 0)
    return fail(error, file, "the file holds no triangle meshes");
  if (!folder.empty()) {
    const std::string tex = missingTexture(*scene, folder);
    if (!tex.empty()) return fail(error, file, "texture file '" + tex + "' not found");
  }
  const bool ifc = ext == "ifc";
  // glTF's convention, and assimp's IFC output, is y up.
  aiMatrix4x4 axes;
  if (options.zUp && (ifc || ext == "gltf" || ext == "glb")) aiMatrix4x4::RotationX(1.5707963267948966f, axes);

  Walker walker{*scene, ifc, {}};
  walker.walk(*scene->mRootNode, aiMatrix4x4(), nullptr, "");
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
    std::map<unsigned, std::vector<std::pair<const aiMesh*, aiMatrix4x4>>> byMaterial;
    for (const auto& part : p.parts) byMaterial[part.first->mMaterialIndex].push_back(part);
    if (byMaterial.empty()) continue;
    auto* o = new CRenderObject;
    for (const auto& [material, parts] : byMaterial) {
      CRenderShape s = buildShape(parts, axes, materialColor(*scene, material), options, counts);
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
    built.push_back(o);
  }
  if (built.empty()) return fail(error, file, "the file holds no triangle meshes");
  progress.report(1.0, "building");
  for (CRenderObject* o : built) counts.ids.push_back(set.addObject(o));
  set.freshBox();
  if (result) *result = std::move(counts);
  return true;
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
  const aiScene* scene = importer.ReadFile(file, importFlags());
  const bool ok = importScene(importer, scene, progress, file, ext, fs.parent_path().empty() ? "." : fs.parent_path(),
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
  const aiScene* scene = importer.ReadFileFromMemory(data, size, importFlags(), ext.c_str());
  const bool ok = importScene(importer, scene, progress, file, ext, {}, set, error, options, result);
  importer.SetProgressHandler(nullptr);
  return ok;
}
