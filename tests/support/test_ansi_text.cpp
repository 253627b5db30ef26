// Conversion between engine text (the ANSI code page) and UTF-8 files.
#include <gtest/gtest.h>

#include "kxrender/KxSystem.h"
#include "support/AnsiText.h"

namespace {
// Restores UTF-8 as the code page however the test ends.
struct CodePage {
  explicit CodePage(UINT cp) { ok = KxSetAnsiCodePage(cp); }
  ~CodePage() { KxSetAnsiCodePage(CP_UTF8); }
  bool ok;
};
}  // namespace

TEST(AnsiText, Utf8CodePageChecksButKeepsBytes) {
  std::string out;
  ASSERT_TRUE(KxUtf8ToAnsi("\xE6\x88\xBF\xE9\x97\xB4 1-2", out));
  EXPECT_EQ(out, "\xE6\x88\xBF\xE9\x97\xB4 1-2");
  ASSERT_TRUE(KxAnsiToUtf8(out, out));
  EXPECT_EQ(out, "\xE6\x88\xBF\xE9\x97\xB4 1-2");
  EXPECT_FALSE(KxAnsiToUtf8("\xB7\xBF", out));  // GBK bytes are not UTF-8
}

TEST(AnsiText, GbkTextGoesBothWays) {
  CodePage gbk(936);
  ASSERT_TRUE(gbk.ok);
  std::string ansi, utf8;
  // 房间 is B7BF BCE4 in GBK.
  ASSERT_TRUE(KxUtf8ToAnsi("\xE6\x88\xBF\xE9\x97\xB4" "3", ansi));
  EXPECT_EQ(ansi, "\xB7\xBF\xBC\xE4" "3");
  ASSERT_TRUE(KxAnsiToUtf8(ansi, utf8));
  EXPECT_EQ(utf8, "\xE6\x88\xBF\xE9\x97\xB4" "3");
  // No GBK form for an emoji: refused rather than replaced.
  EXPECT_FALSE(KxUtf8ToAnsi("a\xF0\x9F\x98\x80", ansi));
  // A lead byte without its trail byte is not GBK text.
  EXPECT_FALSE(KxAnsiToUtf8("\xB7", utf8));
  EXPECT_TRUE(KxAnsiToUtf8("", utf8));
  EXPECT_EQ(utf8, "");
}
