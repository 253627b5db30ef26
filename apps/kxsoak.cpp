// Runs the reference tower under churn for many frames and reports, at
// checkpoints, resident memory, display lists held and live, and the
// deletion queue as the last frame began; exits 1 when display lists leak.
//   kxsoak [--frames N] [--tower M | --tower S B] [--size WIDTHxHEIGHT]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "SoakChurn.h"
#include "kxrender/CRenderSystem.h"
#include "kxrender/KxWindow.h"

int main(int argc, char** argv) {
  long frames = 100000;
  int storeys = kTowerMStoreys, bays = kTowerMBays, width = 160, height = 120;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--frames" && i + 1 < argc) {
      frames = std::atol(argv[++i]);
    } else if (a == "--tower" && i + 1 < argc && std::strcmp(argv[i + 1], "M") == 0) {
      ++i;
    } else if (a == "--tower" && i + 2 < argc) {
      storeys = std::atoi(argv[++i]);
      bays = std::atoi(argv[++i]);
    } else if (a == "--size" && i + 1 < argc && std::sscanf(argv[i + 1], "%dx%d", &width, &height) == 2) {
      ++i;
    } else {
      std::fprintf(stderr, "usage: kxsoak [--frames N] [--tower M | --tower S B] [--size WIDTHxHEIGHT]\n");
      return 2;
    }
  }
  CRenderSystem::createSingleton();
  HWND window = KxCreateOffscreenWindow(width, height);
  CSceneMgr scene;
  if (!window || !scene.initializeRender(window, false, false)) {
    std::fprintf(stderr, "kxsoak: no off-screen window\n");
    return 2;
  }
  KxSoakChurn churn(scene, storeys, bays);
  std::printf("%9s %8s %7s %10s %10s %7s %6s %8s %8s %8s %10s\n", "frame", "objects", "statics", "lists-held",
              "lists-live", "pending", "queue", "buf-held", "buf-live", "buf-pend", "rss-KiB");
  bool ok = true;
  for (long n = 1; n <= frames; ++n) {
    churn.frame(n);
    if (n == 100 || n == 1000 || n % 10000 == 0 || n == frames) {
      const KxSoakFigures f = churn.figures();
      std::printf("%9ld %8zu %7zu %10zu %10zu %7zu %6zu %8zu %8zu %8zu %10ld\n", n, f.objects, f.statics,
                  f.listsOwned, f.listsLive, f.pending, f.queued, f.buffersOwned, f.buffersLive, f.buffersPending,
                  f.rssKiB);
      std::fflush(stdout);
      ok = ok && f.listsLive == f.listsOwned + f.pending && f.buffersLive == f.buffersOwned + f.buffersPending;
    }
  }
  scene.glRelease();
  KxDestroyWindow(window);
  CRenderSystem::destroySingleton();
  return ok ? 0 : 1;
}
