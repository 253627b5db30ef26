// Mouse and keys of a CAD viewer on one scene.
#include "Viewer.h"

#include <X11/Xlib.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "kxrender/KxImage.h"
#include "kxrender/KxModelImport.h"
#include "kxrender/KxWindow.h"

namespace {
constexpr int kDragPixels = 4;  // below this a press and release is a click
}

bool Viewer::open(HWND window, void* display, unsigned long xWindow) {
  m_window = window;
  m_display = display;
  m_xWindow = xWindow;
  if (!m_scene.initializeRender(window, false, true)) return false;
  m_scene.setBkColor(0x503C28);
  m_panel = true;
  return true;
}

void Viewer::close() {
  if (m_scene.getHRC()) m_scene.glRelease();
}

bool Viewer::openModel(const std::string& path) {
  KxImportOptions options;
  int shown = -1;
  options.progress = [&](double f, const char* phase) {
    const int percent = int(f * 100.0);
    if (percent == shown) return true;
    shown = percent;
    const int bar = percent * 30 / 100;
    std::fprintf(stderr, "\rkxview: %-8s [%.*s%*s] %3d%%", phase, bar, "##############################", 30 - bar, "",
                 percent);
    // The window shows the bar too, over the model it had before.
    m_loading = f;
    m_loadPhase = phase;
    if (m_scene.getHRC() && percent % 5 == 0) draw();
    return true;
  };
  m_scene.restoreHRC();  // textures go into the scene's context
  options.textures = m_scene.getTextureMgrPtr();
  CObjectSetMgr& set = *m_scene.getObjSetMgr();
  std::vector<unsigned> old;
  for (const auto& kv : set.objects()) old.push_back(kv.first);
  CString error;
  KxImportResult result;
  const bool ok = KxImportModel(path.c_str(), set, error, options, &result);
  std::fprintf(stderr, "\n");
  m_loading = -1.0;
  if (!ok) {
    std::fprintf(stderr, "kxview: %s\n", error.GetString());
    std::printf("kxview: cannot open %s\n", path.c_str());
    std::fflush(stdout);
    return false;
  }
  for (const CString& w : result.warnings) std::fprintf(stderr, "kxview: warning: %s\n", w.GetString());
  // The new model replaces the old one, with its textures and selection.
  set.delObject(old);
  m_ground = 0;
  m_selection.clear();
  m_preselected = 0;
  m_measured = 0;
  for (const CString& name : m_textures)
    if (std::find(result.textures.begin(), result.textures.end(), name) == result.textures.end())
      m_scene.getTextureMgrPtr()->delTexture(name);
  m_textures = result.textures;
  setShadows(m_scene.isShadow());
  std::printf("kxview: %s: %zu objects, %zu triangles\n", path.c_str(), result.ids.size(), result.triangles);
  std::fflush(stdout);
  // A view from the front right, above, with z up.
  const AcGeVector3d forward = AcGeVector3d(-1.0, 1.0, -0.8).normal();
  const AcGeVector3d z(0.0, 0.0, 1.0);
  m_scene.camera()->ReSet(AcGeVector3d(0, 0, 0), (z - forward * z.dotProduct(forward)).normal(), forward);
  m_scene.zoomE();
  return true;
}

void Viewer::setShadows(bool on) {
  CObjectSetMgr& set = *m_scene.getObjSetMgr();
  if (m_ground) set.delObject(m_ground);
  m_ground = 0;
  set.freshBox();
  if (on && set.numObjs() > 0) {
    // A ground just below the model, reaching as far as the shadows of the
    // sun below go: at most 0.71 times the model's height.
    AcGePoint3d lo, hi;
    set.getBox(lo, hi);
    const double reach = std::max({hi.x - lo.x, hi.y - lo.y, hi.z - lo.z}) * 0.75;
    const double z = lo.z - 1e-3 * (reach + 1.0);
    CRenderShape plane;
    plane.set({{lo.x - reach, lo.y - reach, z},
               {hi.x + reach, lo.y - reach, z},
               {hi.x + reach, hi.y + reach, z},
               {lo.x - reach, hi.y + reach, z}},
              {}, CRenderShape::kPgon, CColor(170, 170, 160, 255), AcGeVector3d(0, 0, 1));
    auto* ground = new CRenderObject;
    ground->addShape(plane);
    ground->endAddShape();
    m_ground = set.addObject(ground);
    set.freshBox();  // shadow volumes reach as far as the set's box
  }
  for (const auto& kv : set.objects())
    if (kv.second) kv.second->setGenerateShadow(on && kv.first != m_ground);
  // From the upper left of the default view, so that shadows fall to the
  // right, in sight.
  const float sun[4] = {-1.0f, -1.0f, 2.0f, 0.0f};
  m_scene.setLightpos(sun);
  m_scene.setShadow(on);
}

CPoint Viewer::toScreen(int x, int y) const {
  // The scene's wheel zoom takes screen coordinates.
  int rx = x, ry = y;
  ::Window child;
  XTranslateCoordinates(static_cast<Display*>(m_display), m_xWindow,
                        DefaultRootWindow(static_cast<Display*>(m_display)), x, y, &rx, &ry, &child);
  return CPoint(rx, ry);
}

void Viewer::printSelection() const {
  std::printf("kxview: selected");
  for (unsigned id : m_selection) std::printf(" %u", id);
  std::printf("\n");
  std::fflush(stdout);
}

void Viewer::select(const std::vector<unsigned>& ids, bool add) {
  if (!add) {
    for (unsigned id : m_selection)
      if (CRenderObject* o = m_scene.getObj(id)) o->highLight(false);
    m_selection.clear();
  }
  for (unsigned id : ids)
    if (id != m_ground && std::find(m_selection.begin(), m_selection.end(), id) == m_selection.end())
      m_selection.push_back(id);
  for (unsigned id : m_selection)
    if (CRenderObject* o = m_scene.getObj(id)) o->highLight(true);
  printSelection();
}

void Viewer::setPreselection(unsigned id) {
  if (id == m_ground) id = 0;
  if (id == m_preselected) return;
  if (CRenderObject* o = m_scene.getObj(m_preselected)) o->hit(false);
  m_preselected = id;
  if (CRenderObject* o = m_scene.getObj(id)) o->hit(true);
}

void Viewer::onMove(int x, int y) {
  const int dx = x - m_lastX, dy = y - m_lastY;
  m_lastX = x, m_lastY = y;
  if (m_buttonDown < 0 && m_measuring) {
    measureMove(x, y);
    return;
  }
  if (m_buttonDown < 0) {
    unsigned id = 0, shape = 0;
    setPreselection(m_scene.pick(CPoint(x, y), id, shape, 0, nullptr, true) ? id : 0);
    return;
  }
  if (std::abs(x - m_downX) + std::abs(y - m_downY) >= kDragPixels) m_dragging = true;
  if (m_orbiting)
    m_scene.mouseCursorRotate(CSize(dx, dy), true);
  else if (m_buttonDown == kMiddle)
    m_scene.mouseMove(CSize(-dx, -dy));
}

void Viewer::onButton(Button b, bool down, int x, int y, bool shift, bool ctrl, bool doubleClick) {
  m_lastX = x, m_lastY = y;
  if (down) {
    m_buttonDown = b;
    m_downX = x, m_downY = y;
    m_dragging = false;
    // The right button, or shift and the middle one, orbit about the point
    // under the cursor.
    m_orbiting = b == kRight || (b == kMiddle && shift);
    if (b == kMiddle && doubleClick) m_scene.zoomE();
    if (m_orbiting) m_scene.setCursorPivot(CPoint(x, y));
    return;
  }
  if (m_buttonDown != int(b)) return;
  m_buttonDown = -1;
  m_orbiting = false;
  if (b != kLeft) return;
  if (m_zoomWindowNext && m_dragging) {
    m_zoomWindowNext = false;
    m_scene.zoomW(CPoint(m_downX, m_downY), CPoint(x, y));
    return;
  }
  if (m_measuring && !m_dragging) {
    measureClick();
    return;
  }
  std::vector<unsigned> ids;
  if (m_dragging) {
    // Left to right: objects inside; right to left: objects crossing.
    m_scene.pick(CPoint(m_downX, m_downY), CPoint(x, y), ids);
  } else {
    unsigned id = 0, shape = 0;
    if (m_scene.pick(CPoint(x, y), id, shape, 0, nullptr, true)) ids.push_back(id);
  }
  select(ids, ctrl);
}

void Viewer::onWheel(int x, int y, int notches) {
  for (int i = 0; i < std::abs(notches); ++i) m_scene.mouseWheel(short(notches > 0 ? 120 : -120), toScreen(x, y));
}

void Viewer::onKey(int key) {
  switch (key) {
    case 'e': m_scene.zoomE(); break;
    case 'w': m_zoomWindowNext = true; break;
    case 'z': m_scene.zoomToObjects(m_selection); break;
    case 'p': m_scene.undoCamera(); break;
    case 'n': m_scene.redoCamera(); break;
    case 'm': {
      // Shaded, then wire frame.
      const int mode = m_scene.getRenderMode() == 0 ? 2 : 0;
      m_scene.setRenderMode(static_cast<CRenderObject::RenderMode>(mode));
      break;
    }
    case 's': setShadows(!m_scene.isShadow()); break;
    case 't': m_scene.setTransparent(m_scene.getTransparent() == 255 ? 128 : 255); break;
    case 'i': m_panel = !m_panel; break;
    case 'x': {
      int w = int(m_scene.getViewWidth()), h = int(m_scene.getViewHeight());
      exportPng("kxview.png", 2 * w, 2 * h);
      break;
    }
    case 'd':
      m_measuring = !m_measuring;
      m_measured = 0;
      m_snapped = false;
      break;
    case 27:
      if (m_measuring) {
        m_measuring = false;
        break;
      }
      select({}, false);
      break;
    case 'q': m_quit = true; break;
    default: break;
  }
}

void Viewer::onResize() { KxNotifyWindowResized(m_window); }

// Window pixels (origin top left) over the frame, nothing hiding them.
void Viewer::beginOverlay() {
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glLoadIdentity();
  glOrtho(0, m_scene.getViewWidth(), m_scene.getViewHeight(), 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_CURRENT_BIT);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
  glDisable(GL_POLYGON_STIPPLE);
  glDisable(GL_LINE_STIPPLE);
}

void Viewer::endOverlay() {
  glPopAttrib();
  glPopMatrix();
  glMatrixMode(GL_PROJECTION);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
}

void Viewer::drawRubberBand() {
  if (m_buttonDown != kLeft || !m_dragging) return;
  beginOverlay();
  // Window selection solid, crossing selection dashed.
  const bool crossing = m_lastX < m_downX;
  if (crossing) {
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(1, 0x0F0F);
  }
  glLineWidth(1.0f);
  glColor3f(1.0f, 1.0f, 1.0f);
  glBegin(GL_LINE_LOOP);
  glVertex2d(m_downX + 0.5, m_downY + 0.5);
  glVertex2d(m_lastX + 0.5, m_downY + 0.5);
  glVertex2d(m_lastX + 0.5, m_lastY + 0.5);
  glVertex2d(m_downX + 0.5, m_lastY + 0.5);
  glEnd();
  endOverlay();
}

void Viewer::draw() {
  m_scene.restoreHRC();
  m_scene.render();
  if (m_orbiting) m_scene.draw3dOrbit();
  drawRubberBand();
  if (m_measuring) drawMeasure();
  if (m_panel || m_loading >= 0.0) drawPanel();
  m_scene.finish();
}

bool Viewer::screenshot(const std::string& path) {
  std::vector<uint8_t> rgba;
  int w = 0, h = 0;
  m_scene.restoreHRC();
  return KxReadWindowPixels(m_window, rgba, w, h) && KxWritePng(path, rgba, w, h);
}

bool Viewer::exportPng(const std::string& path, int width, int height) {
  HWND offscreen = KxCreateOffscreenWindow(width, height);
  if (!offscreen) return false;
  bool ok = false;
  {
    // A scene of its own for the off-screen context, with copies of the
    // objects (their display lists belong to the window's context).
    CSceneMgr copy;
    if (copy.initializeRender(offscreen, false, false)) {
      // Textures are names in a context too: file textures load again into
      // the copy's manager; pictures embedded in the model are not kept
      // apart from their texture, so those faces go plain.
      std::map<unsigned, unsigned> textureIn;
      for (const CString& name : m_textures) {
        unsigned from = 0, to = 0;
        if (m_scene.getTextureMgrPtr()->getTexture(name, from) && copy.getTextureMgrPtr()->addTexture(name) &&
            copy.getTextureMgrPtr()->getTexture(name, to))
          textureIn[from] = to;
      }
      for (const auto& kv : m_scene.getObjSetMgr()->objects()) {
        if (!kv.second) continue;
        auto* o = new CRenderObject(*kv.second);
        for (CRenderShape& s : o->getShps()) {
          if (!s.hasTexture()) continue;
          const auto it = textureIn.find(s.getTexture());
          if (it == textureIn.end())
            s.clearTexture();
          else
            s.setTexture(it->second);
        }
        copy.getObjSetMgr()->addObject(o);
      }
      copy.getObjSetMgr()->freshBox();
      *copy.camera() = *m_scene.camera();
      copy.setRange(m_scene.dRange());
      copy.setRenderMode(m_scene.getRenderMode());
      copy.setShadow(m_scene.isShadow());
      copy.setTransparent(m_scene.getTransparent());
      copy.setBkColor(0x503C28);
      copy.render();
      copy.finish();
      std::vector<uint8_t> rgba;
      int w = 0, h = 0;
      ok = KxReadWindowPixels(offscreen, rgba, w, h) && KxWritePng(path, rgba, w, h);
      copy.glRelease();
    }
  }
  KxDestroyWindow(offscreen);
  m_scene.restoreHRC();
  std::printf("kxview: export %dx%d to %s: %s\n", width, height, path.c_str(), ok ? "done" : "failed");
  std::fflush(stdout);
  return ok;
}
