// Engine strings, string arrays, and ANSI code page <-> UTF-8.
#include <gtest/gtest.h>

#include "kxrender/CString.h"
#include "kxrender/CStringArray.h"
#include "kxrender/KxSystem.h"
#include "support/AnsiText.h"

TEST(CString, SlicesAndSearchesClampOutOfRangeArguments) {
  const CString s("building"), list("a;b;;c");
  const struct { CString got; const char* want; } slices[] = {
      {s.Left(50), "building"}, {s.Left(-1), ""}, {s.Mid(2, 3), "ild"},         {s.Mid(-3, 2), "bu"},
      {s.Mid(7, 10), "g"},      {s.Mid(9), ""},   {s.Right(30), "building"}};
  for (const auto& r : slices) EXPECT_EQ(r.got, r.want);
  EXPECT_EQ(s.GetAt(100), '\0');
  const struct { int got, want; } finds[] = {
      {list.Find(';', 2), 3}, {list.Find(';', 6), -1}, {list.Find(';', -1), -1}, {list.ReverseFind(';'), 4},
      {list.ReverseFind('x'), -1}, {list.Find(";;"), 3}, {list.Find(""), 0}, {list.FindOneOf("cb"), 2}};
  for (size_t i = 0; i < sizeof finds / sizeof finds[0]; ++i) EXPECT_EQ(finds[i].got, finds[i].want) << "find " << i;
}

TEST(CString, CompareTrimFormatReplace) {
  EXPECT_LT(CString("Roof").Compare("roof"), 0);
  EXPECT_EQ(CString("Roof").CompareNoCase("rOOF"), 0);
  EXPECT_GT(CString("Roof").CompareNoCase("roo"), 0);
  CString s("  \t wall \n"), t("xxwallxx"), r("a-b-c"), f, big;
  s.Trim();
  t.Trim("x");
  EXPECT_TRUE(s == "wall" && t == "wall");
  f.Format("%s:%.3f", "t", 1.5);
  f.AppendFormat("/%d", 7);
  EXPECT_EQ(f, "t:1.500/7");
  EXPECT_EQ(r.Replace("-", "--"), 2);  // the replacement contains the pattern: no rescan
  EXPECT_EQ(r, "a--b--c");
  big.Format("%s", std::string(5000, 'q').c_str());  // past any fixed buffer
  EXPECT_EQ(big.GetLength(), 5000);
}

// A GBK trail byte may equal an ASCII character: searches step over whole characters.
TEST(CString, SearchesStepOverDoubleByteCharacters) {
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  const char text[] = {'\x81', '\x5C', 'a', '\\', 'b', 0};  // 0x81 0x5C: one GBK character, trail byte '\'
  CString s(text), upper(text);
  EXPECT_TRUE(s.Find('\\') == 3 && s.ReverseFind('\\') == 3);
  upper.MakeUpper();
  EXPECT_TRUE(upper.GetAt(1) == '\x5C' && upper.GetAt(2) == 'A');  // the trail byte is not upper-cased
  ASSERT_TRUE(KxSetAnsiCodePage(CP_UTF8));
  EXPECT_EQ(s.Find('\\'), 1);  // in UTF-8 the stray bytes are single characters
}

TEST(CStringArray, InsertAndRemovePastTheEnd) {
  CStringArray a;
  a.Add("x");
  EXPECT_EQ(a.Add("z"), 1);
  a.InsertAt(1, "y");
  ASSERT_EQ(a.GetSize(), 3);
  EXPECT_EQ(a[1], "y");
  a.RemoveAt(0, 10);
  a.RemoveAt(5);  // past the end: nothing
  EXPECT_EQ(a.GetUpperBound(), -1);
}

TEST(AnsiText, ConvertsInTheCodePageAndRefusesWhatItCannotHold) {
  const std::string room = "\xE6\x88\xBF\xE9\x97\xB4" "3", gbkRoom = "\xB7\xBF\xBC\xE4" "3";  // 房间3
  const struct { UINT cp; bool toAnsi; std::string in; bool ok; std::string out; } rows[] = {
      {CP_UTF8, true, room, true, room},  // UTF-8 as the code page: checked, bytes kept
      {CP_UTF8, false, room, true, room},
      {CP_UTF8, false, "\xB7\xBF", false, ""},  // GBK bytes are not UTF-8
      {936, true, room, true, gbkRoom},
      {936, false, gbkRoom, true, room},
      {936, true, "a\xF0\x9F\x98\x80", false, ""},  // no GBK form for an emoji: refused, not replaced
      {936, false, "\xB7", false, ""},                // a lead byte without its trail byte
      {936, false, "", true, ""}};
  for (const auto& r : rows) {
    ASSERT_TRUE(KxSetAnsiCodePage(r.cp));
    std::string out = r.in;  // converted in place, as callers do
    EXPECT_EQ(r.toAnsi ? KxUtf8ToAnsi(out, out) : KxAnsiToUtf8(out, out), r.ok) << r.cp << " " << r.in;
    if (r.ok) EXPECT_EQ(out, r.out) << r.cp << " " << r.in;
  }
  KxSetAnsiCodePage(CP_UTF8);
}
