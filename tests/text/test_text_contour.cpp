// Font dispatch of one character: the line font, SHX fallbacks, system
// fonts, the placeholder, and both code-page settings.
#include <gtest/gtest.h>

#include "kxrender/CRenderSysUtils.h"
#include "text/TextTestUtil.h"

namespace {

enum Source { kLine, kShx, kPlaceholder, kOutline };

struct Got {
  CTextContour::Contours c;
  bool outline = false;
  AcGePoint3d lo{1e9, 1e9, 0}, hi{-1e9, -1e9, 0};
};

Got ask(CTextContour* tc, const char* font, const char* ch) {
  Got g;
  EXPECT_TRUE(tc->getOneCharContour(font, ch, g.c, g.outline)) << font << " " << ch;
  for (const auto& c : g.c)
    for (const AcGePoint3d& p : c) {
      g.lo.set(std::min(g.lo.x, p.x), std::min(g.lo.y, p.y), 0);
      g.hi.set(std::max(g.hi.x, p.x), std::max(g.hi.y, p.y), 0);
    }
  return g;
}

bool isPlaceholder(const Got& g) {
  return !g.outline && g.c.size() == 1 && g.c[0].size() == 5 && g.c[0][0].isEqualTo(AcGePoint3d(0.1, 0, 0));
}

}  // namespace

class TextContourDispatch : public texttest::SmallFontTest {};

TEST_F(TextContourDispatch, EachFontKindAndFallback) {
  // The SHX fonts are the test fonts compiled beside this program: txt.shx
  // (Latin, 6 units above the baseline) and the big font hztxt.shx ("中" 8
  // units high); they keep their own units. The line font is the small one
  // (glyphs 9 units high at 0.1).
  const struct {
    unsigned codePage;
    const char* font;
    const char* ch;
    Source source;
    double top;  // highest y of line and SHX glyphs
  } rows[] = {
      {CP_UTF8, "单线体", "A", kLine, 0.9},
      {CP_UTF8, "txt.shx", "A", kShx, 6},
      {CP_UTF8, "missing.shx", "A", kShx, 6},      // hztxt.shx lacks it, txt.shx has it
      {CP_UTF8, "TXT.SHX", "中", kShx, 8},          // from hztxt.shx
      {CP_UTF8, "missing.shx", "中", kShx, 8},
      {936, "missing.shx", "\xD6\xD0", kShx, 8},  // the GB2312 pair itself
      {CP_UTF8, "missing.shx", "(", kLine, 0.9},   // no SHX font has it
      {CP_UTF8, "missing.shx", "B", kPlaceholder, 0},
      {CP_UTF8, "单线体", "\xEF\xBC\x88", kLine, 0.9},  // full-width "(" is "("
      {CP_UTF8, "单线体", " ", kPlaceholder, 0},
      {CP_UTF8, "单线体", "\xE3\x80\x80", kPlaceholder, 0},  // ideographic space
      {CP_UTF8, "单线体", "B", kPlaceholder, 0},                // not in the font
      {CP_UTF8, "单线体", "\xE4\xB8", kPlaceholder, 0},       // truncated sequence
      {CP_UTF8, "宋体", "中", kOutline, 0},
      {CP_UTF8, "Arial", "A", kOutline, 0},
      {936, "\xB5\xA5\xCF\xDF\xCC\xE5", "\xD6\xD0", kLine, 0.9},  // 单线体, 中 in GBK
      {936, "\xCB\xCE\xCC\xE5", "\xD6\xD0", kOutline, 0},           // 宋体, 中
      {936, "SimSun", "\xD6", kPlaceholder, 0},                         // lead byte alone
  };
  for (const auto& r : rows) {
    ASSERT_TRUE(KxSetAnsiCodePage(r.codePage));
    const Got g = ask(tc, r.font, r.ch);
    SCOPED_TRACE(std::string(r.font) + " / " + r.ch);
    EXPECT_EQ(g.outline, r.source == kOutline);
    EXPECT_EQ(isPlaceholder(g), r.source == kPlaceholder);
    if (r.source == kLine || r.source == kShx) EXPECT_NEAR(g.hi.y, r.top, 1e-9);
    if (r.source == kOutline) {
      // A system glyph at the 0.01 scale stands about one unit high.
      EXPECT_GT(g.hi.y - g.lo.y, 0.6);
      EXPECT_LT(g.hi.y - g.lo.y, 1.2);
      for (const auto& c : g.c) EXPECT_TRUE(c.front().isEqualTo(c.back()));  // closed
    }
  }
}

TEST_F(TextContourDispatch, MissingLineFontCachesNothingWrongly) {
  tc->setFontPaths("/nonexistent/unicode.cxf", "/nonexistent/");
  EXPECT_TRUE(isPlaceholder(ask(tc, "单线体", "A")));
  tc->setFontPaths(path.c_str(), "/nonexistent/");
  EXPECT_EQ(ask(tc, "单线体", "A").c.size(), 3u);
}

TEST(TextContourFiles, GeneratedLineFontLiesBesideTheExecutable) {
  CTextContour::createSingleton();
  CTextContour* tc = CTextContour::getSingleton();
  EXPECT_EQ(tc->getCxfPath(), CRenderSysUtils::getDllPath() + "unicode.cxf");
  const Got g = ask(tc, "单线体", "中");
  EXPECT_FALSE(isPlaceholder(g));
  EXPECT_GT(g.hi.y - g.lo.y, 0.8);
  EXPECT_LT(g.hi.y - g.lo.y, 1.0);
}
