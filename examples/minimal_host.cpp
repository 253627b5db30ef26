// One window, one scene, one object, one frame, off-screen: no display needed.
// Exits 0 when the square shows at the centre of the frame.
#include <cstdint>
#include <cstdio>
#include <vector>

#include <kxrender/CSceneMgr.h>

int main() {
  HWND wnd = KxCreateOffscreenWindow(640, 480);  // or KxAttachX11Window(display, xwindow)
  CSceneMgr scene;                               // one scene per window
  if (!wnd || !scene.initializeRender(wnd, false, true)) return 1;

  CRenderShape square;
  square.set({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {}, CRenderShape::kPgon, CColor(200, 80, 60, 255),
             AcGeVector3d(0, 0, 1));
  auto* obj = new CRenderObject;
  obj->addShape(square);
  obj->endAddShape();
  scene.getObjSetMgr()->addObject(obj);  // the object set owns obj from here
  scene.getObjSetMgr()->freshBox();
  scene.zoomE();  // fit the view to the objects

  scene.render();  // on every paint: render, then finish
  scene.finish();

  std::vector<uint8_t> rgba;
  int w = 0, h = 0;
  const bool read = KxReadWindowPixels(wnd, rgba, w, h);
  const uint8_t* centre = read ? &rgba[(size_t(h / 2) * w + w / 2) * 4] : nullptr;
  scene.glRelease();
  KxDestroyWindow(wnd);
  if (!centre || centre[0] == 0) return 1;  // the background is black
  std::printf("centre pixel %d,%d,%d\n", centre[0], centre[1], centre[2]);
  return 0;
}
