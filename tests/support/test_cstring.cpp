#include <gtest/gtest.h>

#include "kxrender/CString.h"
#include "kxrender/CStringArray.h"
#include "kxrender/KxSystem.h"

TEST(CString, SlicesClampOutOfRangeArguments) {
  CString s("building");
  EXPECT_EQ(s.Left(5), "build");
  EXPECT_EQ(s.Left(50), "building");
  EXPECT_EQ(s.Left(-1), "");
  EXPECT_EQ(s.Mid(5), "ing");
  EXPECT_EQ(s.Mid(2, 3), "ild");
  EXPECT_EQ(s.Mid(-3, 2), "bu");
  EXPECT_EQ(s.Mid(7, 10), "g");
  EXPECT_EQ(s.Mid(9), "");
  EXPECT_EQ(s.Right(3), "ing");
  EXPECT_EQ(s.Right(30), "building");
  EXPECT_EQ(s.GetAt(100), '\0');
}

TEST(CString, FindAndReverseFind) {
  CString s("a;b;;c");
  EXPECT_EQ(s.Find(';'), 1);
  EXPECT_EQ(s.Find(';', 2), 3);
  EXPECT_EQ(s.Find(';', 6), -1);
  EXPECT_EQ(s.Find(';', -1), -1);
  EXPECT_EQ(s.ReverseFind(';'), 4);
  EXPECT_EQ(s.ReverseFind('x'), -1);
  EXPECT_EQ(s.Find(";;"), 3);
  EXPECT_EQ(s.Find(""), 0);
  EXPECT_EQ(s.FindOneOf("cb"), 2);
}

TEST(CString, CompareWithAndWithoutCase) {
  CString s("Roof");
  EXPECT_EQ(s.Compare("Roof"), 0);
  EXPECT_LT(s.Compare("roof"), 0);
  EXPECT_EQ(s.CompareNoCase("rOOF"), 0);
  EXPECT_GT(s.CompareNoCase("roo"), 0);
  EXPECT_LT(CString("").CompareNoCase("a"), 0);
  EXPECT_TRUE(s == "Roof");
  EXPECT_TRUE(s != "roof");
}

TEST(CString, TrimFormatConcatenate) {
  CString s("  \t wall \n");
  s.Trim();
  EXPECT_EQ(s, "wall");
  CString t("xxwallxx");
  t.Trim("x");
  EXPECT_EQ(t, "wall");
  CString f;
  f.Format("%s:%.3f", "t", 1.5);
  EXPECT_EQ(f, "t:1.500");
  f.AppendFormat("/%d", 7);
  EXPECT_EQ(f, "t:1.500/7");
  EXPECT_EQ(CString("a") + "b" + CString("c") + 'd', "abcd");
  CString r("a-b-c");
  EXPECT_EQ(r.Replace("-", "--"), 2);
  EXPECT_EQ(r, "a--b--c");
  CString big;
  big.Format("%s", std::string(5000, 'q').c_str());
  EXPECT_EQ(big.GetLength(), 5000);
}

// In a double-byte code page a trail byte may equal an ASCII character;
// searching must step over whole characters.
TEST(CString, SearchesStepOverDoubleByteCharacters) {
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  // 0x81 0x5C is one GBK character whose trail byte is a backslash.
  const char text[] = {'\x81', '\x5C', 'a', '\\', 'b', 0};
  CString s(text);
  EXPECT_EQ(s.Find('\\'), 3);
  EXPECT_EQ(s.ReverseFind('\\'), 3);
  CString upper(text);
  upper.MakeUpper();
  EXPECT_EQ(upper.GetAt(1), '\x5C');
  EXPECT_EQ(upper.GetAt(2), 'A');
  ASSERT_TRUE(KxSetAnsiCodePage(CP_UTF8));
  EXPECT_EQ(s.Find('\\'), 1);  // in UTF-8 the stray bytes are single characters
}

TEST(CStringArray, AddInsertRemove) {
  CStringArray a;
  EXPECT_EQ(a.Add("x"), 0);
  EXPECT_EQ(a.Add("z"), 1);
  a.InsertAt(1, "y");
  ASSERT_EQ(a.GetSize(), 3);
  EXPECT_EQ(a[1], "y");
  a.RemoveAt(0, 10);
  EXPECT_TRUE(a.IsEmpty());
  a.RemoveAt(5);  // past the end: nothing
  EXPECT_EQ(a.GetUpperBound(), -1);
}
