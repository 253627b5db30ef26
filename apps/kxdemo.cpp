// Renders the built-in scene off-screen and writes the frame as a PNG.
//   kxdemo [--out FILE] [--size WIDTHxHEIGHT]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "kxrender/CSceneMgr.h"
#include "kxrender/KxImage.h"
#include "kxrender/KxWindow.h"

int main(int argc, char** argv) {
  std::string out = "out/kxdemo.png";
  int width = 1280, height = 720;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--out") && i + 1 < argc) {
      out = argv[++i];
    } else if (!std::strcmp(argv[i], "--size") && i + 1 < argc) {
      if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 1 || height < 1 || width > 16384 ||
          height > 16384) {
        std::fprintf(stderr, "kxdemo: --size wants WIDTHxHEIGHT, each 1 to 16384\n");
        return 2;
      }
    } else {
      std::fprintf(stderr, "usage: kxdemo [--out FILE] [--size WIDTHxHEIGHT]\n");
      return 2;
    }
  }

  HWND window = KxCreateOffscreenWindow(width, height);
  if (!window) {
    std::fprintf(stderr, "kxdemo: no off-screen display (is Mesa's EGL installed?)\n");
    return 1;
  }
  CSceneMgr scene;
  if (!scene.initializeRender(window, false, true)) {
    std::fprintf(stderr, "kxdemo: could not bind the scene to its window\n");
    return 1;
  }
  scene.setBkColor(0x503C28);  // dark slate blue: red 0x28, green 0x3C, blue 0x50
  // Turn the view so all three axes of the tripod show.
  scene.camera()->RotateCaremaRealWorldZ(-0.6, AcGePoint3d::kOrigin);
  scene.camera()->RotateCaremaRight(-0.9, AcGePoint3d::kOrigin);
  scene.render();
  scene.draw3dOrbit();
  scene.finish();

  std::vector<uint8_t> pixels;
  int w = 0, h = 0;
  if (!KxReadWindowPixels(window, pixels, w, h)) {
    std::fprintf(stderr, "kxdemo: could not read the frame back\n");
    return 1;
  }
  std::error_code ec;
  const std::filesystem::path parent = std::filesystem::path(out).parent_path();
  if (!parent.empty()) std::filesystem::create_directories(parent, ec);
  if (!KxWritePng(out, pixels, w, h)) {
    std::fprintf(stderr, "kxdemo: could not write %s\n", out.c_str());
    return 1;
  }
  std::printf("kxdemo: %dx%d frame written to %s\n", w, h, out.c_str());
  scene.glRelease();
  KxDestroyWindow(window);
  return 0;
}
