// The CXF line-font reader: the index over LF and CRLF files, and glyph
// lines (strokes, arcs in both directions, arcs through 0 degrees).
#include <gtest/gtest.h>

#include <sstream>

#include "text/CxfReader.h"
#include "text/TextTestUtil.h"

using namespace kxtext;

TEST(CxfReader, IndexPointsAtEachHeaderWithLfOrCrlf) {
  for (const char* eol : {"\n", "\r\n"}) {
    const std::string font = texttest::smallCxf(eol);
    // Reading from each position gives that glyph alone, up to its blank
    // line, the next header or the end of the file.
    const struct { const char* text; const char* header; uint16_t code; size_t contours; } rows[] = {
        {"", "[0041]", 0x41, 3},
        {"", "[4E2D]", 0x4e2d, 1},
        {"", "[0028]", 0x28, 1},
        {"[zz] bad\n[12345] too big\n[4e2d] again\n", "[4e2d] again", 0x4e2d, 0},  // the last one wins
    };
    for (const auto& r : rows) {
      const std::string text = font + r.text;
      std::istringstream in(text);
      CxfIndex index;
      EXPECT_EQ(readCxfIndex(in, index), 3u) << r.header;
      EXPECT_EQ(index[r.code], int32_t(text.find(r.header))) << r.header << " EOL " << strlen(eol);
      Contours c;
      readCxfGlyph(in, index[r.code], c);
      EXPECT_EQ(c.size(), r.contours) << r.header << " EOL " << strlen(eol);
    }
  }
}

TEST(CxfReader, ArcsOneSegmentPer30DegreesBothWays) {
  const struct {
    const char* line;
    size_t points;
    AcGePoint3d first, last;
  } rows[] = {
      {"A 0,0,1,0,45", 2, {1, 0, 0}, {M_SQRT1_2, M_SQRT1_2, 0}},
      {"A 0,0,1,0,90", 4, {1, 0, 0}, {0, 1, 0}},
      {"A 0,0,1,350,10", 2, {cos(-M_PI / 18), sin(-M_PI / 18), 0}, {cos(M_PI / 18), sin(M_PI / 18), 0}},
      {"A 0,0,2,315,45", 4, {M_SQRT2, -M_SQRT2, 0}, {M_SQRT2, M_SQRT2, 0}},
      {"AR 0,0,1,90,0", 4, {0, 1, 0}, {1, 0, 0}},    // clockwise, the short way
      {"AR 0,0,1,10,350", 2, {cos(M_PI / 18), sin(M_PI / 18), 0}, {cos(-M_PI / 18), sin(-M_PI / 18), 0}},
      {"A 1,2", 0, {}, {}},                           // too few fields
      {"L 0,0,nan,1", 0, {}, {}},                     // not finite
      {"X 0,0,1,1", 0, {}, {}},                       // unknown kind
  };
  for (const auto& r : rows) {
    std::istringstream in(std::string("[0041]\n") + r.line + "\n");
    Contours c;
    readCxfGlyph(in, 0, c);
    ASSERT_EQ(c.size(), r.points ? 1u : 0u) << r.line;
    if (!r.points) continue;
    EXPECT_EQ(c[0].size(), r.points) << r.line;
    EXPECT_TRUE(c[0].front().isEqualTo(r.first) && c[0].back().isEqualTo(r.last)) << r.line;
    // The middle of a clockwise arc lies on the short side too.
    const AcGePoint3d mid = c[0][c[0].size() / 2];
    EXPECT_GT(mid.x, 0.0) << r.line;
  }
}
