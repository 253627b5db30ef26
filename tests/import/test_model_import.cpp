// Model files written here, read back into an object set.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "kxrender/CRenderObject.h"
#include "kxrender/KxModelImport.h"
#include "tests/import/CubeObj.h"

namespace fs = std::filesystem;

namespace {

class ModelImport : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("kx_import_" + std::to_string(::getpid()));
    fs::create_directories(dir);
  }
  void TearDown() override { fs::remove_all(dir); }
  std::string write(const std::string& name, const std::string& bytes) {
    const fs::path p = dir / name;
    std::ofstream(p, std::ios::binary) << bytes;
    return p.string();
  }
  fs::path dir;
};

void faceNormal(const int* t, float n[3]) {
  float a[3], b[3];
  for (int k = 0; k < 3; ++k) a[k] = corner(t[1], k) - corner(t[0], k), b[k] = corner(t[2], k) - corner(t[0], k);
  n[0] = a[1] * b[2] - a[2] * b[1], n[1] = a[2] * b[0] - a[0] * b[2], n[2] = a[0] * b[1] - a[1] * b[0];
}

std::string cubeStlText() {
  std::string s = "solid cube\n";
  for (const auto& t : kCube) {
    float n[3];
    faceNormal(t, n);
    s += "facet normal" + triple(n[0], n[1], n[2]) + "outer loop\n";
    for (int c : t) s += "vertex" + triple(corner(c, 0), corner(c, 1), corner(c, 2));
    s += "endloop\nendfacet\n";
  }
  return s + "endsolid cube\n";
}

std::string cubeStlBinary() {
  std::string s(80, ' ');
  s.append("\x0C\0\0\0", 4);  // 12 triangles
  for (const auto& t : kCube) {
    float v[12];
    faceNormal(t, v);
    for (int c = 0; c < 3; ++c)
      for (int k = 0; k < 3; ++k) v[3 + 3 * c + k] = corner(t[c], k);
    s.append(reinterpret_cast<const char*>(v), sizeof v);
    s.append(2, '\0');
  }
  return s;
}

// A unit quad in the XY plane of a y-up file, blue, in an external buffer.
std::string quadBin() {
  const float p[12] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  const uint16_t i[6] = {0, 1, 2, 0, 2, 3};
  return std::string(reinterpret_cast<const char*>(p), sizeof p) +
         std::string(reinterpret_cast<const char*>(i), sizeof i);
}
// The same quad as a binary PLY, optionally cut short.
std::string quadPly(size_t cut = 0) {
  std::string s =
      "ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
      "property float z\nelement face 2\nproperty list uchar int vertex_indices\nend_header\n";
  const std::string bin = quadBin();
  s.append(bin, 0, 48);
  for (int f = 0; f < 2; ++f) {
    s += char(3);
    for (int c = 0; c < 3; ++c) {
      const int32_t i = int32_t(reinterpret_cast<const uint16_t*>(bin.data() + 48)[3 * f + c]);
      s.append(reinterpret_cast<const char*>(&i), 4);
    }
  }
  return s.substr(0, s.size() - cut);
}

const char* kQuadGltf = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
 "nodes":[{"mesh":0,"name":"Panel"}],
 "meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1,"material":0}]}],
 "materials":[{"pbrMetallicRoughness":{"baseColorFactor":[0,0,1,1]}}],
 "buffers":[{"uri":"quad.bin","byteLength":60}],
 "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":12}],
 "accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
              {"bufferView":1,"componentType":5123,"count":6,"type":"SCALAR"}]})";

// The quad placed twice, side by side.
std::string twiceGltf() {
  std::string s = kQuadGltf;
  const std::string nodes = R"("nodes":[{"mesh":0,"name":"Panel"}])", roots = R"("nodes":[0])";
  s.replace(s.find(nodes), nodes.size(),
            R"("nodes":[{"mesh":0,"name":"Left"},{"mesh":0,"name":"Right","translation":[2,0,0]}])");
  return s.replace(s.find(roots), roots.size(), R"("nodes":[0,1])");
}

}  // namespace

TEST_F(ModelImport, FormatsGiveObjectsWithNormalsColoursAndHitLines) {
  write("red.mtl", "newmtl red\nKd 1 0 0\nd 0.5\n");
  write("quad.bin", quadBin());
  struct Row {
    std::string file, content;
    size_t objects, triangles, hitLines, snapCurves;  // snap curves of the first object
    size_t vertices;                                  // of its first shape
    CColor color;                                     // of the first shape; alpha 0 means not checked
  } rows[] = {
      // No normals in the file: crease normals split at every cube edge.
      {"cube.obj", "mtllib red.mtl\n" + cubeObj("Box", 1, 0, 1, "usemtl red\n"), 1, 12, 12, 12, 24,
       CColor(255, 0, 0, 128)},
      {"two.obj", cubeObj("A", 1) + cubeObj("B", 9), 2, 24, 24, 12, 24, CColor(0, 0, 0, 0)},
      {"cube_text.stl", cubeStlText(), 1, 12, 12, 12, 24, CColor(0, 0, 0, 0)},
      {"cube_bin.stl", cubeStlBinary(), 1, 12, 12, 12, 24, CColor(0, 0, 0, 0)},
      // The quad's boundary is one loop; y up becomes z up: normal -y.
      {"quad.gltf", kQuadGltf, 1, 2, 1, 4, 4, CColor(0, 0, 255, 255)},
      {"quad.ply", quadPly(), 1, 2, 1, 4, 4, CColor(0, 0, 0, 0)},
      // One mesh placed by two nodes: its data is freed only after both.
      {"twice.gltf", twiceGltf(), 2, 4, 2, 4, 4, CColor(0, 0, 255, 255)},
  };
  for (const Row& r : rows) {
    CObjectSetMgr set;
    CString error;
    KxImportResult result;
    ASSERT_TRUE(KxImportModel(write(r.file, r.content).c_str(), set, error, KxImportOptions(), &result))
        << r.file << ": " << error.GetString();
    EXPECT_EQ(result.ids.size(), r.objects) << r.file;
    EXPECT_EQ(set.numObjs(), r.objects) << r.file;
    EXPECT_EQ(result.triangles, r.triangles) << r.file;
    EXPECT_EQ(result.hitLines, r.hitLines) << r.file;
    EXPECT_EQ(set.getObj(result.ids[0])->getSnapCurves().size(), r.snapCurves) << r.file;
    const CRenderObject* first = set.getObj(result.ids[0]);
    const CRenderShape& s = first->getShape(0);
    for (const AcGeVector3d& n : *s.getFaceNormalArray())  // every normal a unit axis vector
      EXPECT_TRUE(std::fabs(std::fabs(n.x) + std::fabs(n.y) + std::fabs(n.z) - 1.0) < 1e-6 &&
                  std::fabs(n.length() - 1.0) < 1e-6)
          << r.file;
    EXPECT_EQ(s.getFaceVertexArray()->size(), r.vertices) << r.file << ": one vertex per corner and normal";
    if (r.color.a) EXPECT_TRUE(s.getClr() == r.color) << r.file;
    if (r.file != "quad.gltf") continue;
    // The glTF quad stands up in the XZ plane, named after its node.
    EXPECT_NEAR(first->ptMax().z, 1.0, 1e-6);
    EXPECT_NEAR((*s.getFaceNormalArray())[0].y, -1.0, 1e-6);
    CString name;
    EXPECT_TRUE(s.getXdata("name", name));
    EXPECT_STREQ(name.GetString(), "Panel");
  }
}

TEST_F(ModelImport, BrokenFilesNameTheProblemAndLeaveTheSetAlone) {
  std::string utf16 = "\xFF\xFE";
  for (char c : std::string("v 0 0 0\n")) utf16 += c, utf16 += '\0';
  struct Row {
    std::string file, content, problem;
  } rows[] = {
      {"empty.obj", "", "empty"},
      {"wide.obj", utf16, "UTF-16"},
      {"notes.xyz", "just some words\n", "not a supported format"},
      {"notes.obj", "just some words\n", ""},
      {"short.stl", cubeStlBinary().substr(0, 300), ""},
      {"bad_index.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n", ""},
      {"nolib.obj", "mtllib gone.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "gone.mtl"},
      {"nobuffer.gltf", kQuadGltf, ""},
      {"noend.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nsend_header\n0\n", "end_header"},
      {"short.ply", quadPly(3), "truncated"},
      {"emptyface.ply",
       "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
       "element face 2\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n0\n",
       "no vertices"},
      // A stray word cuts the text body short; assimp would abort on it.
      {"strayword.ply",
       "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
       "element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0_header\n0 1 0\n3 0 1 2\n",
       "not a number"},
  };
  for (const Row& r : rows) {
    CObjectSetMgr set;
    CString error;
    ASSERT_TRUE(KxImportModel(write("good.stl", cubeStlText()).c_str(), set, error));
    AcGePoint3d min0, max0, min1, max1;
    set.getBox(min0, max0);
    const std::string path = write(r.file, r.content);
    EXPECT_FALSE(KxImportModel(path.c_str(), set, error)) << r.file;
    const std::string e = error.GetString();
    EXPECT_EQ(e.rfind(path + ": ", 0), 0u) << e;
    EXPECT_GT(e.size(), path.size() + 4) << e;
    if (!r.problem.empty()) EXPECT_NE(e.find(r.problem), std::string::npos) << e;
    EXPECT_EQ(set.numObjs(), 1u) << r.file;
    set.getBox(min1, max1);
    EXPECT_TRUE(min0.isEqualTo(min1) && max0.isEqualTo(max1)) << r.file;
  }
}

TEST_F(ModelImport, ProgressRisesToTheEndAndCancelLeavesNothing) {
  const std::string path = write("two.obj", cubeObj("A", 1) + cubeObj("B", 9));
  for (const char* cancelIn : {"", "reading", "building"}) {
    std::vector<std::pair<double, std::string>> calls;
    KxImportOptions options;
    options.progress = [&](double f, const char* phase) {
      calls.emplace_back(f, phase);
      return std::strcmp(phase, cancelIn) != 0;
    };
    CObjectSetMgr set;
    CString error;
    const bool ok = KxImportModel(path.c_str(), set, error, options);
    EXPECT_EQ(ok, !*cancelIn) << cancelIn;
    ASSERT_FALSE(calls.empty());
    for (size_t i = 1; i < calls.size(); ++i) EXPECT_LE(calls[i - 1].first, calls[i].first);
    if (ok) {
      EXPECT_EQ(calls.back().first, 1.0);
      EXPECT_EQ(calls.back().second, "building");
    } else {
      EXPECT_NE(std::string(error.GetString()).find("cancelled"), std::string::npos) << error.GetString();
      EXPECT_EQ(set.numObjs(), 0u);
    }
  }
}

TEST_F(ModelImport, FromMemory) {
  const std::string stl = cubeStlBinary();
  CObjectSetMgr set;
  CString error;
  KxImportResult result;
  ASSERT_TRUE(KxImportModelFromMemory(stl.data(), stl.size(), "stl", set, error, KxImportOptions(), &result))
      << error.GetString();
  EXPECT_EQ(result.triangles, 12u);
  // A vertex that is not a number takes its triangle with it, not the mesh
  // (with the file's normals, no crease pass rebuilds the vertex list).
  const std::string obj = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv nan 0 0\nvn 0 0 1\nf 1//1 2//1 3//1\nf 2//1 4//1 3//1\n";
  ASSERT_TRUE(KxImportModelFromMemory(obj.data(), obj.size(), "obj", set, error, KxImportOptions(), &result))
      << error.GetString();
  EXPECT_EQ(result.triangles, 1u);
  AcGePoint3d lo, hi;
  set.getObj(result.ids.at(0))->getBox(lo, hi);
  EXPECT_EQ(hi.x, 1.0);
  EXPECT_FALSE(KxImportModelFromMemory(stl.data(), 0, "stl", set, error));
  EXPECT_STREQ(error.GetString(), "<memory.stl>: the file is empty");
}

// The house of assimp's test models: IFC2X3, two storeys.
TEST(ModelImportIfc, HouseProductsAreTaggedObjects) {
  const char* house = "/usr/share/assimp/models/IFC/AC14-FZK-Haus.ifc";
  if (!fs::exists(house)) GTEST_SKIP() << "assimp-testmodels is not installed (" << house << ")";
  CObjectSetMgr set;
  CString error;
  KxImportResult result;
  ASSERT_TRUE(KxImportModel(house, set, error, KxImportOptions(), &result)) << error.GetString();
  std::map<std::string, int> byClass;
  std::map<std::string, int> byStorey;
  for (unsigned id : result.ids) {
    const CRenderShape& s = set.getObj(id)->getShape(0);
    CString cls, guid, name, storey;
    ASSERT_TRUE(s.getXdata("IfcClass", cls) && s.getXdata("GlobalId", guid) && s.getXdata("Name", name));
    EXPECT_EQ(std::strlen(guid.GetString()), 22u);
    ++byClass[cls.GetString()];
    if (s.getXdata("Storey", storey)) ++byStorey[storey.GetString()];
  }
  for (const auto& [cls, n] :
       std::map<std::string, int>{{"IfcWallStandardCase", 13}, {"IfcSlab", 4}, {"IfcWindow", 11}, {"IfcDoor", 5}})
    EXPECT_EQ(byClass[cls], n) << cls;
  EXPECT_EQ(byStorey.size(), 2u);
  // z is up: the house is taller than it is deep below its ground slab.
  AcGePoint3d min, max;
  set.getBox(min, max);
  EXPECT_GT(max.z, 5.0);
  EXPECT_GT(min.z, -2.0);
}
