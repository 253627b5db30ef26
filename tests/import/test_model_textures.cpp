// Model textures through the scene's texture manager, seen in a real frame.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "kxrender/KxImage.h"
#include "kxrender/KxModelImport.h"
#include "kxrender/KxWindow.h"

namespace fs = std::filesystem;

namespace {

std::string base64(const std::string& in) {
  static const char* k = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (size_t i = 0; i < in.size(); i += 3) {
    uint32_t n = uint32_t(uint8_t(in[i])) << 16;
    if (i + 1 < in.size()) n |= uint32_t(uint8_t(in[i + 1])) << 8;
    if (i + 2 < in.size()) n |= uint8_t(in[i + 2]);
    for (int c = 0; c < 4; ++c) out += c <= int(in.size() - i) ? k[(n >> (18 - 6 * c)) & 63] : '=';
  }
  return out;
}

template <typename T>
std::string bytes(const std::vector<T>& v) {
  return std::string(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(T));
}

// A unit quad facing +z in a y-up file, its picture embedded: the image's
// top left corner (glTF's uv 0 0) at the quad's far left corner.
std::string embeddedGltf(const std::string& png) {
  const std::string buffer = bytes(std::vector<float>{0, 0, 0, 1, 0, 0, 1, 0, -1, 0, 0, -1}) +
                             bytes(std::vector<float>{0, 1, 1, 1, 1, 0, 0, 0}) +
                             bytes(std::vector<uint16_t>{0, 1, 2, 0, 2, 3});
  return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
 "meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1},"indices":2,"material":0}]}],
 "materials":[{"pbrMetallicRoughness":{"baseColorTexture":{"index":0}}}],
 "textures":[{"source":0}],"images":[{"uri":"data:image/png;base64,)" +
         base64(png) + R"("}],
 "buffers":[{"uri":"data:application/octet-stream;base64,)" +
         base64(buffer) + R"(","byteLength":92}],
 "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":32},
                {"buffer":0,"byteOffset":80,"byteLength":12}],
 "accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3","min":[0,0,-1],"max":[1,0,0]},
              {"bufferView":1,"componentType":5126,"count":4,"type":"VEC2"},
              {"bufferView":2,"componentType":5123,"count":6,"type":"SCALAR"}]})";
}

// The same quad in an OBJ (z up), its material naming a picture file.
std::string quadObj(const std::string& mtl) {
  return "mtllib " + mtl +
         "\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nusemtl tex\n"
         "f 1/1 2/2 3/3\nf 1/1 3/3 4/4\n";
}

// The colour a pixel mostly is: 'r', 'g', 'b', or 'w' for none.
char dominant(const std::vector<uint8_t>& px, size_t at) {
  for (int c = 0; c < 3; ++c)
    if (px[at + c] > 100 && px[at + c] > 2 * px[at + (c + 1) % 3] && px[at + c] > 2 * px[at + (c + 2) % 3])
      return "rgb"[c];
  return 'w';
}

struct Frame {
  Frame() : window(KxCreateOffscreenWindow(96, 96)) {
    if (window) scene.initializeRender(window, false, false);
  }
  ~Frame() {
    if (scene.getHRC()) scene.glRelease();
    KxDestroyWindow(window);
  }
  HWND window;
  CSceneMgr scene;
};

}  // namespace

TEST(ModelTextures, DiffuseTexturesDrawFromTheSceneTextureManager) {
  const fs::path dir = fs::temp_directory_path() / ("kx_textures_" + std::to_string(::getpid()));
  fs::create_directories(dir);
  // Top row red, green; bottom row blue, white.
  const std::vector<uint8_t> picture = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
  ASSERT_TRUE(KxWritePng((dir / "quad.png").string(), picture, 2, 2));
  std::ifstream in(dir / "quad.png", std::ios::binary);
  const std::string png(std::istreambuf_iterator<char>(in), {});
  std::ofstream(dir / "quad.mtl") << "newmtl tex\nKd 1 1 1\nmap_Kd Quad.PNG\n";  // named in another case
  std::ofstream(dir / "gone.mtl") << "newmtl tex\nKd 1 1 1\nmap_Kd gone.png\n";
  std::ofstream(dir / "quad.obj") << quadObj("quad.mtl");
  std::ofstream(dir / "gone.obj") << quadObj("gone.mtl");
  std::ofstream(dir / "quad.gltf") << embeddedGltf(png);
  struct Row {
    const char* file;
    const char* texture;  // its name in the manager, or the missing file the warning names
    bool drawn;
  } rows[] = {
      {"quad.obj", "quad.png", true},
      {"quad.gltf", "quad.gltf*0", true},
      {"gone.obj", "gone.png", false},
  };
  for (const Row& r : rows) {
    Frame f;
    ASSERT_TRUE(f.scene.getHRC());
    const std::string path = (dir / r.file).string();
    KxImportOptions options;
    options.textures = f.scene.getTextureMgrPtr();
    CString error;
    KxImportResult result;
    ASSERT_TRUE(KxImportModel(path.c_str(), *f.scene.getObjSetMgr(), error, options, &result))
        << r.file << ": " << error.GetString();
    const CRenderShape& s = f.scene.getObj(result.ids.at(0))->getShape(0);
    EXPECT_EQ(s.hasTexture(), r.drawn) << r.file;
    if (r.drawn) {
      ASSERT_EQ(result.textures.size(), 1u) << r.file;
      EXPECT_NE(std::string(result.textures[0].GetString()).find(r.texture), std::string::npos) << r.file;
      EXPECT_TRUE(f.scene.getTextureMgrPtr()->exist(result.textures[0])) << r.file;
      EXPECT_TRUE(result.warnings.empty()) << r.file;
    } else {
      ASSERT_EQ(result.warnings.size(), 1u) << r.file;
      const std::string w = result.warnings[0].GetString();
      EXPECT_EQ(w.rfind(path + ": ", 0), 0u) << w;
      EXPECT_NE(w.find(r.texture), std::string::npos) << w;
    }
    f.scene.zoomE();
    f.scene.render();
    f.scene.finish();
    std::vector<uint8_t> px;
    int w = 0, h = 0;
    ASSERT_TRUE(KxReadWindowPixels(f.window, px, w, h));
    // The quad's top left and top right quarters, as the picture shows them.
    const CPoint left = f.scene.world2screen(AcGePoint3d(0.25, 0.75, 0.0));
    const CPoint right = f.scene.world2screen(AcGePoint3d(0.75, 0.75, 0.0));
    auto at = [&](const CPoint& p) { return (size_t(p.y) * size_t(w) + size_t(p.x)) * 4; };
    ASSERT_TRUE(left.x > 0 && left.y > 0 && right.x < w && right.y < h);
    EXPECT_EQ(dominant(px, at(left)), r.drawn ? 'r' : 'w') << r.file;
    EXPECT_EQ(dominant(px, at(right)), r.drawn ? 'g' : 'w') << r.file;
  }
  // A cancelled import takes its textures out of the manager again.
  Frame f;
  KxImportOptions options;
  options.textures = f.scene.getTextureMgrPtr();
  options.progress = [](double, const char* phase) { return std::strcmp(phase, "building") != 0; };
  CString error;
  EXPECT_FALSE(KxImportModel((dir / "quad.obj").c_str(), *f.scene.getObjSetMgr(), error, options));
  EXPECT_FALSE(f.scene.getTextureMgrPtr()->exist(CString((dir / "quad.png").string())));
  fs::remove_all(dir);
}
