#pragma once
// Stroke fonts in the LFF text form: one glyph per "[code] char" header,
// then one polyline per line, vertices "x,y" separated by ";", a vertex
// optionally carrying ",A<bulge>" for an arc from the previous vertex, and
// "C<code>" lines that copy another glyph's strokes.
#include <cstdint>
#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace lff {

struct Vertex {
  double x = 0.0, y = 0.0;
  double bulge = 0.0;  // tan(sweep / 4) of the arc that ends here; > 0 counter-clockwise
};
typedef std::vector<Vertex> Polyline;

struct Glyph {
  std::vector<Polyline> strokes;
  std::vector<uint32_t> copies;  // glyphs whose strokes this one includes
};

struct Font {
  std::vector<std::string> header;  // the "# Key: value" lines, without "# "
  std::map<uint32_t, Glyph> glyphs;
};

// Reads what it can; lines it cannot make sense of are skipped. False only
// when no glyph at all was found.
bool parse(std::istream& in, Font& font);

// The strokes of a glyph with every copied glyph expanded in place; copies
// nested deeper than a few levels, looping back, or past a fixed budget of
// visits and strokes are left out.
std::vector<Polyline> expandedStrokes(const Font& font, uint32_t code);

// Writes the font as a line font in the "QCad II Font" CXF form: straight
// segments as "L x1,y1,x2,y2", counter-clockwise arcs as
// "A cx,cy,r,start,end" and clockwise ones as "AR cx,cy,r,start,end"
// (degrees). Only codes that fit 16 bits are written.
void writeCxf(const Font& font, std::ostream& out);

}  // namespace lff
