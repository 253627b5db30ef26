// A failed read says what is wrong and where, and leaves the scene as it
// was: same objects, same view, nothing added, nothing deleted.
#include <gtest/gtest.h>

#include <fstream>

#include "io/SceneFileHelpers.h"

namespace {

// A memory figure of this process in KiB from /proc/self/status: VmHWM is
// the peak, VmRSS the current use; writing 5 to clear_refs resets the peak.
long statusKiB(const std::string& field) {
  std::ifstream in("/proc/self/status");
  std::string line;
  while (std::getline(in, line))
    if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
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
    EXPECT_EQ(now, before);  // the same objects, not copies
    // The view, the modes and every object's contents are in what it writes.
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

TEST_F(SceneFileErrors, EditsThatBreakTheFileLeaveTheSceneAlone) {
  // The messages are the document tests'; here each carries the path, and a
  // failure in the view, mid-file, after the end and after parsing keeps the scene.
  const std::pair<std::string, std::string> cases[] = {
      {edited("\"range\": 77.5", "\"range\": -1e400"), "field \"view.range\": number -1e400 is out of range"},
      {good.substr(0, good.find("\"pts\":[[") + 7),
       "object 0: shape 0: field \"pts\": point 0: unexpected end of the file where a point of 3 numbers [x, y, z] was "
       "expected"},
      {good + "{}", "unexpected '{' after the end of the document"},
      // Static objects need a context to compile; this scene has none.
      {edited("\n  ]\n}",
              "\n  ],\n  \"staticObjects\": [{\"primitives\":[{\"type\":\"points\",\"points\":[[0,0,0]]}]}]\n}"),
       "static objects need the scene bound to a window"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(readError(c.first), c.second);
    expectUntouched();
  }
}

TEST_F(SceneFileErrors, FilesThatCannotBeReadLeaveTheSceneAlone) {
  EXPECT_EQ(readErrorOfFile(dir.file("absent.json")), "cannot open: No such file or directory");
  for (bool write : {false, true}) {
    CString error;
    EXPECT_FALSE(write ? KxWriteSceneFile(nullptr, scene, error) : KxReadSceneFile(nullptr, scene, error));
    EXPECT_EQ(error, "no scene file named");
  }
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
  std::ofstream("/proc/self/clear_refs") << "5";
  const long start = statusKiB("VmRSS");
  ASSERT_GT(start, 0);
  EXPECT_EQ(readErrorOfFile(path), "object 0: field \"xdata\": string longer than 1048576 bytes");
  const long grown = statusKiB("VmHWM") - start;
  EXPECT_LT(grown, 16 * 1024) << "peak memory grew by " << grown << " KiB";
  expectUntouched();
}
