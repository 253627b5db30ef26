// Scene lifecycle: binding to a window, GL state, the frame, release.
#include <epoxy/gl.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32System.h"
#include "platform/Win32Window.h"
#include "scene/PixelFormatRequest.h"
#include "support/GLTable.h"

CSceneMgr* CSceneMgr::m_currentScenePtr = nullptr;
int CSceneMgr::g_nPixelFormat = 0;

CSceneMgr::CSceneMgr() {
  m_objSetMgr.setScene(this);
  m_currentScenePtr = nullptr;
}

CSceneMgr::CSceneMgr(const CSceneMgr& other) {
  copyFrom(other);
  m_currentScenePtr = nullptr;
}

CSceneMgr& CSceneMgr::operator=(const CSceneMgr& other) {
  if (this != &other) {
    clearGripPt();
    copyFrom(other);
  }
  return *this;
}

void CSceneMgr::copyFrom(const CSceneMgr& o) {
  m_frustumPlanes = o.m_frustumPlanes;
  m_hWnd = o.m_hWnd;
  m_hRC = o.m_hRC;
  m_hDC = o.m_hDC;
  m_projectPlane = o.m_projectPlane;
  m_viewWidth = o.m_viewWidth;
  m_viewHeight = o.m_viewHeight;
  m_frustumWidth = o.m_frustumWidth;
  m_frustumHeight = o.m_frustumHeight;
  m_dRange = o.m_dRange;
  m_bPerspective = o.m_bPerspective;
  m_orbitStatus = o.m_orbitStatus;
  m_camera = o.m_camera;
  m_cameraStack = o.m_cameraStack;
  m_viewExtras = o.m_viewExtras;
  m_pfnScene2Model = o.m_pfnScene2Model;
  m_bShadow = o.m_bShadow;
  std::copy_n(o.m_lightPos, 4, m_lightPos);
  m_bLightOpen = o.m_bLightOpen;
  std::copy_n(o.m_projMatrix, 16, m_projMatrix);
  std::copy_n(o.m_modelViewMatrix, 16, m_modelViewMatrix);
  std::copy_n(o.m_viewport, 4, m_viewport);
  m_objSetMgr = o.m_objSetMgr;
  // The copied set belongs to this scene, not to the one copied from.
  m_objSetMgr.setScene(this);
  m_snapMode = o.m_snapMode;
  m_bSnapFirstPt = o.m_bSnapFirstPt;
  m_snapFirstPt = o.m_snapFirstPt;
  m_bRotateCenter = o.m_bRotateCenter;
  m_rotateCenter = o.m_rotateCenter;
  m_pickPixelPrecision = o.m_pickPixelPrecision;
  m_bkColor = o.m_bkColor;
  m_hDibRC = o.m_hDibRC;
  m_hDibDC = o.m_hDibDC;
  m_transparent = o.m_transparent;
  m_offsetPos = o.m_offsetPos;
  m_bSupportVBO = o.m_bSupportVBO;
  m_textureMgr = o.m_textureMgr;
  m_bBack = o.m_bBack;
  m_bDrawCoordinate = o.m_bDrawCoordinate;
  m_bDrawGrip = o.m_bDrawGrip;
  m_bAccelerate = o.m_bAccelerate;
  m_bRetainedDraw = o.m_bRetainedDraw;
  m_lastRenderTime = o.m_lastRenderTime;
  // Grip points are owned, so the copy gets its own.
  for (const GripPoint* g : o.m_gripPts) m_gripPts.push_back(new GripPoint(*g));
  m_bPartTrans = o.m_bPartTrans;
  m_partTransIds = o.m_partTransIds;
  m_removedDispLists = o.m_removedDispLists;
  m_removedBuffers = o.m_removedBuffers;
}

CSceneMgr::~CSceneMgr() {
  clearGripPt();
  // Objects hand their display lists to this scene's queue as they go, so
  // they must go while the queue is still here, whatever the member order.
  m_objSetMgr.clear();
  m_removedDispLists.clear();
  m_removedBuffers.clear();
  if (m_currentScenePtr == this) m_currentScenePtr = nullptr;
}

CObjectSetMgr* CSceneMgr::getObjSetMgr() {
  // Hosts call this through scene pointers that may be null. Hide `this`
  // from the optimiser so the null test is not folded away.
  CSceneMgr* self = this;
  asm("" : "+r"(self));
  return self ? &self->m_objSetMgr : nullptr;
}

bool CSceneMgr::choosePixelFormatEx(HDC hDC, int& format) {
  PIXELFORMATDESCRIPTOR want = KxScenePixelFormat(PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER, 8);
  const int chosen = ChoosePixelFormat(hDC, &want);
  if (chosen <= 0) return false;
  PIXELFORMATDESCRIPTOR got = {};
  if (!DescribePixelFormat(hDC, chosen, sizeof got, &got)) return false;
  // Frames end with a swap and every frame clears and uses the stencil.
  if (!(got.dwFlags & PFD_DOUBLEBUFFER) || got.iPixelType != PFD_TYPE_RGBA || got.cDepthBits == 0 ||
      got.cStencilBits == 0)
    return false;
  format = chosen;
  return true;
}

bool CSceneMgr::initializeRender(HWND hWnd, bool bFlag, bool bDrawCoordinate) {
  (void)bFlag;  // both of its historical branches did the same
  if (!IsWindow(hWnd)) return false;
  // Bound before: the old context goes first, with the lists made in it.
  if (m_hRC) glRelease();
  m_bDrawCoordinate = bDrawCoordinate;
  // There is no separate framework window object here: a live window is one.
  HDC dc = GetDC(hWnd);
  if (!dc) return false;
  m_hDC = dc;
  m_hWnd = hWnd;
  if (g_nPixelFormat == 0 && !choosePixelFormatEx(m_hDC, g_nPixelFormat)) {
    g_nPixelFormat = 0;
    return false;
  }
  PIXELFORMATDESCRIPTOR pfd = {};
  DescribePixelFormat(m_hDC, g_nPixelFormat, sizeof pfd, &pfd);
  if (!SetPixelFormat(m_hDC, g_nPixelFormat, &pfd)) return false;
  m_hRC = wglCreateContext(m_hDC);
  if (!m_hRC) return false;
  if (!wglMakeCurrent(m_hDC, m_hRC)) {
    // A context that never became current holds nothing: don't leave it.
    wglDeleteContext(m_hRC);
    m_hRC = nullptr;
    return false;
  }
  m_bSupportVBO = epoxy_has_gl_extension("GL_ARB_vertex_buffer_object") ||
                  epoxy_has_gl_extension("GL_EXT_vertex_buffer_object");
  ReleaseDC(hWnd, dc);
  glInit();
  lightInit();
  setViewport();
  return true;
}

void CSceneMgr::glInit() {
  kgl->ShadeModel(GL_SMOOTH);
  kgl->Enable(GL_DEPTH_TEST);
  kgl->DepthFunc(GL_LEQUAL);
  kgl->DepthRange(0.0, 1.0);
  kgl->LineWidth(1.1f);
  kgl->ClearDepth(1.0);
}

void CSceneMgr::lightInit() {
  if (m_bLightOpen) kgl->Enable(GL_LIGHTING);
  const GLfloat ambient[] = {0.3f, 0.3f, 0.35f, 1.0f};
  const GLfloat diffuse[] = {0.8f, 0.8f, 0.8f, 1.0f};
  const GLfloat specular[] = {0.4f, 0.4f, 0.4f, 1.0f};
  const GLfloat position[] = {100.0f, 100.0f, 100.0f, 0.0f};  // directional
  kgl->Lightfv(GL_LIGHT0, GL_AMBIENT, ambient);
  kgl->Lightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
  kgl->Lightfv(GL_LIGHT0, GL_SPECULAR, specular);
  kgl->Lightfv(GL_LIGHT0, GL_POSITION, position);
  kgl->Enable(GL_LIGHT0);
  kgl->Enable(GL_COLOR_MATERIAL);
  kgl->ColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
  kgl->LightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
  kgl->Materialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
  kgl->Materiali(GL_FRONT_AND_BACK, GL_SHININESS, 64);
  kgl->BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

void CSceneMgr::setLightOpen(bool b) {
  m_bLightOpen = b;
  if (b) kgl->Enable(GL_LIGHTING);
  else kgl->Disable(GL_LIGHTING);
}

void CSceneMgr::setLightpos(const float* p) {
  if (p) std::copy_n(p, 4, m_lightPos);
}

void CSceneMgr::deleteQueuedLists() {
  for (unsigned int id : m_removedDispLists)
    if (kgl->IsList(id)) kgl->DeleteLists(id, 1);
  m_removedDispLists.clear();
  for (unsigned int id : m_removedBuffers)
    if (kgl->IsBuffer(id)) kgl->DeleteBuffers(1, &id);
  m_removedBuffers.clear();
}

void CSceneMgr::render() {
  deleteQueuedLists();

  m_currentScenePtr = this;
  setViewport();
  kgl->ClearColor(m_bkColor.r / 255.0f, m_bkColor.g / 255.0f, m_bkColor.b / 255.0f, 1.0f);
  kgl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
  m_camera.look();
  clearGripPt();
  m_objSetMgr.render();
  if (m_bDrawCoordinate) drawCoordinate();
}

void CSceneMgr::finish() {
  HDC dc = GetDC(m_hWnd);
  if (dc) {
    SwapBuffers(dc);
    ReleaseDC(m_hWnd, dc);
    kgl->Finish();
  }
  m_lastRenderTime = timeGetTime();
}

void CSceneMgr::closeHRC() {
  if (wglGetCurrentContext()) wglMakeCurrent(nullptr, nullptr);
}

void CSceneMgr::restoreHRC() {
  HDC dc = GetDC(m_hWnd);
  if (dc) wglMakeCurrent(dc, m_hRC);
  ReleaseDC(m_hWnd, dc);
}

void CSceneMgr::glRelease() {
  HDC dc = GetDC(m_hWnd);
  if (dc) wglMakeCurrent(dc, m_hRC);
  ReleaseDC(m_hWnd, dc);
  m_objSetMgr.releaseDispList();
  // The context is about to go, and its lists and buffers with it.
  m_removedDispLists.clear();
  m_removedBuffers.clear();
  wglDeleteContext(m_hRC);
  m_hRC = nullptr;
  ReleaseDC(m_hWnd, m_hDC);
}

void CSceneMgr::SetModelCam() {
  if (m_pfnScene2Model) m_pfnScene2Model(this);
}

bool CSceneMgr::GetViewRect(CRect& rc) const {
  if (!IsWindow(m_hWnd)) return false;
  rc = CRect(0, 0, m_viewWidth, m_viewHeight);
  return true;
}

void CSceneMgr::addGripPt(GripPoint* grip) {
  if (grip) m_gripPts.push_back(grip);
}

void CSceneMgr::clearGripPt() {
  for (GripPoint* g : m_gripPts) delete g;
  m_gripPts.clear();
}

GripPoint* CSceneMgr::findGripPt(const CPoint& pt) const {
  GripPoint* best = nullptr;
  long bestDist = LONG_MAX;
  for (GripPoint* g : m_gripPts) {
    const long dx = std::labs(long(g->pt.x) - pt.x), dy = std::labs(long(g->pt.y) - pt.y);
    if (dx > m_pickPixelPrecision || dy > m_pickPixelPrecision) continue;
    const long d = dx * dx + dy * dy;
    if (d < bestDist) {
      best = g;
      bestDist = d;
    }
  }
  return best;
}

void CSceneMgr::AddPartTransId(unsigned int id) {
  if (id == 0 || std::find(m_partTransIds.begin(), m_partTransIds.end(), id) != m_partTransIds.end()) return;
  m_partTransIds.push_back(id);
}

void CSceneMgr::DelPartTransId(unsigned int id) {
  auto it = std::find(m_partTransIds.begin(), m_partTransIds.end(), id);
  if (it != m_partTransIds.end()) m_partTransIds.erase(it);
}
