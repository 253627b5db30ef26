// Trace viewer: prints every line the engine's KxPrintf sends, until killed.
#include <cstdio>
#include <string>

#include "kxrender/KxTraceChannel.h"

int main() {
  KxTraceListener listener;
  if (!listener.open()) {
    std::fprintf(stderr, "kxtrace: cannot listen (is another kxtrace running?)\n");
    return 1;
  }
  std::fprintf(stderr, "kxtrace: listening\n");
  std::string line;
  for (;;) {
    if (!listener.receive(line, -1)) continue;
    std::fwrite(line.data(), 1, line.size(), stdout);
    if (line.empty() || line.back() != '\n') std::fputc('\n', stdout);
    std::fflush(stdout);
  }
}
