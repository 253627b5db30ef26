// Code-page conversion: any bytes in any supported code page convert to
// UTF-16 and back without reading or writing outside the buffers given,
// and the size a call asks for is the size it then writes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/Win32System.h"
#include "support/AnsiText.h"

namespace {
const UINT kCodePages[] = {CP_UTF8, 936, 54936, 20936, 950, 932, 949, 874, 1250, 1251, 1252,
                           1253,    1254, 1255, 1256, 1257, 1258, 20127, 28591, 12345};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const UINT cp = kCodePages[data[0] % (sizeof kCodePages / sizeof kCodePages[0])];
  const DWORD flags = (data[1] & 1) ? MB_ERR_INVALID_CHARS : 0;
  const char* src = reinterpret_cast<const char*>(data + 2);
  const int len = static_cast<int>(size - 2);
  // Each input starts from its own code page, whatever the one before set.
  if (!KxSetAnsiCodePage(cp)) KxSetAnsiCodePage(CP_UTF8);

  // Exactly sized buffers, so that any overrun is caught.
  const int units = MultiByteToWideChar(cp, flags, src, len, nullptr, 0);
  if (units < 0) std::abort();
  if (units > 0) {
    std::vector<WCHAR> wide(static_cast<size_t>(units));
    if (MultiByteToWideChar(cp, flags, src, len, wide.data(), units) != units) std::abort();
    if (units > 1 && MultiByteToWideChar(cp, flags, src, len, wide.data(), units - 1) != 0) std::abort();
    BOOL usedDefault = FALSE;
    const int bytes = WideCharToMultiByte(cp, 0, wide.data(), units, nullptr, 0, nullptr, &usedDefault);
    if (bytes < 0) std::abort();
    if (bytes > 0) {
      std::vector<char> narrow(static_cast<size_t>(bytes));
      if (WideCharToMultiByte(cp, 0, wide.data(), units, narrow.data(), bytes, "?", nullptr) != bytes) std::abort();
    }
  }
  // The input read as UTF-16 units (odd bytes and lone surrogates included).
  std::vector<WCHAR> raw(static_cast<size_t>(len) / 2);
  for (size_t i = 0; i < raw.size(); ++i) raw[i] = WCHAR(src[2 * i] & 0xFF) | WCHAR((src[2 * i + 1] & 0xFF) << 8);
  if (!raw.empty()) {
    const int bytes = WideCharToMultiByte(cp, 0, raw.data(), int(raw.size()), nullptr, 0, "", nullptr);
    if (bytes > 0) {
      std::vector<char> narrow(static_cast<size_t>(bytes));
      WideCharToMultiByte(cp, 0, raw.data(), int(raw.size()), narrow.data(), bytes, "", nullptr);
    }
  }
  // Character stepping over a terminated copy never passes the terminator.
  const std::string text(src, size_t(len));
  for (const char* p = text.c_str(); *p;) {
    const char* next = CharNextA(p);
    if (next <= p || next > text.c_str() + std::strlen(text.c_str())) std::abort();
    p = next;
  }
  IsDBCSLeadByte(data[1]);
  // Engine text to UTF-8 and back is the same text when both directions
  // work: the same characters, though not always the same bytes (a code
  // page may have two codes for one character, or join a letter and a
  // combining mark into one).
  std::string utf8, ansi, again;
  if (KxAnsiToUtf8(text, utf8) && KxUtf8ToAnsi(utf8, ansi) && (!KxAnsiToUtf8(ansi, again) || again != utf8))
    std::abort();
  return 0;
}
