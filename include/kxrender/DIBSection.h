#pragma once
// A device-independent bitmap in memory, with the memory DC that holds it:
// where a scene draws its view off-screen for printing and export. Rows are
// GetTotalWidth() pixels long (the width rounded up to a multiple of 4),
// stored bottom-up, blue-green-red for 24 bits a pixel (and a fourth byte
// for 32).
#include "kxrender/CDC.h"
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

class KXRENDER_API DIBSection {
 public:
  DIBSection() = default;
  DIBSection(const DIBSection& other);
  DIBSection& operator=(const DIBSection& other);
  virtual ~DIBSection() { Close(); }

  // Makes the bitmap. When that fails, both sides shrink to 90 % and it is
  // tried again while both stay at least 1001: a big request degrades to the
  // largest bitmap that can be had. False when none could be made.
  bool Create(int width, int height, int bitCount);
  void Close();
  bool IsCreated() const { return m_hBitmap != nullptr; }
  // Copies the image (and makes this a bitmap of the same size).
  bool Copy(const DIBSection& other);

  // Copies the whole bitmap from its (x, y) to (0, 0) of dc.
  void Draw(CDC* dc, int x, int y);
  // Pixels by (x, y) from the top left, as Windows colour values (red in
  // the low byte). Outside the bitmap: SetPixel does nothing, GetPixel
  // gives 0.
  void SetPixel(int x, int y, DWORD color);
  DWORD GetPixel(int x, int y) const;
  // Fills a rectangle, clipped to the bitmap, with one colour.
  void PatBlt(int x, int y, int width, int height, DWORD color);
  // dst becomes a w x h bitmap of this image scaled (nearest pixel).
  bool ResizeImage(DIBSection& dst, int w, int h) const;

  HBITMAP GetHandle() const { return m_hBitmap; }
  void* GetBits() const { return m_pBits; }
  unsigned long Width() const { return m_width; }
  unsigned long Height() const { return m_height; }
  CDC* GetDC() const { return m_pDC; }
  unsigned long GetTotalWidth() const { return m_totalWidth; }
  unsigned long GetBitCount() const { return m_bitCount; }
  // Bytes from one row to the next.
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

// Writes the bitmap as an RGB PNG file (rows from the top); false for a
// bitmap not created or a file that cannot be written.
KXRENDER_API bool KxWriteDibPng(const DIBSection& dib, const char* path);
