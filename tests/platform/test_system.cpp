#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/Win32System.h"

namespace {
struct CodePageGuard {
  ~CodePageGuard() { KxSetAnsiCodePage(CP_UTF8); }
};
}  // namespace

TEST(CodePage, Utf8IsTheDefault) {
  EXPECT_EQ(GetACP(), static_cast<UINT>(CP_UTF8));
  WCHAR out[8] = {};
  // "中" is three bytes in UTF-8.
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "\xE4\xB8\xAD", 3, out, 8), 1);
  EXPECT_EQ(out[0], 0x4E2D);
  // Two bytes of it are not a character: replaced, not an error.
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "\xE4\xB8", 2, out, 8), 2);
  EXPECT_EQ(out[0], 0xFFFD);
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, "\xE4\xB8", 2, out, 8), 0);
  // Character steps of one, three and four bytes.
  const char* s = "a\xE4\xB8\xAD\xF0\x9F\x98\x80z";
  EXPECT_EQ(CharNextA(s), s + 1);
  EXPECT_EQ(CharNextA(s + 1), s + 4);
  EXPECT_EQ(CharNextA(s + 4), s + 8);
  // A lead byte without its continuation bytes stops at the next character.
  const char* broken = "\xE4" "ab";
  EXPECT_EQ(CharNextA(broken), broken + 1);
}

TEST(CodePage, GbkDataFromWindows) {
  CodePageGuard guard;
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  EXPECT_EQ(GetACP(), 936u);
  const unsigned char zhong[2] = {0xD6, 0xD0};  // "中" in GBK
  WCHAR out[2] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, reinterpret_cast<const char*>(zhong), 2, out, 1), 1);
  EXPECT_EQ(out[0], 0x4E2D);
  // Size query, terminator counted with a negative length.
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xD6\xD0" "a", -1, nullptr, 0), 3);
  // Target too small: failure, as on Windows.
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "ab", 2, out, 1), 0);

  const WCHAR wide[] = {0x5761, 0x5C4B, 0x9876};  // 坡屋顶
  char bytes[16] = {};
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide, 3, bytes, sizeof bytes, nullptr, nullptr), 6);
  EXPECT_EQ(std::string(bytes, 6), "\xC6\xC2\xCE\xDD\xB6\xA5");

  EXPECT_TRUE(IsDBCSLeadByte(0xD6));
  EXPECT_FALSE(IsDBCSLeadByte('a'));
  const char* s = "\xD6\xD0" "a";
  EXPECT_EQ(CharNextA(s), s + 2);
  EXPECT_EQ(CharNextA(s + 2), s + 3);
  EXPECT_EQ(CharNextA(s + 3), s + 3);  // stays on the terminator
  const char truncated[] = {'\xD6', 0};
  EXPECT_EQ(CharNextA(truncated), truncated + 1);

  EXPECT_FALSE(KxSetAnsiCodePage(12345));
  EXPECT_EQ(GetACP(), 936u);  // unchanged by the refusal
}

// Code pages whose decoder waits for a combining mark after each character
// still give the last one, also before a byte they cannot convert.
TEST(CodePage, CombiningCodePagesKeepTheLastCharacter) {
  const struct {
    UINT codePage;
    const char* bytes;
    std::u16string wide;
  } rows[] = {{1258, "\x9F", u"\u0178"},        {1258, "A\xCC", u"\u00C0"},  // the mark combines
              {1258, "A\x81" "B", u"A\uFFFDB"}, {1255, "\xE0", u"\u05D0"}};
  for (const auto& r : rows) {
    WCHAR out[8] = {};
    const int n = MultiByteToWideChar(r.codePage, 0, r.bytes, int(std::strlen(r.bytes)), out, 8);
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(out), size_t(n > 0 ? n : 0)), r.wide) << r.bytes;
  }
}

TEST(ModulePath, RunningExecutable) {
  char path[260];
  const DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
  ASSERT_GT(n, 0u);
  EXPECT_EQ(std::strlen(path), n);
  EXPECT_NE(std::string(path).find("test_platform"), std::string::npos);
  char tiny[5];
  EXPECT_EQ(GetModuleFileNameA(nullptr, tiny, sizeof tiny), 4u);
  EXPECT_EQ(tiny[4], '\0');
  int someModule;
  EXPECT_EQ(GetModuleFileNameA(&someModule, path, sizeof path), 0u);
}
