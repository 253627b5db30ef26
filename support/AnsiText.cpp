#include "support/AnsiText.h"

#include <climits>
#include <vector>

#include "platform/Win32System.h"
#include "support/JsonWriter.h"

namespace {
bool toWide(UINT codePage, const std::string& in, std::vector<WCHAR>& wide) {
  if (in.size() > size_t(INT_MAX)) return false;
  const int len = static_cast<int>(in.size());
  const int n = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, in.data(), len, nullptr, 0);
  if (n <= 0) return false;
  wide.resize(size_t(n));
  return MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, in.data(), len, wide.data(), n) == n;
}

bool fromWide(UINT codePage, const std::vector<WCHAR>& wide, std::string& out) {
  const int len = static_cast<int>(wide.size());
  BOOL lossy = FALSE;
  BOOL* lossyOut = codePage == CP_UTF8 ? nullptr : &lossy;
  const int n = WideCharToMultiByte(codePage, 0, wide.data(), len, nullptr, 0, nullptr, lossyOut);
  if (n <= 0 || lossy) return false;
  out.resize(size_t(n));
  return WideCharToMultiByte(codePage, 0, wide.data(), len, &out[0], n, nullptr, nullptr) == n;
}
}  // namespace

bool KxAnsiToUtf8(const std::string& ansi, std::string& utf8) {
  const UINT acp = GetACP();
  if (acp == CP_UTF8 || ansi.empty()) {
    if (!KxIsValidUtf8(ansi)) return false;
    utf8 = ansi;
    return true;
  }
  std::vector<WCHAR> wide;
  return toWide(acp, ansi, wide) && fromWide(CP_UTF8, wide, utf8);
}

bool KxUtf8ToAnsi(const std::string& utf8, std::string& ansi) {
  const UINT acp = GetACP();
  if (acp == CP_UTF8 || utf8.empty()) {
    if (!KxIsValidUtf8(utf8)) return false;
    ansi = utf8;
    return true;
  }
  std::vector<WCHAR> wide;
  return toWide(CP_UTF8, utf8, wide) && fromWide(acp, wide, ansi);
}
