#pragma once
// The CXF line-font text form: glyph headers "[hex code] char" followed by
// "L x1,y1,x2,y2" lines and "A"/"AR cx,cy,r,start,end" arcs (degrees,
// counter-clockwise for "A", clockwise for "AR"), each glyph ending at a
// blank line. Works on streams so that files and memory read alike.
#include <cstdint>
#include <istream>
#include <map>
#include <vector>

#include "kxrender/AcGePoint3d.h"

namespace kxtext {

typedef std::vector<std::vector<AcGePoint3d>> Contours;
typedef std::map<uint16_t, int32_t> CxfIndex;

// Maps each glyph's code to the byte offset of its header line. Offsets are
// counted as the bytes are read, so LF and CRLF files index alike. Headers
// whose code is not hexadecimal or does not fit 16 bits are skipped; a
// repeated code keeps its last header. Returns the number of entries.
size_t readCxfIndex(std::istream& in, CxfIndex& index);

// Appends the contours of the glyph whose header starts at `pos`: each "L"
// line one contour of two points, each arc one contour sampled one segment
// per 30 degrees of sweep (at least one). Reading stops at a blank line, at
// the next header or at the end. Lines that are not understood, and
// numbers that are not finite, are skipped.
void readCxfGlyph(std::istream& in, int32_t pos, Contours& contours);

// The samples of an arc: centre, radius, start and end in degrees, and the
// direction ("AR" runs clockwise from start to end).
std::vector<AcGePoint3d> sampleCxfArc(double cx, double cy, double r, double startDeg, double endDeg,
                                      bool clockwise);

}  // namespace kxtext
