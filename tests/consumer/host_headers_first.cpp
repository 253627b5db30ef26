// Host headers first: their macros (None, Status, Bool, Always, ...) and
// types (BOOL, BYTE) must not break the engine's headers.
#include "host_system_headers.h"
#include "kxrender_all.h"

int kxConsumerHostFirst() {
  HWND window = KxCreateOffscreenWindow(8, 8);
  Display* display = nullptr;
  (void)display;
  return window ? 1 : 0;
}
