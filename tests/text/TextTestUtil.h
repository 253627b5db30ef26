#pragma once
// Shared by the text tests: a hand-written CXF font written to a temporary
// file, and the line font the engine uses while each test runs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "kxrender/CTextContour.h"
#include "kxrender/KxSystem.h"

namespace texttest {

// "A": two strokes and a 90-degree arc; "中" (4e2d, header without its
// character, upper-case hex): one stroke; "(" one stroke. The last glyph
// has no blank line after it.
inline std::string smallCxf(const char* eol) {
  const char* lines[] = {"# Format:            QCad II Font", "", "[0041] A", "L 0,0,3,9", "L 3,9,6,0",
                         "A 0,0,9,0,90", "", "[4E2D]", "L 3,0,3,9", "", "[0028] (", "L 1,0,1,9"};
  std::string s;
  for (const char* l : lines) s += std::string(l) + eol;
  return s;
}

// A fresh file each time, so no cache keyed by its path hands back an
// earlier test's font.
inline std::string writeTemp(const std::string& content) {
  static int n = 0;
  const std::string path = "/tmp/kxtext_" + std::to_string(getpid()) + "_" + std::to_string(n++) + ".cxf";
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

// Points the line font at the small font while it lives and back after it;
// the code page goes back to UTF-8.
struct SmallFont {
  SmallFont() {
    CTextContour::createSingleton();
    tc = CTextContour::getSingleton();
    savedCxf = tc->getCxfPath();
    savedDir = tc->getFontDir();
    tc->setFontPaths(path.c_str(), savedDir);
  }
  ~SmallFont() {
    tc->setFontPaths(savedCxf, savedDir);
    std::remove(path.c_str());
    KxSetAnsiCodePage(CP_UTF8);
  }
  CTextContour* tc = nullptr;
  CString savedCxf, savedDir;
  const std::string path = writeTemp(smallCxf("\n"));
};

class SmallFontTest : public ::testing::Test, protected SmallFont {};

}  // namespace texttest
