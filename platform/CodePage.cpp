// The ANSI code page and conversions to and from UTF-16, through iconv.
#include <iconv.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/Win32System.h"

namespace {

const char* iconvName(UINT cp) {
  switch (cp) {
    case CP_UTF8: return "UTF-8";
    case 936: return "GBK";
    case 54936: return "GB18030";
    case 20936: return "GB2312";
    case 950: return "BIG5";
    case 932: return "SHIFT_JIS";
    case 949: return "CP949";
    case 874: return "CP874";
    case 1250: return "CP1250";
    case 1251: return "CP1251";
    case 1252: return "CP1252";
    case 1253: return "CP1253";
    case 1254: return "CP1254";
    case 1255: return "CP1255";
    case 1256: return "CP1256";
    case 1257: return "CP1257";
    case 1258: return "CP1258";
    case 20127: return "ASCII";
    case 28591: return "ISO-8859-1";
    default: return nullptr;
  }
}

UINT& activeCodePage() {
  static UINT cp = CP_UTF8;
  return cp;
}

UINT resolve(UINT cp) { return cp == CP_ACP ? activeCodePage() : cp; }

// One open converter per (from, to) pair, kept for the process: opening one
// costs far more than a short conversion. Closed at exit, so that nothing
// the process opened is left behind.
class ConverterCache {
 public:
  ~ConverterCache() {
    for (auto& e : m_entries) iconv_close(e.cd);
  }
  iconv_t get(const char* to, const char* from) {
    for (auto& e : m_entries)
      if (e.to == to && e.from == from) return e.cd;
    iconv_t cd = iconv_open(to, from);
    if (cd != reinterpret_cast<iconv_t>(-1)) m_entries.push_back({to, from, cd});
    return cd;
  }

 private:
  struct Entry {
    std::string to, from;
    iconv_t cd;
  };
  std::vector<Entry> m_entries;
};

iconv_t converter(const char* to, const char* from) {
  static ConverterCache cache;
  return cache.get(to, from);
}

// Runs iconv over the whole input; on a byte that cannot be converted either
// fails (strict) or writes `replacement` and skips one input unit.
bool convert(iconv_t cd, const char* in, size_t inLen, std::string& out, const char* replacement,
             size_t replacementLen, size_t skipUnit, bool strict) {
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
  out.clear();
  char chunk[256];
  // Decoders that combine marks with the character before them (CP1255,
  // CP1258) hold that character back until told its run has ended; this
  // writes it out and resets the state.
  const auto flush = [&] {
    char* dst = chunk;
    size_t room = sizeof chunk;
    iconv(cd, nullptr, nullptr, &dst, &room);
    out.append(chunk, size_t(dst - chunk));
  };
  char* src = const_cast<char*>(in);
  size_t left = inLen;
  while (left > 0) {
    char* dst = chunk;
    size_t room = sizeof chunk;
    const size_t r = iconv(cd, &src, &left, &dst, &room);
    out.append(chunk, size_t(dst - chunk));
    if (r != static_cast<size_t>(-1)) continue;
    if (errno == E2BIG) continue;
    if (strict) return false;
    flush();
    out.append(replacement, replacementLen);
    const size_t skip = left < skipUnit ? left : skipUnit;
    src += skip;
    left -= skip;
  }
  flush();
  return true;
}

}  // namespace

UINT GetACP() { return activeCodePage(); }

bool KxSetAnsiCodePage(UINT codePage) {
  const char* name = iconvName(codePage);
  if (!name || converter("UTF-16LE", name) == reinterpret_cast<iconv_t>(-1)) return false;
  activeCodePage() = codePage;
  return true;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLen, WCHAR* dst, int dstLen) {
  const char* name = iconvName(resolve(codePage));
  if (!name || !src || dstLen < 0 || (dstLen > 0 && !dst)) return 0;
  const size_t len = srcLen < 0 ? std::strlen(src) + 1 : static_cast<size_t>(srcLen);
  iconv_t cd = converter("UTF-16LE", name);
  if (cd == reinterpret_cast<iconv_t>(-1)) return 0;
  static const char replacement[2] = {char(0xFD), char(0xFF)};
  std::string utf16;
  if (!convert(cd, src, len, utf16, replacement, 2, 1, (flags & MB_ERR_INVALID_CHARS) != 0)) return 0;
  const int units = static_cast<int>(utf16.size() / 2);
  if (dstLen == 0) return units;
  if (units > dstLen) return 0;
  for (int i = 0; i < units; ++i)
    dst[i] = static_cast<WCHAR>(uint8_t(utf16[size_t(2 * i)]) | (uint8_t(utf16[size_t(2 * i + 1)]) << 8));
  return units;
}

int WideCharToMultiByte(UINT codePage, DWORD, const WCHAR* src, int srcLen, char* dst, int dstLen,
                        const char* defaultChar, BOOL* usedDefault) {
  const char* name = iconvName(resolve(codePage));
  if (usedDefault) *usedDefault = FALSE;
  if (!name || !src || dstLen < 0 || (dstLen > 0 && !dst)) return 0;
  size_t units = 0;
  if (srcLen < 0) {
    while (src[units]) ++units;
    ++units;
  } else {
    units = static_cast<size_t>(srcLen);
  }
  std::string utf16(units * 2, '\0');
  for (size_t i = 0; i < units; ++i) {
    utf16[2 * i] = char(src[i] & 0xFF);
    utf16[2 * i + 1] = char(src[i] >> 8);
  }
  iconv_t cd = converter(name, "UTF-16LE");
  if (cd == reinterpret_cast<iconv_t>(-1)) return 0;
  const char* fallback = defaultChar ? defaultChar : "?";
  std::string bytes;
  convert(cd, utf16.data(), utf16.size(), bytes, fallback, std::strlen(fallback), 2, false);
  if (usedDefault && bytes.size() != 0) {
    // Report substitution by converting back strictly.
    std::string check;
    *usedDefault = convert(cd, utf16.data(), utf16.size(), check, "", 0, 2, true) ? FALSE : TRUE;
  }
  const int n = static_cast<int>(bytes.size());
  if (dstLen == 0) return n;
  if (n > dstLen) return 0;
  std::memcpy(dst, bytes.data(), bytes.size());
  return n;
}

BOOL IsDBCSLeadByte(BYTE c) {
  switch (activeCodePage()) {
    case 936:
    case 54936:
    case 20936:
    case 949:
    case 950: return c >= 0x81 && c <= 0xFE;
    case 932: return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
    default: return FALSE;
  }
}

const char* CharNextA(const char* p) {
  if (!p || !*p) return p;
  const auto c = static_cast<unsigned char>(*p);
  size_t len = 1;
  if (activeCodePage() == CP_UTF8) {
    if (c >= 0xF0 && c <= 0xF4) len = 4;
    else if (c >= 0xE0) len = 3;
    else if (c >= 0xC2 && c < 0xE0) len = 2;
  } else if (IsDBCSLeadByte(c)) {
    len = 2;
  }
  // Never step over the terminator of a truncated sequence.
  const bool utf8 = activeCodePage() == CP_UTF8;
  for (size_t i = 1; i < len; ++i)
    if (p[i] == '\0' || (utf8 && (static_cast<unsigned char>(p[i]) & 0xC0) != 0x80)) return p + i;
  return p + len;
}
