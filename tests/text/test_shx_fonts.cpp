// The three SHX file kinds, character lookups, the fonts built beside the
// executable, damaged files and the compiler's refusals.
#include <cstring>

#include "ShxTestHelpers.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/KxSystem.h"
#include "text/ShxFont.h"
#include "text/ShxInterpreter.h"

namespace {
using shxtest::compile;
using shxtest::draw;
using shxtest::writeFile;

// The same stroke, "020,014,0", stored in each kind of font.
const char kUnifont[] =
    "*UNIFONT,6,u\n6,2,0,0,0,0\n"
    "*65,3,\n020,014,0\n"
    "*04E2D,3,\n020,014,0\n"
    "*04E2E,4,\n7,(04E2D),0\n";
const char kBigfont[] =
    "*BIGFONT 4,1,081,0FE\n*0,4,b\n8,0,0,0\n"
    "*65,3,\n020,014,0\n"
    "*0D6D0,3,\n020,014,0\n"
    "*0D6D1,4,\n7,(0D6D0),0\n"
    "*0D6D2,3,\n7,65,0\n"
    "*0D6D3,9,\n7,0,(0D6D0),(1,2),(16,4),0\n";

struct LookupCase {
  const char* name;
  const char* font;
  unsigned code;
  int kind;
  unsigned codePage;  // active while looking up
  const char* expected;
};

const char kStroke[] = "0,0 2,0 2,1 | end 2,1";
const LookupCase kLookups[] = {
    {"unifont by Unicode", kUnifont, 0x4E2D, CShapeInfo::kUnicode, CP_UTF8, kStroke},
    {"unifont by code page 936 pair", kUnifont, 0xD6D0, CShapeInfo::kDoubleByte, 936, kStroke},
    {"unifont by ASCII byte", kUnifont, 'A', CShapeInfo::kSingleByte, CP_UTF8, kStroke},
    {"unifont two-byte subshape", kUnifont, 0x4E2E, CShapeInfo::kUnicode, CP_UTF8, "0,0 2,0 2,1 | end 2,1"},
    {"bigfont by its own code", kBigfont, 0xD6D0, CShapeInfo::kDoubleByte, CP_UTF8, kStroke},
    {"bigfont by Unicode", kBigfont, 0x4E2D, CShapeInfo::kUnicode, CP_UTF8, kStroke},
    {"bigfont one-byte code", kBigfont, 'A', CShapeInfo::kSingleByte, 936, kStroke},
    {"bigfont escape-byte subshape", kBigfont, 0xD6D1, CShapeInfo::kDoubleByte, 936, kStroke},
    {"bigfont one-byte subshape", kBigfont, 0xD6D2, CShapeInfo::kDoubleByte, 936, kStroke},
    {"bigfont extended subshape scaled in its box", kBigfont, 0xD6D3, CShapeInfo::kDoubleByte, 936,
     "1,2 5,2 5,2.5 | end 0,0"},
    {"bigfont header is not a character", kBigfont, 0, CShapeInfo::kDoubleByte, 936, "missing"},
    {"bigfont absent code", kBigfont, 0xB0A1, CShapeInfo::kDoubleByte, 936, "missing"},
    {"one byte kind refuses a wide code", kBigfont, 0xD6D0, CShapeInfo::kSingleByte, 936, "missing"},
};

TEST(ShxFonts, LookupsByKindAndCodePage) {
  for (const LookupCase& c : kLookups) {
    ASSERT_TRUE(KxSetAnsiCodePage(c.codePage)) << c.name;
    EXPECT_EQ(draw(c.font, c.code, c.kind), c.expected) << c.name;
  }
  KxSetAnsiCodePage(CP_UTF8);
}

TEST(ShxFonts, KindsAndHeaders) {
  struct {
    std::string source;
    CShapeInfo::FontKind kind;
    int above, below;
  } const kinds[] = {{shxtest::shapesFont("*65,3,a\n020,014,0"), CShapeInfo::kShapes, 6, 2},
                     {kUnifont, CShapeInfo::kUnifont, 6, 2},
                     {kBigfont, CShapeInfo::kBigfont, 8, 0}};
  for (const auto& k : kinds) {
    CShapeInfo info;
    ASSERT_TRUE(info.Init(writeFile(compile(k.source)).c_str()));
    EXPECT_EQ(info.GetFontKind(), k.kind);
    EXPECT_EQ(info.GetAbove(), k.above);
    EXPECT_EQ(info.GetBelow(), k.below);
  }
  // Version 1.1 of the plain shape file has the same layout.
  std::vector<uint8_t> v11 = compile(shxtest::shapesFont("*65,3,a\n020,014,0"));
  ASSERT_EQ(v11[20], '0');
  v11[20] = '1';
  EXPECT_EQ(shxtest::drawBytes(v11, 65, CShapeInfo::kSingleByte), kStroke);
}

// The fonts compiled at build time sit in "Fonts" beside the executable.
TEST(ShxFonts, BuiltFontsBesideTheExecutable) {
  const CString dir = CRenderSysUtils::getDllPath() + "Fonts/";
  CShapeInfo txt, hz;
  ASSERT_TRUE(txt.Init(dir + "txt.shx"));
  ASSERT_TRUE(hz.Init(dir + "hztxt.shx"));
  CShape shape;
  ASSERT_TRUE(txt.GetShape('A', CShapeInfo::kSingleByte, shape));
  EXPECT_EQ(shxtest::describe(shape), "0,0 3,6 6,0; 1,2 5,2 | end 8,0");
  ASSERT_TRUE(hz.GetShape(0xD6D0, CShapeInfo::kDoubleByte, shape));
  EXPECT_EQ(shxtest::describe(shape), "1,2 7,2 7,6 1,6 1,2; 4,0 4,8 | end 10,0");
  EXPECT_FALSE(hz.GetShape('A', CShapeInfo::kSingleByte, shape));
  EXPECT_EQ(shape.GetEntityCount(), 0);
}

TEST(ShxFonts, ReadOncePerPath) {
  const std::string path = writeFile(compile(shxtest::shapesFont("*65,2,a\n020,0")));
  CShapeInfo first;
  ASSERT_TRUE(first.Init(path.c_str()));
  // Replaced on disk: the cached font still answers until the cache is cleared.
  std::ofstream(path, std::ios::trunc) << "not a font";
  CShapeInfo second;
  EXPECT_TRUE(second.Init(path.c_str()));
  CShapeInfo::ClearCache();
  EXPECT_FALSE(second.Init(path.c_str()));
  EXPECT_FALSE(second.IsValid());
  EXPECT_FALSE(second.Init("/nonexistent/txt.shx"));
  CShape shape;
  EXPECT_TRUE(first.GetShape(65, 1, shape));  // the first holder keeps its font
}

// Every prefix of each kind of file either loads or is refused, and every
// shape it still holds draws without running past its bytes.
TEST(ShxDamaged, TruncatedFilesNeverReadPastTheEnd) {
  for (const std::string source : {shxtest::shapesFont("*65,4,a\n10,(1,012),0\n*66,3,b\n7,65,0"),
                                   std::string(kUnifont), std::string(kBigfont)}) {
    const std::vector<uint8_t> full = compile(source);
    for (size_t n = 0; n <= full.size(); ++n) {
      // A copy of exactly n bytes, so that the sanitizers see any overrun.
      const std::vector<uint8_t> cut(full.begin(), full.begin() + long(n));
      const auto font = CShxFont::parse(cut.data(), cut.size());
      if (n < 30) EXPECT_FALSE(font) << n;  // no room for the signature and counts
      if (n == full.size()) EXPECT_TRUE(font && font->shapeCount() >= 2);
      if (!font) continue;
      for (const auto& entry : font->shapes()) {
        CShape shape;
        EXPECT_TRUE(ShxInterpret(*font, entry.first, true, shape));
      }
    }
  }
}

// Byte patches to a compiled file: offset from the end of the signature.
struct PatchCase {
  const char* name;
  std::string source;
  size_t offset;
  std::vector<uint8_t> bytes;
  bool loads;
};

TEST(ShxDamaged, AbsurdCountsAndLengths) {
  const std::string shapes = shxtest::shapesFont("*65,2,a\n020,0\n*66,2,b\n014,0");
  const PatchCase cases[] = {
      {"shape count beyond the data", shapes, 4, {0xFF, 0xFF}, false},
      {"last length past the end", shapes, 6 + 3 * 4 - 2, {0xFF, 0x7F}, true},
      {"unifont count of four billion", kUnifont, 0, {0xFF, 0xFF, 0xFF, 0xFF}, true},
      {"unifont information past the end", kUnifont, 4, {0xFF, 0xFF}, false},
      {"bigfont entries beyond the data", kBigfont, 0, {0xFF, 0xFF}, false},
      {"bigfont ranges beyond the data", kBigfont, 4, {0xFF, 0xFF}, false},
      {"bigfont offset past the end", kBigfont, 6 + 4 + 4, {0xFF, 0xFF, 0xFF, 0x7F}, true},
  };
  for (const PatchCase& c : cases) {
    std::vector<uint8_t> bytes = compile(c.source);
    const size_t at = (c.source[1] == 'U' || c.source[1] == 'B' ? 25 : 24) + c.offset;
    ASSERT_LE(at + c.bytes.size(), bytes.size()) << c.name;
    std::memcpy(bytes.data() + at, c.bytes.data(), c.bytes.size());
    CShapeInfo info;
    EXPECT_EQ(info.Init(writeFile(bytes).c_str()), c.loads) << c.name;
    CShape shape;
    for (unsigned code : {65u, 66u, 0x4E2Du, 0xD6D0u}) info.GetShape(code, 2, shape);
  }
}

// Shapes that would run away: each is cut at a limit, keeping what it drew.
struct RunawayCase {
  const char* name;
  std::string defs;
  const char* expected;
};

std::string fanOut() {
  // Eight levels each calling the next ten times: 10^8 strokes uncut.
  std::string defs;
  for (int level = 0; level < 8; ++level) {
    defs += "*" + std::to_string(65 + level) + ",21,s\n";
    for (int i = 0; i < 10; ++i) defs += "7," + std::to_string(66 + level) + ",";
    defs += "0\n";
  }
  return defs + "*73,2,z\n010,0\n";
}

TEST(ShxDamaged, RunawayShapesAreCut) {
  const RunawayCase cases[] = {
      {"shape calling itself stops after eight nested calls", "*65,4,a\n020,7,65,0",
       "0,0 2,0 4,0 6,0 8,0 10,0 12,0 14,0 16,0 18,0 | end 18,0"},
      {"lengths multiplied past reason end the shape", "*65,10,a\n4,255,4,255,4,255,4,255,010,0", " | end 0,0"},
      {"seventeenth push ends the shape",
       "*65,19,a\n5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,020,0", " | end 0,0"},
  };
  for (const RunawayCase& c : cases) {
    EXPECT_EQ(draw(shxtest::shapesFont(c.defs), 65), c.expected) << c.name;
  }
  // The compiler refuses a divisor of 0, so it is patched into the file:
  // the shape's bytes end the file.
  std::vector<uint8_t> divide = compile(shxtest::shapesFont("*65,4,a\n3,1,020,0"));
  divide[divide.size() - 3] = 0;
  EXPECT_EQ(shxtest::drawBytes(divide, 65), " | end 0,0") << "divide by zero ends the shape";

  CShapeInfo info;
  ASSERT_TRUE(info.Init(writeFile(compile(shxtest::shapesFont(fanOut()))).c_str()));
  CShape shape;
  ASSERT_TRUE(info.GetShape(65, 1, shape));
  ShxContourList contours;
  shape.appendContours(contours);
  size_t points = 0;
  for (const auto& c : contours) points += c.size();
  EXPECT_GT(points, 1000u);
  EXPECT_LE(points, 20000u);
}

TEST(ShpCompiler, RefusesInvalidSources) {
  const struct {
    const char* source;
    const char* message;
  } cases[] = {
      {"*65,3,a\n020,0", "line 1: shape 65 has 2 bytes, its header says 3"},
      {"*65,1,a\n020", "lacks its end byte"},
      {"*65,4,a\n8,(200,0),0", "line 2: value 200 out of range"},
      {"*65,3,a\n0,020,0", "values after the end byte"},
      {"*65,2,a\n020,0\n*65,2,b\n010,0", "line 3: shape 65 defined twice"},
      {"*65,3,a\n7,0,0", "value 0 out of range"},
      {"020,0", "values before any shape header"},
      {"*65,2,a\n0G0,0", "not a number"},
      {"*BIGFONT 1,2,081,0FE\n", "range count does not match"},
  };
  for (const auto& c : cases) {
    std::vector<uint8_t> shx;
    std::string error;
    EXPECT_FALSE(CompileShp(c.source, shx, error)) << c.source;
    EXPECT_NE(error.find(c.message), std::string::npos) << c.source << " -> " << error;
  }
}
}  // namespace
