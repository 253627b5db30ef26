// The host layout helper: one shape per character, spaces advance only,
// alignment shifts the whole line.
#include <gtest/gtest.h>

#include "kxrender/CRenderObject.h"
#include "kxrender/KxTextLayout.h"
#include "text/TextTestUtil.h"

class TextLayout : public texttest::SmallFontTest {};

TEST_F(TextLayout, CharactersSideBySideAlignedAsAsked) {
  // In the small font "A" spans x 0 to 0.9 and "(" stands at x 0.1; the
  // line font's letter gap is 0.3 and a space 0.5.
  const double width = 0.9 + 0.3 + 0.5 + 0.1;  // "A", gap, space, "("
  const struct {
    int align;
    double start;  // x of the first character at height 2 from position x = 10
  } rows[] = {{kKxAlignLeft, 10}, {kKxAlignCenter, 10 - width}, {kKxAlignRight, 10 - 2 * width}};
  for (const auto& r : rows) {
    CRenderObject o;
    const double w = KxAddTextLine(o, "A (", "单线体", 2.0, AcGePoint3d(10, 5, 0), AcGeVector3d(3, 0, 0),
                                   AcGeVector3d(1, 1, 0), CColor(), r.align);
    EXPECT_NEAR(w, 2 * width, 1e-9);
    ASSERT_EQ(o.getShps().size(), 2u) << r.align;  // the space has no shape
    const TextInfo* a = o.getShps()[0].getTextInfo();
    const TextInfo* paren = o.getShps()[1].getTextInfo();
    EXPECT_TRUE(a->text == "A" && paren->text == "(");
    EXPECT_TRUE(a->position.isEqualTo(AcGePoint3d(r.start, 5, 0))) << r.align;
    EXPECT_TRUE(paren->position.isEqualTo(AcGePoint3d(r.start + 2 * (0.9 + 0.3 + 0.5), 5, 0))) << r.align;
    EXPECT_TRUE(a->dir2.isEqualTo(AcGeVector3d(0, 1, 0)));  // squared to the line
  }
  CRenderObject none;
  EXPECT_EQ(KxAddTextLine(none, "", "单线体", 1, AcGePoint3d(), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), CColor()),
            0.0);
  EXPECT_EQ(KxAddTextLine(none, "A", "单线体", 1, AcGePoint3d(), AcGeVector3d(1, 0, 0), AcGeVector3d(2, 0, 0), CColor()),
            0.0);
  EXPECT_TRUE(none.getShps().empty());
}
