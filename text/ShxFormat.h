#pragma once
// Byte layout shared by the SHX reader and the shape compiler.
//
//  shapes 1.0/1.1: signature, u16 first, u16 last, u16 count, then count
//                  index records {u16 number, u16 length}, then the shape
//                  definitions in index order.
//  unifont 1.0:    signature, u32 count (font information included),
//                  u16 information length, the information (name, 0, above,
//                  below, modes, encoding, type, 0), then count - 1 records
//                  {u16 number, u16 length, definition}.
//  bigfont 1.0:    signature, u16 index entries, u16 shape count, u16 range
//                  count, ranges {u16 first, u16 last} of escape bytes, then
//                  index entries {u16 number, u16 length, u32 file offset};
//                  entries of length 0 are unused.
// A definition is the shape name, a 0 byte, then the drawing bytes
// ending with 0. Integers are little-endian; two-byte shape numbers inside
// drawing bytes are big-endian (high byte first).
#include <cstddef>

namespace shx {
constexpr char kShapes10[] = "AutoCAD-86 shapes 1.0\r\n\x1a";
constexpr char kShapes11[] = "AutoCAD-86 shapes 1.1\r\n\x1a";
constexpr char kUnifont[] = "AutoCAD-86 unifont 1.0\r\n\x1a";
constexpr char kBigfont[] = "AutoCAD-86 bigfont 1.0\r\n\x1a";
constexpr size_t signatureLength(const char* s) {
  size_t n = 0;
  while (s[n]) ++n;
  return n;
}

// Special codes of the drawing bytes (a byte with length nibble 0).
enum Code {
  kEnd = 0,
  kPenDown = 1,
  kPenUp = 2,
  kDivide = 3,
  kMultiply = 4,
  kPush = 5,
  kPop = 6,
  kSubshape = 7,
  kDisplace = 8,
  kDisplaceList = 9,
  kOctantArc = 10,
  kFractionArc = 11,
  kBulgeArc = 12,
  kBulgeList = 13,
  kVerticalOnly = 14
};
}  // namespace shx
