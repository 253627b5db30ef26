#pragma once
#include "kxrender/CDC.h"
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// A device-independent bitmap in memory, with the memory DC that holds it:
/// where a scene draws its view off-screen for printing and export. Rows are
/// GetTotalWidth() pixels long (the width rounded up to a multiple of 4),
/// stored bottom-up, blue-green-red for 24 bits a pixel (and a fourth byte
/// for 32). The object owns its bitmap and DC; both go with Close() or the
/// destructor.
class KXRENDER_API DIBSection {
 public:
  DIBSection() = default;
  ///@{
  /// A deep copy of other's pixels (see Copy()); copying an empty bitmap
  /// gives an empty one.
  DIBSection(const DIBSection& other);
  DIBSection& operator=(const DIBSection& other);
  ///@}
  virtual ~DIBSection() { Close(); }

  /// Makes a width x height bitmap (pixels) of bitCount bits a pixel (24 or
  /// 32), zero-filled, dropping any earlier one. When that fails, both sides
  /// shrink to 90 % and it is tried again while both stay at least 1001: a
  /// big request degrades to the largest bitmap that can be had, so check
  /// Width() and Height() afterwards. False, with nothing created, when none
  /// could be made.
  bool Create(int width, int height, int bitCount);
  /// Frees the bitmap and its DC; the object is empty again (sizes 0).
  void Close();
  /// True while the object holds a bitmap.
  bool IsCreated() const { return m_hBitmap != nullptr; }
  /// Makes this a bitmap of other's size and depth and copies its pixels;
  /// when other is empty this is closed. False (this left empty) when the
  /// bitmap cannot be made.
  bool Copy(const DIBSection& other);

  /// Copies the whole bitmap from its (x, y) to (0, 0) of dc, clipped to
  /// both; dc must be a memory DC. Nothing happens when dc is null or this
  /// is empty.
  void Draw(CDC* dc, int x, int y);
  ///@{
  /// Pixels by (x, y) from the top left, as Windows colour values (red in
  /// the low byte); a fourth byte is left alone. Outside the bitmap, or with
  /// none: SetPixel does nothing, GetPixel gives 0.
  void SetPixel(int x, int y, DWORD color);
  DWORD GetPixel(int x, int y) const;
  ///@}
  /// Fills a rectangle (pixels, from the top left), clipped to the bitmap,
  /// with one colour.
  void PatBlt(int x, int y, int width, int height, DWORD color);
  /// dst becomes a w x h bitmap of this image scaled (nearest pixel), with
  /// no shrinking retry. False when this is empty, dst is this object or dst
  /// cannot be made.
  bool ResizeImage(DIBSection& dst, int w, int h) const;

  /// The bitmap handle, null when empty; owned by this object.
  HBITMAP GetHandle() const { return m_hBitmap; }
  /// The first byte of the bottom row, null when empty; owned by this object.
  void* GetBits() const { return m_pBits; }
  ///@{
  /// Size in pixels as made (0 when empty).
  unsigned long Width() const { return m_width; }
  unsigned long Height() const { return m_height; }
  ///@}
  /// The memory DC the bitmap is selected in, null when empty; owned by this
  /// object.
  CDC* GetDC() const { return m_pDC; }
  /// Row length in pixels: Width() rounded up to a multiple of 4.
  unsigned long GetTotalWidth() const { return m_totalWidth; }
  /// Bits a pixel: 24 or 32 (0 when empty).
  unsigned long GetBitCount() const { return m_bitCount; }
  /// Bytes from one row to the next.
  unsigned long GetRowBytes() const { return m_totalWidth * (m_bitCount / 8); }

 private:
  // One attempt at the given size, without shrinking.
  bool createOnce(int width, int height, int bitCount);
  unsigned char* pixelAt(int x, int y) const;

  HBITMAP m_hBitmap = nullptr;
  HGDIOBJ m_hOldBitmap = nullptr;
  void* m_pBits = nullptr;
  unsigned long m_width = 0;
  unsigned long m_height = 0;
  CDC* m_pDC = nullptr;
  unsigned long m_totalWidth = 0;
  BITMAPINFOHEADER m_bmi = {};
  unsigned long m_bitCount = 0;
};

/// Writes the bitmap as an RGB PNG file (rows from the top); false for a
/// bitmap not created or a file that cannot be written.
KXRENDER_API bool KxWriteDibPng(const DIBSection& dib, const char* path);
