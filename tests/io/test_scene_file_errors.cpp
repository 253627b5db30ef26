// A failed read says what is wrong and where, and leaves the scene as it
// was: same objects, same view, nothing added, nothing deleted.
#include <gtest/gtest.h>

#include <fstream>

#include "io/SceneFileHelpers.h"

namespace {

// Peak resident memory of this process in KiB (VmHWM), after resetting the
// peak to the current use.
void resetPeakKiB() { std::ofstream("/proc/self/clear_refs") << "5"; }
long peakKiB() {
  std::ifstream in("/proc/self/status");
  std::string line;
  while (std::getline(in, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6));
  return -1;
}
long currentKiB() {
  std::ifstream in("/proc/self/status");
  std::string line;
  while (std::getline(in, line))
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  return -1;
}

class SceneFileErrors : public ::testing::Test {
 protected:
  void SetUp() override {
    fillScene(scene);
    for (const auto& kv : scene.getObjSetMgr()->objects()) before.push_back(kv);
    CString error;
    ASSERT_TRUE(KxWriteSceneFile(dir.file("good.json").c_str(), scene, error)) << error.GetString();
    good = readText(dir.file("good.json"));
  }

  // Reads `text` from a file and returns the error without its position.
  std::string readError(const std::string& text, const std::string& name = "bad.json") {
    writeText(dir.file(name), text);
    return readErrorOfFile(dir.file(name));
  }
  std::string readErrorOfFile(const std::string& path) {
    CString error;
    if (KxReadSceneFile(path.c_str(), scene, error)) return "(accepted)";
    std::string e = error.str();
    EXPECT_EQ(e.rfind(path + ": ", 0), 0u) << e;
    e = e.substr(path.size() + 2);
    const size_t at = e.rfind(" (line ");
    return at == std::string::npos ? e : e.substr(0, at);
  }

  void expectUntouched() {
    std::vector<std::pair<unsigned, CRenderObject*>> now(scene.getObjSetMgr()->objects().begin(),
                                                          scene.getObjSetMgr()->objects().end());
    EXPECT_EQ(now, before);
    EXPECT_TRUE(scene.camera()->GetVLocation().isEqualTo(AcGeVector3d(1, 2, 3)));
    EXPECT_EQ(scene.dRange(), 77.5);
    EXPECT_EQ(int(scene.getRenderMode()), 4);
    CColor bk;
    scene.getBkColor(bk);
    EXPECT_EQ(bk, CColor(10, 20, 30, 40));
    // And it still writes exactly what it wrote before.
    CString error;
    ASSERT_TRUE(KxWriteSceneFile(dir.file("again.json").c_str(), scene, error));
    EXPECT_EQ(readText(dir.file("again.json")), good);
  }

  // The good file with the first `from` replaced by `to`.
  std::string edited(const std::string& from, const std::string& to) {
    std::string t = good;
    const size_t at = t.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) t.replace(at, from.size(), to);
    return t;
  }

  TempDir dir;
  CSceneMgr scene;
  std::vector<std::pair<unsigned, CRenderObject*>> before;
  std::string good;
};

}  // namespace

TEST_F(SceneFileErrors, MissingField) {
  // Object 0 is the tower's slab; drop its shapes.
  const size_t shapes = good.find("\"shapes\": [");
  const size_t from = good.rfind(",", shapes);
  const size_t to = good.find("\n      ]", shapes) + 8;
  std::string t = good;
  t.erase(from, to - from);
  EXPECT_EQ(readError(t), "object 0: missing field \"shapes\"");
  expectUntouched();
  EXPECT_EQ(readError(edited("{\"kind\":\"pgon\",", "{")), "object 0: shape 0: missing field \"kind\"");
  expectUntouched();
}

TEST_F(SceneFileErrors, WrongType) {
  EXPECT_EQ(readError(edited("\"externId\": 0", "\"externId\": \"0\"")),
            "object 0: field \"externId\": expected an integer from 0 to 4294967295");
  expectUntouched();
  EXPECT_EQ(readError(edited("\"pts\":[[", "\"pts\":[{\"x\":0},[")),
            "object 0: shape 0: field \"pts\": point 0: expected a point of 3 numbers [x, y, z]");
  expectUntouched();
  EXPECT_EQ(readError(edited("\"range\": 77.5", "\"range\": true")), "field \"view.range\": expected a number");
  expectUntouched();
}

TEST_F(SceneFileErrors, UnknownShapeKind) {
  // The last object is the one with every kind; make its text a circle.
  std::string t = good;
  t.replace(t.rfind("\"kind\":\"text\""), 13, "\"kind\":\"circle\"");
  const size_t objects = scene.getObjSetMgr()->numObjs();
  EXPECT_EQ(readError(t), "object " + std::to_string(objects - 1) +
                              ": shape 4: field \"kind\": unknown shape kind \"circle\" (expected pline, pgon, text "
                              "or face)");
  expectUntouched();
}

TEST_F(SceneFileErrors, TruncatedFile) {
  for (size_t n : {size_t(0), size_t(1), good.size() / 3, good.size() / 2, good.size() - 3}) {
    const std::string e = readError(good.substr(0, n));
    EXPECT_NE(e.find("end of the file"), std::string::npos) << n << ": " << e;
    expectUntouched();
  }
  EXPECT_EQ(readError(good.substr(0, good.find("\"pts\":[[") + 7)),
            "object 0: shape 0: field \"pts\": point 0: unexpected end of the file where a point of 3 numbers [x, y, "
            "z] was expected");
}

TEST_F(SceneFileErrors, NumbersThatOverflow) {
  EXPECT_EQ(readError(edited("\"pts\":[[0,", "\"pts\":[[1e400,")),
            "object 0: shape 0: field \"pts\": point 0: number 1e400 is out of range");
  expectUntouched();
  EXPECT_EQ(readError(edited("\"range\": 77.5", "\"range\": -1e400")),
            "field \"view.range\": number -1e400 is out of range");
  expectUntouched();
  EXPECT_EQ(readError(edited("\"pts\":[[0,", "\"pts\":[[1e-400,")),
            "object 0: shape 0: field \"pts\": point 0: number 1e-400 is out of range");
  expectUntouched();
}

TEST_F(SceneFileErrors, AHundredMegabyteStringIsStoppedAtTheLimit) {
  // Written in pieces: neither the test nor the reader holds it whole.
  const std::string path = dir.file("huge.json");
  {
    std::ofstream out(path, std::ios::binary);
    out << R"({"format":"kxscene","version":1,"objects":[{"externId":1,"xdata":")";
    const std::string chunk(1 << 20, 'a');
    for (int i = 0; i < 100; ++i) out << chunk;
    out << R"(","shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]}]})";
  }
  resetPeakKiB();
  const long start = currentKiB();
  EXPECT_EQ(readErrorOfFile(path), "object 0: field \"xdata\": string longer than 1048576 bytes");
  const long grown = peakKiB() - start;
  EXPECT_LT(grown, 16 * 1024) << "peak memory grew by " << grown << " KiB";
  expectUntouched();
}

TEST_F(SceneFileErrors, OtherWaysAFileFails) {
  EXPECT_EQ(readErrorOfFile(dir.file("absent.json")), "cannot open: No such file or directory");
  expectUntouched();
  EXPECT_EQ(readError("not json"), "expected a scene document (a JSON object)");
  expectUntouched();
  EXPECT_EQ(readError(good + "{}"), "unexpected '{' after the end of the document");
  expectUntouched();
  EXPECT_EQ(readError(edited("\"version\": 1", "\"version\": 2")),
            "field \"version\": version 2 is newer than this reader, which reads version 1");
  expectUntouched();
  // Static objects need a context to compile; this scene has none.
  EXPECT_EQ(readError(edited("\n  ]\n}", "\n  ],\n  \"staticObjects\": [{\"primitives\":[{\"type\":\"points\","
                                         "\"points\":[[0,0,0]]}]}]\n}")),
            "static objects need the scene bound to a window");
  expectUntouched();
  CString error;
  EXPECT_FALSE(KxReadSceneFile(nullptr, scene, error));
  EXPECT_EQ(error, "no scene file named");
  expectUntouched();
}
