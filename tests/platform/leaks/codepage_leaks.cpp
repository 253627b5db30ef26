// Runs under LeakSanitizer: converting text through several code pages
// leaves nothing allocated when the process exits.
#include <initializer_list>

#include "platform/Win32System.h"

int main() {
  const char text[] = "\xD6\xD0\xCE\xC4";  // GBK bytes
  for (UINT cp : {936u, 950u, 1252u, static_cast<UINT>(CP_UTF8)}) {
    if (!KxSetAnsiCodePage(cp)) return 1;
    WCHAR wide[8];
    const int n = MultiByteToWideChar(CP_ACP, 0, text, 4, wide, 8);
    char back[16];
    if (n <= 0 || WideCharToMultiByte(CP_ACP, 0, wide, n, back, 16, nullptr, nullptr) <= 0) return 1;
  }
  return 0;
}
