#pragma once
// SHX shape fonts: the three binary kinds ("AutoCAD-86 shapes 1.0/1.1",
// "unifont 1.0", "bigfont 1.0") read into shapes whose strokes become
// contours for the text drawer. Font files are read once per path and kept
// for the life of the process (released at exit).
#include <memory>
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/CString.h"

class CShxFont;

// A contour list: polylines of points with z = 0.
typedef std::vector<std::vector<AcGePoint3d>> ShxContourList;

// Base of the drawable pieces a shape is made of.
class AcDbEntity {
 public:
  virtual ~AcDbEntity() = default;
  // Appends this entity's points to `contours` as one or more contours.
  virtual void appendContours(ShxContourList& contours) const = 0;
};

// One pen-down stroke: connected points in font units (arcs already
// sampled). A dot (pen down, no travel) holds the same point twice so that
// it still draws as a line strip.
class CShxPolyline : public AcDbEntity {
 public:
  std::vector<AcGePoint3d> m_points;
  void appendContours(ShxContourList& contours) const override;
};

// The outcome of interpreting one shape: its strokes and where the pen
// stopped (the advance to the next character).
class CShape {
 public:
  CShape();
  ~CShape();
  CShape(CShape&&) noexcept;
  CShape& operator=(CShape&&) noexcept;
  CShape(const CShape&) = delete;
  CShape& operator=(const CShape&) = delete;

  void Clear();
  int GetEntityCount() const { return static_cast<int>(m_entities.size()); }
  // Null for an index out of range.
  const AcDbEntity* GetEntity(int index) const;
  void AddEntity(std::unique_ptr<AcDbEntity> entity);
  // Appends every entity's contours, in drawing order.
  void appendContours(ShxContourList& contours) const;

  // The pen position after the last command, in font units.
  AcGePoint3d m_endPoint;

 private:
  std::vector<std::unique_ptr<AcDbEntity>> m_entities;
};

class CShapeInfo {
 public:
  enum FontKind { kNone = 0, kShapes = 1, kUnifont = 2, kBigfont = 3 };
  // Kinds of code passed to GetShape.
  enum CodeKind {
    kSingleByte = 1,  // one byte of the active code page
    kDoubleByte = 2,  // lead byte * 256 + trail byte of the active code page
    kUnicode = 3      // a Unicode code point
  };

  CShapeInfo();
  ~CShapeInfo();

  // Loads the font at `path` (or takes it from the process-wide cache).
  // False when the file is missing, unreadable or not an SHX font.
  bool Init(const CString& path);
  bool IsValid() const { return m_font != nullptr; }
  FontKind GetFontKind() const;
  // Heights above and below the baseline from the font's header shape
  // (0 when the font has none).
  int GetAbove() const;
  int GetBelow() const;

  // Interprets the shape of `code` into `shape` (cleared first). A unifont
  // is looked up by Unicode (double-byte codes are converted from the active
  // code page); a big font by its own two-byte codes (Unicode converted to
  // code page 936); a shapes file by its shape numbers. False when the font
  // is not loaded or has no such shape. `vertical` draws the commands meant
  // for vertical text only.
  bool GetShape(unsigned code, int kind, CShape& shape, bool vertical = false) const;

  // Drops every cached font (later Init calls read the files again).
  static void ClearCache();

 private:
  std::shared_ptr<const CShxFont> m_font;
};
