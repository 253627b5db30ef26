#pragma once
// The viewer's state and what each input does to the scene. The window
// system (GLFW) and the script runner both drive it through the on*
// handlers, with positions in window pixels (origin top left).
#include <string>
#include <vector>

#include "kxrender/CSceneMgr.h"

class Viewer {
 public:
  enum Button { kLeft = 0, kRight = 1, kMiddle = 2 };

  // Binds the scene to the window; false when no context can be made.
  bool open(HWND window, void* display, unsigned long xWindow);
  void close();
  // Opens a model file, from the command line or dropped on the window:
  // the model replaces the one shown only when it reads (progress bar on
  // the terminal); false with a message on stderr.
  bool openModel(const std::string& path);

  void onMove(int x, int y);
  void onButton(Button b, bool down, int x, int y, bool shift, bool ctrl, bool doubleClick);
  void onWheel(int x, int y, int notches);
  void onKey(int key);  // an ASCII letter or one of the keys below
  void onResize();

  // One frame: the scene, the rubber band, the tag panel.
  void draw();
  // The view rendered off-screen at width x height, written as a PNG.
  bool exportPng(const std::string& path, int width, int height);
  // The frame now on screen, as a PNG.
  bool screenshot(const std::string& path);

  const std::vector<unsigned>& selection() const { return m_selection; }
  bool measuring() const { return m_measuring; }
  CSceneMgr& scene() { return m_scene; }
  bool wantsQuit() const { return m_quit; }
  // Shadows need something to fall on: a ground under the model, which is
  // not part of it (never picked or selected).
  void setShadows(bool on);
  unsigned ground() const { return m_ground; }

 private:
  void select(const std::vector<unsigned>& ids, bool add);
  void setPreselection(unsigned id);
  CPoint toScreen(int x, int y) const;
  void drawRubberBand();
  void drawPanel();
  bool m_imgui = false;
  void printSelection() const;
  // The distance tool: snap markers under the cursor, two clicks measure.
  void measureMove(int x, int y);
  void measureClick();
  void drawMeasure();
  void beginOverlay();
  void endOverlay();

  CSceneMgr m_scene;
  HWND m_window = nullptr;
  void* m_display = nullptr;
  unsigned long m_xWindow = 0;
  std::vector<unsigned> m_selection;
  std::vector<CString> m_textures;  // the model's, in the scene's texture manager
  unsigned m_ground = 0;
  unsigned m_preselected = 0;
  // Drag state.
  int m_buttonDown = -1;
  int m_downX = 0, m_downY = 0, m_lastX = 0, m_lastY = 0;
  bool m_dragging = false;
  bool m_zoomWindowNext = false;
  bool m_orbiting = false;
  bool m_quit = false;
  bool m_panel = false;
  bool m_measuring = false;
  double m_loading = -1.0;  // fraction of the file read while loading
  const char* m_loadPhase = "";
  bool m_snapped = false;
  AcGePoint3d m_snapPoint;
  CRenderObject::SnapMode m_snapKind = CRenderObject::kSnapNone;
  int m_measured = 0;  // points taken: 0, 1 or 2
  AcGePoint3d m_from, m_to;
};
