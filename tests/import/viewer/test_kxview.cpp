// kxview driven by scripts on an X display (Xvfb in the test command):
// what a user would see after each input.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "kxrender/KxImage.h"
#include "tests/import/CubeObj.h"

namespace fs = std::filesystem;

namespace {

class Kxview : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X display (run under xvfb-run)";
    dir = fs::temp_directory_path() / ("kxview_test_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    // Three boxes 2 x 1 x 1 in a row along x: ids 1, 2, 3.
    std::ofstream boxes(dir / "boxes.obj");
    for (int b = 0; b < 3; ++b) boxes << cubeObj("Box" + std::to_string(b + 1), 8 * b + 1, 3.0f * b, 2);
  }
  void TearDown() override {
    if (!dir.empty()) fs::remove_all(dir);
  }
  // Runs the script; the lines kxview printed.
  std::vector<std::string> run(const std::string& script) {
    std::ofstream(dir / "script.txt") << script;
    // Leak checking is off for the viewer process alone: GLFW and the GL
    // driver load and unload system libraries whose allocations the leak
    // checker can no longer attribute. The engine's own code is leak-checked
    // by the rest of the suite.
    const std::string cmd = "ASAN_OPTIONS=\"${ASAN_OPTIONS}:detect_leaks=0\" " + std::string(KXVIEW_PATH) + " " + (dir / "boxes.obj").string() +
                            " --size 800x600 --script " + (dir / "script.txt").string() + " 2>/dev/null";
    std::vector<std::string> lines;
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return lines;
    std::array<char, 512> buf;
    while (std::fgets(buf.data(), int(buf.size()), p)) lines.emplace_back(buf.data());
    EXPECT_EQ(pclose(p), 0) << cmd;
    return lines;
  }
  static std::vector<std::string> starting(const std::vector<std::string>& lines, const std::string& prefix) {
    std::vector<std::string> out;
    for (const auto& l : lines)
      if (l.rfind(prefix, 0) == 0) out.push_back(l.substr(prefix.size(), l.size() - prefix.size() - 1));
    return out;
  }
  fs::path dir;
};

struct CPointXY {
  int x = 0, y = 0;
};

// The screen point of a "project" line: "x y z at px py".
CPointXY screenPoint(const std::string& line) {
  CPointXY c;
  EXPECT_EQ(std::sscanf(line.c_str(), "%*g %*g %*g at %d %d", &c.x, &c.y), 2) << line;
  return c;
}

struct Rect {
  int l, t, r, b;
  int cx() const { return (l + r) / 2; }
  int cy() const { return (t + b) / 2; }
};

// Pixels differing between two images inside a rectangle.
int changed(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, int w, const Rect& r) {
  int n = 0;
  for (int y = r.t; y < r.b; ++y)
    for (int x = r.l; x < r.r; ++x)
      for (int c = 0; c < 3; ++c)
        if (a[(size_t(y) * w + x) * 4 + c] != b[(size_t(y) * w + x) * 4 + c]) {
          ++n;
          break;
        }
  return n;
}

}  // namespace

TEST_F(Kxview, DrawsPicksSelectsZoomsMeasuresAndExports) {
  std::map<int, Rect> box;
  const std::vector<std::string> where = run("locate 1\nlocate 2\nlocate 3\nproject 0 0 1\nproject 2 0 1\n");
  for (const std::string& l : starting(where, "kxview: locate ")) {
    int id;
    Rect r;
    ASSERT_EQ(std::sscanf(l.c_str(), "%d %d %d %d %d", &id, &r.l, &r.t, &r.r, &r.b), 5) << l;
    box[id] = r;
  }
  ASSERT_EQ(box.size(), 3u);
  // Two ends of the top front edge of box 1.
  std::vector<CPointXY> corner;
  for (const std::string& l : starting(where, "kxview: project ")) corner.push_back(screenPoint(l));
  ASSERT_EQ(corner.size(), 2u);
  const Rect& b1 = box[1];
  const Rect& b2 = box[2];
  const Rect& b3 = box[3];
  const Rect inner{b2.cx() - 3, b2.cy() - 3, b2.cx() + 3, b2.cy() + 3};
  // A band through the middle of boxes 2 and 3 that holds neither whole.
  const int bandTop = std::max(b2.t, b3.t) + 2, bandBottom = std::min(b2.b, b3.b) - 2;
  ASSERT_LT(bandTop, bandBottom);
  std::ostringstream s;
  s << "screenshot " << (dir / "before.png").string() << "\n"
    << "click " << b2.cx() << " " << b2.cy() << "\n"
    << "screenshot " << (dir / "picked.png").string() << "\n"
    << "drag " << b1.l - 5 << " " << b1.t - 5 << " " << b1.r + 5 << " " << b1.b + 5 << "\n"
    << "drag " << b3.cx() << " " << bandTop << " " << b2.cx() << " " << bandBottom << "\n"
    << "drag " << b2.cx() << " " << bandTop << " " << b3.cx() << " " << bandBottom
    << "\n"
    // The distance tool, a few pixels off each corner.
    << "key d\n"
    << "move " << corner[0].x + 3 << " " << corner[0].y + 2 << "\nclick " << corner[0].x + 3 << " " << corner[0].y + 2
    << "\nmove " << corner[1].x + 3 << " " << corner[1].y + 2 << "\nclick " << corner[1].x + 3 << " " << corner[1].y + 2
    << "\n"
    << "key d\n"
    << "probe 250 200\nwheel 250 200 1\nprobe 250 200\n"
    << "export " << (dir / "export.png").string() << " 640 360\n";
  const std::vector<std::string> out = run(s.str());

  // The model is drawn: the boxes cover the background, and the picked
  // box looks different afterwards (highlight) while the others do not.
  std::vector<uint8_t> before, picked;
  int w = 0, h = 0;
  ASSERT_TRUE(KxReadPng((dir / "before.png").string(), before, w, h));
  ASSERT_TRUE(KxReadPng((dir / "picked.png").string(), picked, w, h));
  ASSERT_EQ(w, 800);
  const std::vector<uint8_t> background = {0x28, 0x3C, 0x50};
  const size_t at = (size_t(b1.cy()) * w + b1.cx()) * 4;
  EXPECT_NE(std::vector<uint8_t>(before.begin() + at, before.begin() + at + 3), background);
  EXPECT_GT(changed(before, picked, w, inner), 0);
  EXPECT_EQ(changed(before, picked, w, Rect{b1.cx() - 3, b1.cy() - 3, b1.cx() + 3, b1.cy() + 3}), 0);

  // Click, window round box 1, crossing through 2 and 3, window through
  // them (nothing whole inside).
  EXPECT_EQ(starting(out, "kxview: selected"), (std::vector<std::string>{" 2", " 1", " 2 3", ""}));

  // One notch in: the point under the cursor stays, the range shrinks 1.4 times.
  const std::vector<std::string> probes = starting(out, "kxview: probe 250 200 ");
  ASSERT_EQ(probes.size(), 2u);
  double r0, x0, y0, z0, r1, x1, y1, z1;
  ASSERT_EQ(std::sscanf(probes[0].c_str(), "range %lf point %lf %lf %lf", &r0, &x0, &y0, &z0), 4);
  ASSERT_EQ(std::sscanf(probes[1].c_str(), "range %lf point %lf %lf %lf", &r1, &x1, &y1, &z1), 4);
  EXPECT_NEAR(r1, r0 / 1.4, 1e-9 * r0);
  const double pixel = 2.0 * r1 / 600.0;
  EXPECT_LT(std::hypot(x1 - x0, y1 - y0), 3.0 * pixel);

  const std::vector<std::string> distance = starting(out, "kxview: distance ");
  ASSERT_EQ(distance.size(), 1u);
  EXPECT_EQ(distance[0].rfind("2.000000 from (0.0000, 0.0000, 1.0000) to (2.0000, 0.0000, 1.0000)", 0), 0u)
      << distance[0];

  std::vector<uint8_t> exported;
  ASSERT_TRUE(KxReadPng((dir / "export.png").string(), exported, w, h));
  EXPECT_EQ(w, 640);
  EXPECT_EQ(h, 360);
}

TEST_F(Kxview, ShadowsTransparencyAndDroppedFiles) {
  std::ofstream(dir / "broken.obj") << "v 0 0 0\nv 1 0 0\nf 1 2 9\n";
  std::ofstream(dir / "tower.obj") << "o Tower\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 4\nf 1 3 2\nf 1 2 4\nf 2 3 4\nf 3 1 4\n";
  const std::string d = dir.string() + "/";
  // The sun stands at the upper left: box 3's shadow falls on the ground
  // to its right and back, none in front of it.
  const std::vector<std::string> out =
      run("locate 2\nproject 8.25 0.5 0\nproject 8.25 -0.3 0\nscreenshot " + d + "plain.png\nkey s\nscreenshot " + d +
          "shadow.png\nkey s\nkey t\nscreenshot " + d + "clear.png\nkey t\ndrop " + d + "broken.obj\nscreenshot " + d +
          "kept.png\ndrop " + d + "tower.obj\nscreenshot " + d + "dropped.png\n");
  const std::vector<std::string> located = starting(out, "kxview: locate 2 ");
  const std::vector<std::string> projected = starting(out, "kxview: project ");
  ASSERT_EQ(located.size(), 1u);
  ASSERT_EQ(projected.size(), 2u);
  Rect b2;
  ASSERT_EQ(std::sscanf(located[0].c_str(), "%d %d %d %d", &b2.l, &b2.t, &b2.r, &b2.b), 4);
  const CPointXY shade = screenPoint(projected[0]), lit = screenPoint(projected[1]);
  std::map<std::string, std::vector<uint8_t>> shot;
  int w = 0, h = 0;
  for (const char* name : {"plain", "shadow", "clear", "kept", "dropped"})
    ASSERT_TRUE(KxReadPng(d + name + ".png", shot[name], w, h)) << name;
  auto px = [&](const char* name, int x, int y) {
    const uint8_t* p = &shot[name][(size_t(y) * w + x) * 4];
    return std::array<int, 3>{p[0], p[1], p[2]};
  };
  auto sum = [](const std::array<int, 3>& c) { return c[0] + c[1] + c[2]; };
  // Shadows on: the ground shows, darker in the shadow than in the sun.
  EXPECT_LT(sum(px("shadow", shade.x, shade.y)) * 4, sum(px("shadow", lit.x, lit.y)) * 3);
  // Transparent: box 2's middle comes nearer the background colour.
  const std::array<int, 3> background = {0x28, 0x3C, 0x50};
  auto distance = [&](const std::array<int, 3>& c) {
    return std::abs(c[0] - background[0]) + std::abs(c[1] - background[1]) + std::abs(c[2] - background[2]);
  };
  EXPECT_LT(distance(px("clear", b2.cx(), b2.cy())) * 3, distance(px("plain", b2.cx(), b2.cy())) * 2);
  // A broken file dropped keeps the model and view; a good one replaces them.
  EXPECT_EQ(starting(out, "kxview: cannot open ").size(), 1u);
  EXPECT_EQ(changed(shot["plain"], shot["kept"], w, Rect{0, 0, w, h}), 0);
  EXPECT_EQ(starting(out, "kxview: " + d + "tower.obj: "), std::vector<std::string>{"1 objects, 4 triangles"});
  EXPECT_GT(changed(shot["plain"], shot["dropped"], w, Rect{0, 0, w, h}), w * h / 20);
}
