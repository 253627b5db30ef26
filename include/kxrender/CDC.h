#pragma once
// A device context object owning its handle: a memory DC made here is
// deleted with the object.
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

class KXRENDER_API CDC {
 public:
  CDC() = default;
  CDC(const CDC&) = delete;
  CDC& operator=(const CDC&) = delete;
  virtual ~CDC() { DeleteDC(); }

  HDC GetSafeHdc() const { return m_hDC; }
  bool Attach(HDC hDC);
  HDC Detach();
  // A memory DC compatible with pDC (or with the screen when null).
  bool CreateCompatibleDC(CDC* pDC);
  bool DeleteDC();
  bool BitBlt(int x, int y, int width, int height, CDC* src, int srcX, int srcY, DWORD rop);

  HDC m_hDC = nullptr;
};
