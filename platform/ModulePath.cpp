#include <unistd.h>

#include <cstring>

#include "platform/Win32System.h"

DWORD GetModuleFileNameA(HMODULE module, char* path, DWORD size) {
  if (module != nullptr || !path || size == 0) return 0;
  char buffer[4096];
  const ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) {
    path[0] = '\0';
    return 0;
  }
  const DWORD copied = static_cast<DWORD>(n) < size ? static_cast<DWORD>(n) : size - 1;
  std::memcpy(path, buffer, copied);
  path[copied] = '\0';
  return copied;
}
