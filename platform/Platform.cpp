// What every window system shares: configs by format, contexts, binding.
#include "platform/Platform.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace kxplatform {
namespace {

EGLint attrib(EGLDisplay dpy, EGLConfig cfg, EGLint name) {
  EGLint v = 0;
  eglGetConfigAttrib(dpy, cfg, name, &v);
  return v;
}

}  // namespace

bool hasClientExtension(const char* name) { return epoxy_has_egl_extension(EGL_NO_DISPLAY, name); }

EGLDisplay initialisedDisplay(EGLDisplay dpy) {
  if (dpy == EGL_NO_DISPLAY) return EGL_NO_DISPLAY;
  EGLint major = 0, minor = 0;
  if (!eglInitialize(dpy, &major, &minor)) return EGL_NO_DISPLAY;
  return dpy;
}

void SwapChain::unbindIfCurrent(EGLSurface surface) const {
  if (surface == EGL_NO_SURFACE) return;
  if (eglGetCurrentSurface(EGL_DRAW) == surface || eglGetCurrentSurface(EGL_READ) == surface)
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

const std::vector<std::pair<FormatKey, EGLConfig>>& Platform::formats(long visual) {
  for (const auto& entry : m_formats)
    if (entry.first == visual) return entry.second;
  std::vector<std::pair<FormatKey, EGLConfig>> list;
  const EGLint attrs[] = {EGL_SURFACE_TYPE, m_surfaceBit, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                          EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER, EGL_NONE};
  EGLint count = 0;
  if (eglChooseConfig(m_display, attrs, nullptr, 0, &count) && count > 0) {
    std::vector<EGLConfig> all(static_cast<size_t>(count));
    eglChooseConfig(m_display, attrs, all.data(), count, &count);
    all.resize(static_cast<size_t>(std::max<EGLint>(count, 0)));
    // EGL sorts better configs (no caveat, fewer extras) first: the first
    // config of each format is the one that supplies it.
    for (EGLConfig cfg : all) {
      if (visual >= 0 && attrib(m_display, cfg, EGL_NATIVE_VISUAL_ID) != visual) continue;
      FormatKey key;
      key.red = attrib(m_display, cfg, EGL_RED_SIZE);
      key.green = attrib(m_display, cfg, EGL_GREEN_SIZE);
      key.blue = attrib(m_display, cfg, EGL_BLUE_SIZE);
      key.alpha = attrib(m_display, cfg, EGL_ALPHA_SIZE);
      key.depth = attrib(m_display, cfg, EGL_DEPTH_SIZE);
      key.stencil = attrib(m_display, cfg, EGL_STENCIL_SIZE);
      key.samples = attrib(m_display, cfg, EGL_SAMPLES);
      const bool seen = std::any_of(list.begin(), list.end(), [&key](const auto& f) { return f.first == key; });
      if (!seen) list.emplace_back(key, cfg);
    }
  }
  m_formats.emplace_back(visual, std::move(list));
  return m_formats.back().second;
}

EGLConfig Platform::configFor(const FormatKey& key, long visual) {
  for (const auto& f : formats(visual))
    if (f.first == key) return f.second;
  return nullptr;
}

EGLContext Platform::createContext(EGLConfig config) const {
  if (!config || !eglBindAPI(EGL_OPENGL_API)) return EGL_NO_CONTEXT;
  // No version asked for: the driver's compatibility profile.
  return eglCreateContext(m_display, config, EGL_NO_CONTEXT, nullptr);
}

void Platform::destroyContext(EGLContext ctx) const {
  if (ctx == EGL_NO_CONTEXT) return;
  if (eglGetCurrentContext() == ctx) eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(m_display, ctx);
}

bool Platform::makeCurrent(SwapChain& chain, EGLContext ctx) const {
  EGLSurface s = chain.drawSurface();
  return s != EGL_NO_SURFACE && eglMakeCurrent(m_display, s, s, ctx);
}

void readCurrentPixels(int width, int height, std::vector<uint8_t>& rgba) {
  if (width <= 0 || height <= 0) {
    rgba.clear();
    return;
  }
  const size_t row = size_t(width) * 4;
  rgba.resize(row * size_t(height));
  GLint alignment = 4;
  glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
  glPixelStorei(GL_PACK_ALIGNMENT, alignment);
  for (int y = 0; y < height / 2; ++y)
    std::swap_ranges(&rgba[row * size_t(y)], &rgba[row * size_t(y)] + row, &rgba[row * size_t(height - 1 - y)]);
}

}  // namespace kxplatform
