#include "text/TextChar.h"

#include "platform/Win32System.h"

namespace kxtext {

int firstCharLength(const CString& ch, bool& complete) {
  complete = false;
  if (ch.IsEmpty()) return 0;
  const char* p = ch.GetString();
  const auto lead = static_cast<unsigned char>(p[0]);
  int want = 1;
  if (GetACP() == CP_UTF8) {
    if (lead >= 0xF0) want = 4;
    else if (lead >= 0xE0) want = 3;
    else if (lead >= 0xC0) want = 2;
  } else if (IsDBCSLeadByte(lead)) {
    want = 2;
  }
  const int got = static_cast<int>(CharNextA(p) - p);
  complete = got == want;
  return got > 0 ? got : 1;
}

std::vector<CString> splitChars(const CString& text) {
  std::vector<CString> out;
  for (int at = 0; at < text.GetLength();) {
    bool complete;
    const int n = firstCharLength(text.Mid(at), complete);
    out.push_back(text.Mid(at, n));
    at += n;
  }
  return out;
}

namespace {
// UTF-16 units of the first character: one, or two for a surrogate pair.
int utf16Units(const CString& ch, WCHAR units[2]) {
  bool complete;
  const int n = firstCharLength(ch, complete);
  if (!complete) return 0;
  if (n == 1 && static_cast<unsigned char>(ch[0]) < 0x80) {
    units[0] = static_cast<WCHAR>(ch[0]);
    return 1;
  }
  return MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, ch.GetString(), n, units, 2);
}
}  // namespace

bool utf16Code(const CString& ch, uint16_t& code) {
  WCHAR units[2];
  if (utf16Units(ch, units) != 1) return false;
  code = units[0];
  return true;
}

bool codePoint(const CString& ch, uint32_t& cp) {
  WCHAR units[2];
  const int n = utf16Units(ch, units);
  if (n == 1) {
    cp = units[0];
    return true;
  }
  if (n == 2 && units[0] >= 0xD800 && units[0] < 0xDC00 && units[1] >= 0xDC00 && units[1] < 0xE000) {
    cp = 0x10000 + ((uint32_t(units[0]) - 0xD800) << 10) + (uint32_t(units[1]) - 0xDC00);
    return true;
  }
  return false;
}

bool shxCode(const CString& ch, unsigned& code, int& kind) {
  bool complete;
  const int n = firstCharLength(ch, complete);
  if (!complete) return false;
  const auto b0 = static_cast<unsigned char>(ch[0]);
  if (n == 1) {
    code = b0;
    kind = 1;
    return true;
  }
  if (n == 2 && GetACP() != CP_UTF8) {
    code = b0 * 256u + static_cast<unsigned char>(ch[1]);
    kind = 2;
    return true;
  }
  uint32_t cp;
  if (!codePoint(ch, cp)) return false;
  code = cp;
  kind = 3;
  return true;
}

CString fromUtf8(const char* utf8) {
  if (GetACP() == CP_UTF8) return CString(utf8);
  const int units = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
  if (units <= 0) return CString(utf8);
  std::vector<WCHAR> wide(size_t(units), 0);
  MultiByteToWideChar(CP_UTF8, 0, utf8, -1, wide.data(), units);
  const int bytes = WideCharToMultiByte(CP_ACP, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
  if (bytes <= 0) return CString(utf8);
  std::vector<char> out(size_t(bytes), 0);
  WideCharToMultiByte(CP_ACP, 0, wide.data(), units, out.data(), bytes, nullptr, nullptr);
  return CString(out.data());
}

}  // namespace kxtext
