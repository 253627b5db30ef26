#include <gtest/gtest.h>

#include <random>

#include "kxrender/CColor.h"
#include "support/GLRecorder.h"

TEST(CColor, DefaultsConstantsAndEquality) {
  EXPECT_EQ(CColor(), CColor(255, 255, 255, 255));
  EXPECT_EQ(CColor::whiteClr, CColor(255, 255, 255, 255));
  EXPECT_EQ(CColor::blackClr, CColor(0, 0, 0, 255));
  EXPECT_EQ(CColor::redClr, CColor(255, 0, 0, 255));
  EXPECT_FALSE(CColor(1, 2, 3, 4) == CColor(1, 2, 3, 5));  // alpha counts
  EXPECT_TRUE(CColor(1, 2, 3, 4) != CColor(1, 2, 3, 5));
}

TEST(CColor, WindowsColourPacking) {
  EXPECT_EQ(CColor(1, 2, 3, 4).getColor(), 0x030201UL);
  CColor c(0, 0, 0, 7);
  c.set(0xFF112233UL);
  EXPECT_EQ(c, CColor(0x33, 0x22, 0x11, 255));
  CColor back;
  back.set(CColor(10, 20, 30, 40).getColor());
  EXPECT_EQ(back, CColor(10, 20, 30, 255));
}

TEST(CColor, ContrastColourSplitsAt128) {
  EXPECT_EQ(CColor(128, 127, 0, 10).GetOtherColor(), CColor(0, 255, 255, 10));
  EXPECT_EQ(CColor(255, 255, 255, 255).GetOtherColor(), CColor(0, 0, 0, 255));
}

TEST(CColor, GlColorIssuesFourUnsignedBytes) {
  GLRecorder rec(false);
  CColor(1, 2, 3, 4).glColor();
  ASSERT_EQ(rec.calls().size(), 1u);
  EXPECT_EQ(rec.calls()[0].text(), "glColor4ub(1, 2, 3, 4)");
}

TEST(Str2Color, ReadsThreeSemicolonSeparatedNumbers) {
  CColor c(9, 9, 9, 9);
  EXPECT_EQ(Str2Color("255;0;0", c), 1);
  EXPECT_EQ(c, CColor(255, 0, 0, 255));
  CColor unchanged(9, 9, 9, 9);
  EXPECT_EQ(Str2Color("255;0", unchanged), 0);
  EXPECT_EQ(unchanged, CColor(9, 9, 9, 9));
  EXPECT_EQ(Str2Color("no separators", unchanged), 0);
  EXPECT_EQ(Str2Color(";;", c), 1);
  EXPECT_EQ(c, CColor(0, 0, 0, 255));
  EXPECT_EQ(Str2Color("a;b;c", c), 1);
  EXPECT_EQ(c, CColor(0, 0, 0, 255));
  // Low eight bits only; green stops at its first number.
  EXPECT_EQ(Str2Color("300;-1; 7x", c), 1);
  EXPECT_EQ(c, CColor(44, 255, 7, 255));
  EXPECT_EQ(Str2Color("1;2;3;4", c), 1);
  EXPECT_EQ(c, CColor(1, 2, 4, 255));
}

TEST(Str2Color, ArbitraryTextNeverFails) {
  std::mt19937 rng(7);
  std::uniform_int_distribution<int> byte(1, 255), len(0, 40);
  for (int i = 0; i < 2000; ++i) {
    std::string s(size_t(len(rng)), ' ');
    for (char& ch : s) ch = char(byte(rng) % 3 == 0 ? ';' : byte(rng));
    CColor c(1, 1, 1, 1);
    const int r = Str2Color(CString(s), c);
    const bool twoSemicolons = s.find(';') != s.rfind(';');
    EXPECT_EQ(r, twoSemicolons ? 1 : 0);
    if (r) EXPECT_EQ(c.a, 255);
    else EXPECT_EQ(c, CColor(1, 1, 1, 1));
  }
}
