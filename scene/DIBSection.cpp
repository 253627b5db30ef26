// The off-screen bitmap: creation with its shrinking retry, pixel access.
#include "kxrender/DIBSection.h"

#include <algorithm>
#include <cstring>

#include "platform/Win32Window.h"

bool CDC::Attach(HDC hDC) {
  if (m_hDC || !hDC) return false;
  m_hDC = hDC;
  return true;
}

HDC CDC::Detach() {
  HDC h = m_hDC;
  m_hDC = nullptr;
  return h;
}

bool CDC::CreateCompatibleDC(CDC* pDC) { return Attach(::CreateCompatibleDC(pDC ? pDC->m_hDC : nullptr)); }

bool CDC::DeleteDC() {
  HDC h = Detach();
  return h && ::DeleteDC(h);
}

bool CDC::BitBlt(int x, int y, int width, int height, CDC* src, int srcX, int srcY, DWORD rop) {
  return src && ::BitBlt(m_hDC, x, y, width, height, src->m_hDC, srcX, srcY, rop);
}

DIBSection::DIBSection(const DIBSection& other) { Copy(other); }

DIBSection& DIBSection::operator=(const DIBSection& other) {
  if (this != &other) Copy(other);
  return *this;
}

bool DIBSection::Create(int width, int height, int bitCount) {
  while (!createOnce(width, height, bitCount)) {
    width = width * 9 / 10;
    height = height * 9 / 10;
    if (width < 1001 || height < 1001) return false;
  }
  return true;
}

bool DIBSection::createOnce(int width, int height, int bitCount) {
  Close();
  if (width <= 0 || height <= 0) return false;
  // Rows as long as the width rounded up to a multiple of 4 pixels.
  const unsigned long rowLength = ((unsigned long)(width) * 8 + 31) / 8 & ~3ul;
  m_bmi = BITMAPINFOHEADER{};
  m_bmi.biSize = sizeof(BITMAPINFOHEADER);
  m_bmi.biWidth = LONG(rowLength);
  m_bmi.biHeight = height;
  m_bmi.biPlanes = 1;
  m_bmi.biBitCount = WORD(bitCount);
  m_bmi.biCompression = BI_RGB;
  m_width = (unsigned long)(width);
  m_height = (unsigned long)(height);
  m_totalWidth = rowLength;
  m_bitCount = (unsigned long)(bitCount);

  m_pDC = new CDC;
  BITMAPINFO info = {};
  info.bmiHeader = m_bmi;
  if (m_pDC->CreateCompatibleDC(nullptr))
    m_hBitmap = CreateDIBSection(m_pDC->GetSafeHdc(), &info, DIB_RGB_COLORS, &m_pBits, nullptr, 0);
  if (m_hBitmap) m_hOldBitmap = SelectObject(m_pDC->GetSafeHdc(), m_hBitmap);
  if (m_hOldBitmap) return true;
  Close();
  return false;
}

void DIBSection::Close() {
  if (m_pDC) {
    if (m_hOldBitmap) SelectObject(m_pDC->GetSafeHdc(), m_hOldBitmap);
    delete m_pDC;  // deletes the memory DC
  }
  if (m_hBitmap) DeleteObject(m_hBitmap);
  m_pDC = nullptr;
  m_hBitmap = nullptr;
  m_hOldBitmap = nullptr;
  m_pBits = nullptr;
  m_width = m_height = m_totalWidth = m_bitCount = 0;
  m_bmi = BITMAPINFOHEADER{};
}

bool DIBSection::Copy(const DIBSection& other) {
  if (this == &other) return true;
  if (!other.IsCreated()) {
    Close();
    return true;
  }
  if (!createOnce(int(other.m_width), int(other.m_height), int(other.m_bitCount))) return false;
  std::memcpy(m_pBits, other.m_pBits, size_t(GetRowBytes()) * m_height);
  return true;
}

void DIBSection::Draw(CDC* dc, int x, int y) {
  if (dc && m_pDC) dc->BitBlt(0, 0, int(m_width), int(m_height), m_pDC, x, y, SRCCOPY);
}

unsigned char* DIBSection::pixelAt(int x, int y) const {
  if (!m_pBits || x < 0 || y < 0 || (unsigned long)(x) >= m_width || (unsigned long)(y) >= m_height) return nullptr;
  const size_t row = m_height - 1 - (unsigned long)(y);  // bottom-up
  return static_cast<unsigned char*>(m_pBits) + row * GetRowBytes() + size_t(x) * (m_bitCount / 8);
}

void DIBSection::SetPixel(int x, int y, DWORD color) {
  unsigned char* p = pixelAt(x, y);
  if (!p) return;
  p[0] = (color >> 16) & 0xFF;  // blue
  p[1] = (color >> 8) & 0xFF;
  p[2] = color & 0xFF;
}

DWORD DIBSection::GetPixel(int x, int y) const {
  const unsigned char* p = pixelAt(x, y);
  return p ? DWORD(p[2]) | DWORD(p[1]) << 8 | DWORD(p[0]) << 16 : 0;
}

void DIBSection::PatBlt(int x, int y, int width, int height, DWORD color) {
  const int x0 = std::max(x, 0), y0 = std::max(y, 0);
  const long x1 = std::min<long>(long(x) + width, long(m_width)), y1 = std::min<long>(long(y) + height, long(m_height));
  for (int j = y0; j < y1; ++j)
    for (int i = x0; i < x1; ++i) SetPixel(i, j, color);
}

bool DIBSection::ResizeImage(DIBSection& dst, int w, int h) const {
  if (!IsCreated() || &dst == this || !dst.createOnce(w, h, int(m_bitCount))) return false;
  for (int j = 0; j < h; ++j)
    for (int i = 0; i < w; ++i)
      dst.SetPixel(i, j, GetPixel(int((unsigned long)(i) * m_width / (unsigned long)(w)),
                                  int((unsigned long)(j) * m_height / (unsigned long)(h))));
  return true;
}
