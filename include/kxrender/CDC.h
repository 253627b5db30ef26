#pragma once
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// A device context object owning its handle: the DC it holds (made here or
/// attached) is deleted with the object unless Detach() hands it back first.
class KXRENDER_API CDC {
 public:
  CDC() = default;
  CDC(const CDC&) = delete;
  CDC& operator=(const CDC&) = delete;
  virtual ~CDC() { DeleteDC(); }

  /// The DC held, null when none.
  HDC GetSafeHdc() const { return m_hDC; }
  /// Takes ownership of hDC. False, changing nothing, when hDC is null or a
  /// DC is held already.
  bool Attach(HDC hDC);
  /// Gives up the DC without deleting it: the caller owns it now (null when
  /// none was held).
  HDC Detach();
  /// Makes and holds a new off-screen memory DC with a 1 x 1 bitmap of its
  /// own; pDC (may be null) is accepted for the familiar call but not used.
  /// False when one is held already or none can be made.
  bool CreateCompatibleDC(CDC* pDC);
  /// Deletes the DC held (a memory DC); false when none was held or it was
  /// not a memory DC. Either way none is held afterwards.
  bool DeleteDC();
  /// Copies a width x height rectangle (pixels, from the top left) at
  /// (srcX, srcY) of src's bitmap to (x, y) of this DC's bitmap, clipped to
  /// both. Only rop SRCCOPY between two memory DCs; false otherwise.
  bool BitBlt(int x, int y, int width, int height, CDC* src, int srcX, int srcY, DWORD rop);

  /// The DC held; prefer GetSafeHdc(), Attach() and Detach().
  HDC m_hDC = nullptr;
};
