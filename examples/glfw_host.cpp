// The smallest useful kxrender host: a GLFW window without a client API (the
// engine makes its own context on it), a few boxes on a floor, a frame on
// every paint, wheel zoom and middle-button pan. `glfw_host --once` draws one
// frame and exits.
#include <cstdio>
#include <cstring>
#include <vector>

#include <kxrender/CSceneMgr.h>
#include <kxrender/Version.h>
#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>
#define GLFW_EXPOSE_NATIVE_X11
#include <GLFW/glfw3native.h>

static CSceneMgr* g_scene = nullptr;
static double g_lastX = 0, g_lastY = 0;

static void addFace(CRenderObject& o, std::vector<AcGePoint3d> pts, const CColor& c) {
  const AcGeVector3d n = (pts[1] - pts[0]).crossProduct(pts[2] - pts[0]).normal();
  CRenderShape s;
  s.set(pts, {}, CRenderShape::kPgon, c, n);
  o.addShape(s);
}

// An axis-aligned box from (x, y, 0) of size w x d x h, faces pointing out.
static void addBox(CObjectSetMgr& set, double x, double y, double w, double d, double h, const CColor& c) {
  auto* o = new CRenderObject;
  const double X = x + w, Y = y + d;
  auto p = [](double a, double b, double z) { return AcGePoint3d(a, b, z); };
  addFace(*o, {p(x, y, 0), p(x, Y, 0), p(X, Y, 0), p(X, y, 0)}, c);  // bottom
  addFace(*o, {p(x, y, h), p(X, y, h), p(X, Y, h), p(x, Y, h)}, c);  // top
  addFace(*o, {p(x, y, 0), p(X, y, 0), p(X, y, h), p(x, y, h)}, c);
  addFace(*o, {p(X, y, 0), p(X, Y, 0), p(X, Y, h), p(X, y, h)}, c);
  addFace(*o, {p(X, Y, 0), p(x, Y, 0), p(x, Y, h), p(X, Y, h)}, c);
  addFace(*o, {p(x, Y, 0), p(x, y, 0), p(x, y, h), p(x, Y, h)}, c);
  o->endAddShape();
  set.addObject(o);  // the set owns it from here
}

static void paint(GLFWwindow*) {
  g_scene->render();
  g_scene->finish();
}

int main(int argc, char** argv) {
  const bool once = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  std::printf("kxrender %s\n", kxrenderVersion());
  if (!glfwInit()) return 1;
  glfwWindowHint(GLFW_CLIENT_API, GLFW_NO_API);
  GLFWwindow* win = glfwCreateWindow(800, 600, "kxrender", nullptr, nullptr);
  if (!win) return 1;
  HWND wnd = KxAttachX11Window(glfwGetX11Display(), glfwGetX11Window(win));
  CSceneMgr scene;
  if (!scene.initializeRender(wnd, false, true)) return 1;
  g_scene = &scene;

  CObjectSetMgr& set = *scene.getObjSetMgr();
  addBox(set, -10, -10, 20, 20, 0.2, CColor(160, 160, 150, 255));  // floor slab
  addBox(set, -8, -8, 4, 4, 9, CColor(200, 80, 60, 255));
  addBox(set, 3, -7, 5, 3, 5, CColor(70, 140, 200, 255));
  addBox(set, -6, 2, 3, 6, 3, CColor(90, 170, 90, 255));
  addBox(set, 2, 3, 6, 5, 12, CColor(220, 190, 80, 255));
  set.freshBox();
  const AcGeVector3d forward = AcGeVector3d(-1, -1.5, -1).normal(), z(0, 0, 1);
  scene.camera()->ReSet(AcGeVector3d(0, 0, 0), (z - forward * z.dotProduct(forward)).normal(), forward);
  scene.zoomE();
  paint(win);
  if (!once) {
    glfwSetWindowRefreshCallback(win, paint);
    glfwSetWindowSizeCallback(win, [](GLFWwindow* w, int, int) {
      KxNotifyWindowResized(g_scene->getWndHandle());
      paint(w);
    });
    glfwSetScrollCallback(win, [](GLFWwindow* w, double, double dy) {
      g_scene->mouseWheel(short(dy * 120), CPoint(int(g_lastX), int(g_lastY)));
      paint(w);
    });
    glfwSetCursorPosCallback(win, [](GLFWwindow* w, double x, double y) {
      if (glfwGetMouseButton(w, GLFW_MOUSE_BUTTON_MIDDLE) == GLFW_PRESS) {
        g_scene->mouseMove(CSize(int(g_lastX - x), int(g_lastY - y)));
        paint(w);
      }
      g_lastX = x;
      g_lastY = y;
    });
    while (!glfwWindowShouldClose(win)) glfwWaitEvents();
  }

  scene.glRelease();
  KxDestroyWindow(wnd);
  glfwDestroyWindow(win);
  glfwTerminate();
  return 0;
}
