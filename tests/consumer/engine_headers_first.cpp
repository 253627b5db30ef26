// Engine headers first: nothing they define may break the host's headers.
#include "kxrender_all.h"
#include "host_system_headers.h"

int kxConsumerEngineFirst() {
  CSceneMgr scene;
  BOOL xBool = 0;  // X11's Xmd.h BOOL, not the engine's
  (void)xBool;
  return scene.getWndHandle() ? 1 : 0;
}
