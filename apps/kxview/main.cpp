// kxview: a desktop viewer of model files on the engine.
//   kxview [MODEL] [--size WIDTHxHEIGHT] [--script FILE]
// Mouse: wheel zooms about the cursor, middle drag pans, right drag or
// shift+middle drag orbits about the point under the cursor, a double
// middle click zooms to extents; left click picks, left drag selects
// (left to right: objects inside, right to left: objects crossing), ctrl
// adds to the selection. Keys: e extents, w zoom window (then drag), z
// zoom to selection, p / n previous / next view, m wire frame or shaded,
// s shadows, t transparency, i tag panel, d distance tool (snap markers;
// click two snap points), x export PNG (twice the window size,
// kxview.png), Esc leaves the tool or clears the selection, q quits. Drop a file on the
// window to open it.
#include <GLFW/glfw3.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Script.h"
#include "Viewer.h"
#include "kxrender/KxWindow.h"

void shutdownPanel();

// GLFW's X11 accessors, declared here: glfw3native.h would also want the
// XRandR headers, which nothing else needs.
extern "C" Display* glfwGetX11Display(void);
extern "C" ::Window glfwGetX11Window(GLFWwindow* window);

namespace {

Viewer* viewerOf(GLFWwindow* w) { return static_cast<Viewer*>(glfwGetWindowUserPointer(w)); }

void bindInput(GLFWwindow* window) {
  glfwSetCursorPosCallback(window, [](GLFWwindow* w, double x, double y) { viewerOf(w)->onMove(int(x), int(y)); });
  glfwSetMouseButtonCallback(window, [](GLFWwindow* w, int button, int action, int mods) {
    static double lastMiddle = -1.0;
    double x, y;
    glfwGetCursorPos(w, &x, &y);
    const Viewer::Button b = button == GLFW_MOUSE_BUTTON_LEFT    ? Viewer::kLeft
                             : button == GLFW_MOUSE_BUTTON_RIGHT ? Viewer::kRight
                                                                 : Viewer::kMiddle;
    bool doubleClick = false;
    if (b == Viewer::kMiddle && action == GLFW_PRESS) {
      doubleClick = glfwGetTime() - lastMiddle < 0.35;
      lastMiddle = glfwGetTime();
    }
    viewerOf(w)->onButton(b, action == GLFW_PRESS, int(x), int(y), mods & GLFW_MOD_SHIFT, mods & GLFW_MOD_CONTROL,
                          doubleClick);
  });
  glfwSetScrollCallback(window, [](GLFWwindow* w, double, double dy) {
    double x, y;
    glfwGetCursorPos(w, &x, &y);
    viewerOf(w)->onWheel(int(x), int(y), dy > 0 ? 1 : dy < 0 ? -1 : 0);
  });
  glfwSetKeyCallback(window, [](GLFWwindow* w, int key, int, int action, int) {
    if (action != GLFW_PRESS) return;
    if (key == GLFW_KEY_ESCAPE) viewerOf(w)->onKey(27);
    if (key >= GLFW_KEY_A && key <= GLFW_KEY_Z) viewerOf(w)->onKey('a' + (key - GLFW_KEY_A));
  });
  glfwSetFramebufferSizeCallback(window, [](GLFWwindow* w, int, int) { viewerOf(w)->onResize(); });
  // A dropped file opens as one named on the command line would.
  glfwSetDropCallback(window, [](GLFWwindow* w, int count, const char** paths) {
    if (count > 0) viewerOf(w)->openModel(paths[0]);
  });
}

}  // namespace

int main(int argc, char** argv) {
  std::string model, script;
  int width = 1024, height = 768;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--size") && i + 1 < argc) {
      if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 16 || height < 16) {
        std::fprintf(stderr, "kxview: --size wants WIDTHxHEIGHT\n");
        return 2;
      }
    } else if (!std::strcmp(argv[i], "--script") && i + 1 < argc) {
      script = argv[++i];
    } else if (argv[i][0] != '-' && model.empty()) {
      model = argv[i];
    } else {
      std::fprintf(stderr, "usage: kxview [MODEL] [--size WIDTHxHEIGHT] [--script FILE]\n");
      return 2;
    }
  }
  if (!glfwInit()) {
    std::fprintf(stderr, "kxview: no display (is DISPLAY set?)\n");
    return 1;
  }
  // The engine makes its own context on the window.
  glfwWindowHint(GLFW_CLIENT_API, GLFW_NO_API);
  GLFWwindow* window = glfwCreateWindow(width, height, "kxview", nullptr, nullptr);
  if (!window) {
    std::fprintf(stderr, "kxview: cannot open a window\n");
    glfwTerminate();
    return 1;
  }
  Display* display = glfwGetX11Display();
  const ::Window xWindow = glfwGetX11Window(window);
  XSync(display, False);
  HWND hwnd = KxAttachX11Window(display, xWindow);
  int rc = 0;
  {
    Viewer viewer;
    glfwSetWindowUserPointer(window, &viewer);
    if (!hwnd || !viewer.open(hwnd, display, xWindow)) {
      std::fprintf(stderr, "kxview: cannot make a rendering context on the window\n");
      rc = 1;
    } else if (!model.empty() && !viewer.openModel(model)) {
      rc = 1;
    } else if (!script.empty()) {
      // The script is the only input: a stray pointer must not preselect.
      viewer.draw();
      rc = runScript(viewer, script, [] { glfwPollEvents(); }) ? 0 : 1;
    } else {
      bindInput(window);
      while (!glfwWindowShouldClose(window) && !viewer.wantsQuit()) {
        viewer.draw();
        glfwWaitEvents();
      }
    }
    shutdownPanel();
    viewer.close();
  }
  KxDestroyWindow(hwnd);
  glfwDestroyWindow(window);
  glfwTerminate();
  return rc;
}
