// Off-screen frames: the shared bitmap and each scene's context on it, the
// print queue.
#include <epoxy/gl.h>

#include <algorithm>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"
#include "scene/PixelFormatRequest.h"
#include "support/GLTable.h"

DIBSection CSceneMgr::m_renderDib;
std::stack<int, std::deque<int>> CSceneMgr::m_printQue;

void CSceneMgr::popPrintQue() {
  if (!m_printQue.empty()) m_printQue.pop();
}

void CSceneMgr::releaseListsInCurrent() {
  HGLRC current = wglGetCurrentContext();
  if (!current || (current != m_hRC && current != m_hDibRC)) return;
  deleteQueuedLists();
  m_objSetMgr.releaseDispList();
}

bool CSceneMgr::openBitmapContext(HDC dc, HGLRC& rc) {
  PIXELFORMATDESCRIPTOR pfd = KxScenePixelFormat(PFD_DRAW_TO_BITMAP | PFD_SUPPORT_GDI | PFD_SUPPORT_OPENGL, 0);
  const int format = ChoosePixelFormat(dc, &pfd);
  if (format == 0 || !SetPixelFormat(dc, format, &pfd)) return false;
  rc = wglCreateContext(dc);
  if (!rc) return false;
  if (!wglMakeCurrent(dc, rc)) {
    wglDeleteContext(rc);
    rc = nullptr;
    return false;
  }
  glInit();
  lightInit();
  return true;
}

void CSceneMgr::dropBitmapContext() {
  if (!m_hDibRC) return;
  if (wglMakeCurrent(m_hDibDC, m_hDibRC)) releaseListsInCurrent();
  wglDeleteContext(m_hDibRC);
  m_hDibRC = nullptr;
}

void CSceneMgr::setDibSize(int w, int h) {
  if (w <= 0 || h <= 0) return;
  if (!m_renderDib.IsCreated()) m_renderDib.Create(std::max(w, h), std::min(w, h), 24);
  // Lists made in the window (or an earlier bitmap context) go with it.
  if (m_hDibRC) {
    dropBitmapContext();
  } else if (m_hRC) {
    restoreHRC();
    releaseListsInCurrent();
  }
  m_hDibDC = m_renderDib.GetDC() ? m_renderDib.GetDC()->GetSafeHdc() : nullptr;
  if (m_hDibDC) openBitmapContext(m_hDibDC, m_hDibRC);
}

void CSceneMgr::drawImageRegion(int w, int h, int x, int y, int tw, int th, int spanW, int spanH, bool tripod) {
  if (tw <= 0 || th <= 0 || spanW <= 0 || spanH <= 0) return;
  // Spans are counted from the picture's lower left corner, where GL's
  // window coordinates start.
  const int below = h - y - th;  // rows of the picture under the region
  const int spanBelow = below - below % spanH;
  const int sx = x - x % spanW, sw = std::min(spanW, w - sx);
  const int sh = std::min(spanH, h - spanBelow), sy = h - spanBelow - sh;
  setImageProjection(w, h, sx, sy, sw, sh, false);
  kgl->Viewport(sx - x, (y + th) - (sy + sh), sw, sh);
  kgl->ClearColor(m_bkColor.r / 255.0f, m_bkColor.g / 255.0f, m_bkColor.b / 255.0f, 1.0f);
  kgl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
  m_camera.look();
  // Objects outside the region itself are culled.
  m_regionSize[0] = tw;
  m_regionSize[1] = th;
  m_objSetMgr.render();
  m_regionSize[0] = m_regionSize[1] = 0;
  // In the picture's lower left corner, 100 pixels square: only the regions
  // that show part of it draw it, placed where it falls in the picture.
  if (!tripod || x >= 100 || y + th <= h - 100) return;
  drawTripod(-x, -(h - y - th));
  setImageProjection(w, h, sx, sy, sw, sh, false);
  kgl->Viewport(sx - x, (y + th) - (sy + sh), sw, sh);
  m_camera.look();
}

namespace {
// The frame drawn into the bitmap's surface, into its bits: both are
// bottom-up with rows of the total width.
void readFrameInto(DIBSection& dib) {
  GLint alignment = 4;
  glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glReadPixels(0, 0, GLsizei(dib.GetTotalWidth()), GLsizei(dib.Height()), dib.GetBitCount() == 32 ? GL_BGRA : GL_BGR,
               GL_UNSIGNED_BYTE, dib.GetBits());
  glPixelStorei(GL_PACK_ALIGNMENT, alignment);
}
}  // namespace

void CSceneMgr::renderToDib() {
  if (!m_hDibRC || !m_renderDib.IsCreated() || !wglMakeCurrent(m_hDibDC, m_hDibRC)) return;
  m_currentScenePtr = this;
  deleteQueuedLists();
  const int w = int(m_renderDib.Width()), h = int(m_renderDib.Height());
  drawImageRegion(w, h, 0, 0, w, h, w, h, true);
  readFrameInto(m_renderDib);
}

void CSceneMgr::ClearDibData() {
  dropBitmapContext();
  m_hDibDC = nullptr;
  restoreHRC();
  m_renderDib.Close();
}
