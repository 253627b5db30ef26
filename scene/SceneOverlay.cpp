// Overlays drawn over the frame: the axis tripod and the orbit guide.
#include <cmath>

#include "kxrender/CSceneMgr.h"
#include "support/GLTable.h"

namespace {

// One letter as strokes in screen units (4/3 wide, 2 high), drawn from
// `origin` along the camera's screen directions so it faces the viewer.
void drawLetter(char letter, const AcGePoint3d& origin, const CCamera& cam) {
  static const double w = 4.0 / 3.0;
  struct Stroke {
    double x0, y0, x1, y1;
  };
  static const Stroke X[] = {{0, 0, w, 2}, {0, 2, w, 0}};
  static const Stroke Y[] = {{0, 2, w / 2, 1}, {w, 2, w / 2, 1}, {w / 2, 1, w / 2, 0}};
  static const Stroke Z[] = {{0, 2, w, 2}, {w, 2, 0, 0}, {0, 0, w, 0}};
  const Stroke* strokes = letter == 'X' ? X : (letter == 'Y' ? Y : Z);
  const int count = letter == 'X' ? 2 : 3;
  kgl->Begin(GL_LINES);
  for (int i = 0; i < count; ++i) {
    const Stroke& s = strokes[i];
    const AcGePoint3d a = origin + CSceneMgr::ScreenVectorTo3d(AcGeVector2d(s.x0, s.y0), cam);
    const AcGePoint3d b = origin + CSceneMgr::ScreenVectorTo3d(AcGeVector2d(s.x1, s.y1), cam);
    kgl->Vertex3d(a.x, a.y, a.z);
    kgl->Vertex3d(b.x, b.y, b.z);
  }
  kgl->End();
}

void circle(double cx, double cy, double radius) {
  kgl->Begin(GL_LINE_LOOP);
  for (int i = 0; i <= 64; ++i) {
    const double a = i * M_PI / 32.0;
    kgl->Vertex3d(cx + radius * std::cos(a), cy + radius * std::sin(a), 0.0);
  }
  kgl->End();
}

}  // namespace

void CSceneMgr::setCoordVP() {
  kgl->Viewport(0, 0, 100, 100);
  kgl->MatrixMode(GL_PROJECTION);
  kgl->LoadIdentity();
  kgl->Ortho(-10.0, 10.0, -10.0, 10.0, -10.0, 100.0);
  kgl->MatrixMode(GL_MODELVIEW);
  kgl->LoadIdentity();
}

void CSceneMgr::drawCoordinate() {
  drawTripod(0, 0);
  setViewport();
  m_camera.look();
}

void CSceneMgr::drawTripod(int vx, int vy) {
  kgl->Disable(GL_LIGHTING);
  setCoordVP();
  // A tile of a larger picture places it where it falls in the picture.
  if (vx != 0 || vy != 0) kgl->Viewport(vx, vy, 100, 100);
  // Look along the scene's direction from -forward: the tripod turns with
  // the view but ignores pans and zooms.
  CCamera tripodCam = m_camera;
  const AcGeVector3d loc = tripodCam.GetVLocation();
  tripodCam.TranslateCaremaWorld(-tripodCam.GetVForward() - loc);
  tripodCam.look();

  const struct {
    unsigned char r, g, b;
    AcGePoint3d end;
    char letter;
  } axes[3] = {{255, 0, 0, AcGePoint3d(8, 0, 0), 'X'},
               {0, 255, 0, AcGePoint3d(0, 8, 0), 'Y'},
               {0, 0, 255, AcGePoint3d(0, 0, 8), 'Z'}};
  kgl->Begin(GL_LINES);
  for (const auto& a : axes) {
    kgl->Color3ub(a.r, a.g, a.b);
    kgl->Vertex3d(0.0, 0.0, 0.0);
    kgl->Vertex3d(a.end.x, a.end.y, a.end.z);
  }
  kgl->End();
  for (const auto& a : axes) {
    kgl->Color3ub(a.r, a.g, a.b);
    drawLetter(a.letter, a.end, tripodCam);
  }

  if (m_bLightOpen) kgl->Enable(GL_LIGHTING);
}

void CSceneMgr::draw3dOrbit() {
  setViewport();
  kgl->Disable(GL_LIGHTING);
  CCamera().look();
  kgl->Color3ub(0, 255, 0);
  const double R = 0.8 * m_dRange;
  circle(0.0, 0.0, R);
  // Where the big circle meets the view's horizontal and vertical axes.
  circle(R, 0.0, 0.1 * R);
  circle(-R, 0.0, 0.1 * R);
  circle(0.0, R, 0.1 * R);
  circle(0.0, -R, 0.1 * R);
  if (m_bLightOpen) kgl->Enable(GL_LIGHTING);
  m_camera.look();
}
