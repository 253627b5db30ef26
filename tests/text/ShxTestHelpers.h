#pragma once
// Compiles SHP sources written in the tests into SHX files and reads their
// shapes back through CShapeInfo.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "ShpCompiler.h"
#include "text/ShapeInfo.h"

namespace shxtest {

inline std::vector<uint8_t> compile(const std::string& shp) {
  std::vector<uint8_t> shx;
  std::string error;
  EXPECT_TRUE(CompileShp(shp, shx, error)) << error;
  return shx;
}

// Files written by the tests, removed when the program ends.
struct TempFiles {
  std::vector<std::string> paths;
  ~TempFiles() {
    for (const std::string& p : paths) std::remove(p.c_str());
  }
};

// Writes bytes to a fresh file (a new name each time, so the font cache
// never hands back an earlier test's font).
inline std::string writeFile(const std::vector<uint8_t>& bytes) {
  static TempFiles files;
  const std::string path = "/tmp/kx_shx_" + std::to_string(getpid()) + "_" + std::to_string(files.paths.size()) + ".shx";
  files.paths.push_back(path);
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  return path;
}

// A plain shape font holding `defs` under a header of height 6.
inline std::string shapesFont(const std::string& defs) { return "*0,4,t\n6,2,0,0\n" + defs; }

// Contours as "x,y x,y; x,y ..." rounded to 3 decimals, then " | end x,y".
inline std::string describe(const CShape& shape) {
  ShxContourList contours;
  shape.appendContours(contours);
  auto num = [](double v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.3f", v);
    std::string s = buf;
    s.erase(s.find_last_not_of('0') + 1);
    if (s.back() == '.') s.pop_back();
    return s == "-0" ? std::string("0") : s;
  };
  std::string out;
  for (const auto& c : contours) {
    if (!out.empty()) out += "; ";
    for (size_t i = 0; i < c.size(); ++i) out += (i ? " " : "") + num(c[i].x) + "," + num(c[i].y);
  }
  return out + " | end " + num(shape.m_endPoint.x) + "," + num(shape.m_endPoint.y);
}

// Draws one shape of a compiled font; "missing" when absent.
inline std::string drawBytes(const std::vector<uint8_t>& shx, unsigned code, int kind = 1, bool vertical = false) {
  CShapeInfo info;
  if (!info.Init(writeFile(shx).c_str())) return "unreadable";
  CShape shape;
  if (!info.GetShape(code, kind, shape, vertical)) return "missing";
  return describe(shape);
}
// The same from the source `shp`.
inline std::string draw(const std::string& shp, unsigned code, int kind = 1, bool vertical = false) {
  return drawBytes(compile(shp), code, kind, vertical);
}

}  // namespace shxtest
