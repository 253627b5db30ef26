#include "Script.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "Viewer.h"

namespace {

bool runLine(Viewer& v, const std::string& line) {
  std::istringstream in(line);
  std::string cmd;
  if (!(in >> cmd) || cmd[0] == '#') return true;
  int x = 0, y = 0, x1 = 0, y1 = 0, n = 0;
  std::string word;
  if (cmd == "move" && in >> x >> y) {
    v.onMove(x, y);
  } else if (cmd == "click" && in >> x >> y) {
    const bool ctrl = (in >> word) && word == "ctrl";
    v.onMove(x, y);
    v.onButton(Viewer::kLeft, true, x, y, false, ctrl, false);
    v.onButton(Viewer::kLeft, false, x, y, false, ctrl, false);
  } else if (cmd == "drag" && in >> x >> y >> x1 >> y1) {
    in >> word;
    const Viewer::Button b = word == "middle" ? Viewer::kMiddle : word == "right" ? Viewer::kRight : Viewer::kLeft;
    v.onMove(x, y);
    v.onButton(b, true, x, y, false, false, false);
    const int steps = 8;
    for (int i = 1; i <= steps; ++i) {
      v.onMove(x + (x1 - x) * i / steps, y + (y1 - y) * i / steps);
      if (i == steps / 2) v.draw();  // the rubber band or orbit guide on screen
    }
    v.onButton(b, false, x1, y1, false, false, false);
  } else if (cmd == "wheel" && in >> x >> y >> n) {
    v.onWheel(x, y, n);
  } else if (cmd == "key" && in >> word) {
    v.onKey(word == "esc" ? 27 : word[0]);
  } else if (cmd == "draw") {
    v.draw();
  } else if (cmd == "probe" && in >> x >> y) {
    v.draw();  // the matrices of the view as it is now
    const AcGePoint3d p = v.scene().screen2world(CPoint(x, y), CSceneMgr::PLANE_XY);
    std::printf("kxview: probe %d %d range %.17g point %.17g %.17g %.17g\n", x, y, v.scene().dRange(), p.x, p.y, p.z);
  } else if (cmd == "locate" && in >> n) {
    // The window rectangle the object's box covers.
    v.draw();
    const CRenderObject* o = v.scene().getObj(unsigned(n));
    if (!o) return false;
    AcGePoint3d lo, hi;
    o->getBox(lo, hi);
    int l = 1 << 30, t = 1 << 30, r = -(1 << 30), b = -(1 << 30);
    for (int c = 0; c < 8; ++c) {
      const CPoint s =
          v.scene().world2screen(AcGePoint3d((c & 1 ? hi : lo).x, (c & 2 ? hi : lo).y, (c & 4 ? hi : lo).z));
      l = std::min<int>(l, s.x), r = std::max<int>(r, s.x), t = std::min<int>(t, s.y), b = std::max<int>(b, s.y);
    }
    std::printf("kxview: locate %d %d %d %d %d\n", n, l, t, r, b);
  } else if (double wx, wy, wz; cmd == "project" && in >> wx >> wy >> wz) {
    v.draw();
    const CPoint s = v.scene().world2screen(AcGePoint3d(wx, wy, wz));
    std::printf("kxview: project %g %g %g at %ld %ld\n", wx, wy, wz, long(s.x), long(s.y));
  } else if (cmd == "screenshot" && in >> word) {
    // Twice, as a live window would have been: the panel sizes itself to
    // its text in its first frame and shows from the second.
    v.draw();
    v.draw();
    if (!v.screenshot(word)) std::printf("kxview: screenshot %s failed\n", word.c_str());
  } else if (cmd == "drop" && in >> word) {
    v.openModel(word);  // as the window's drop handler does; a file that fails is no script error
  } else if (cmd == "export" && in >> word >> x >> y) {
    v.exportPng(word, x, y);
  } else {
    return false;
  }
  std::fflush(stdout);
  return true;
}

}  // namespace

bool runScript(Viewer& viewer, const std::string& path, const std::function<void()>& pumpEvents) {
  std::ifstream in(path);
  if (!in) {
    std::fprintf(stderr, "kxview: cannot read script %s\n", path.c_str());
    return false;
  }
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    pumpEvents();
    if (!runLine(viewer, line)) {
      std::fprintf(stderr, "kxview: %s:%d: cannot run '%s'\n", path.c_str(), number, line.c_str());
      return false;
    }
  }
  return true;
}
