#pragma once
// Shared by the shape drawing tests: shapes built through CRenderShape::set,
// render objects placed in a scene's set, recorded call texts, and 64 x 64
// off-screen frames with a pixel-per-unit projection.
#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kxrender/CRenderObject.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"
#include "scene/SceneFixture.h"
#include "shapes/ShapeTestUtil.h"
#include "support/GLRecorder.h"
#include "support/GLTable.h"

namespace shapetest {

// A polygon in a given colour; without one, ShapeTestUtil's white polygon.
inline CRenderShape polygon(const Contour& outer, const Contours& holes, const CColor& clr) {
  CRenderShape s;
  s.set(outer, holes, CRenderShape::kPgon, clr, kUp);
  return s;
}

inline std::vector<std::string> texts(const GLRecorder& rec) {
  std::vector<std::string> out;
  for (const auto& c : rec.calls()) out.push_back(c.text());
  return out;
}

// Index of the first call with exactly this text at or after `from`, or -1.
inline int findText(const GLRecorder& rec, const std::string& text, size_t from = 0) {
  for (size_t i = from; i < rec.calls().size(); ++i)
    if (rec.calls()[i].text() == text) return static_cast<int>(i);
  return -1;
}

inline size_t countText(const GLRecorder& rec, const std::string& text) {
  size_t n = 0;
  for (const auto& c : rec.calls()) n += c.text() == text;
  return n;
}

inline std::string num(unsigned v) { return std::to_string(v); }

// A scene without a window, and an object in its set: enough for shapes to
// find the scene's alpha and shadow switch while calls are only recorded.
struct SceneObject {
  SceneObject() { obj.setObjSet(scene.getObjSetMgr()); }
  CSceneMgr scene;
  CRenderObject obj;  // declared after the scene: destroyed first
};

// A real 64 x 64 frame where one unit is one pixel and window y grows up.
class ShapeFrame : public SceneFixture {
 protected:
  void SetUp() override {
    open(64, 64);
    obj.setObjSet(scene.getObjSetMgr());
  }
  void beginFrame() {
    kgl->Viewport(0, 0, 64, 64);
    kgl->MatrixMode(GL_PROJECTION);
    kgl->LoadIdentity();
    kgl->Ortho(0, 64, 0, 64, -10, 10);
    kgl->MatrixMode(GL_MODELVIEW);
    kgl->LoadIdentity();
    kgl->Disable(GL_LIGHTING);  // plain colours to compare with
    kgl->ClearColor(0, 0, 0, 1);
    kgl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    // The object set enables vertex arrays around its passes.
    kgl->EnableClientState(GL_VERTEX_ARRAY);
  }
  void endFrame() {
    kgl->DisableClientState(GL_VERTEX_ARRAY);
    SwapBuffers(scene.getHDC());
  }
  // RGB at window coordinates (origin bottom left).
  std::vector<int> rgb(int x, int y) {
    const std::vector<uint8_t> p = pixel(x, 63 - y);
    if (p.size() < 3) return {};
    return {p[0], p[1], p[2]};
  }
  CRenderObject obj;
  const double scale = 1.0;
};

inline bool near(const std::vector<int>& got, int r, int g, int b, int tol = 8) {
  return got.size() == 3 && std::abs(got[0] - r) <= tol && std::abs(got[1] - g) <= tol && std::abs(got[2] - b) <= tol;
}

}  // namespace shapetest
