#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kxrender/KxTraceChannel.h"

namespace {

const uint8_t kTag[4] = {'t', 'w', 'i', 'n'};

// An abstract socket name: nothing on disk to clean up, and per user unless
// KXTRACE_CHANNEL names another (to run several viewers side by side).
socklen_t channelAddress(sockaddr_un& addr) {
  std::memset(&addr, 0, sizeof addr);
  addr.sun_family = AF_UNIX;
  const char* custom = std::getenv("KXTRACE_CHANNEL");
  std::string name = (custom && *custom) ? custom : "kxtrace-" + std::to_string(getuid());
  if (name.size() > sizeof addr.sun_path - 2) name.resize(sizeof addr.sun_path - 2);
  std::memcpy(addr.sun_path + 1, name.data(), name.size());
  return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
}

}  // namespace

bool KxTraceSend(const char* data, size_t length) {
  static int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (fd < 0 || (!data && length)) return false;
  std::vector<uint8_t> record(8 + length);
  std::memcpy(record.data(), kTag, 4);
  const uint32_t n = static_cast<uint32_t>(length);
  for (int i = 0; i < 4; ++i) record[size_t(4 + i)] = uint8_t(n >> (8 * i));
  if (length) std::memcpy(record.data() + 8, data, length);
  sockaddr_un addr;
  const socklen_t len = channelAddress(addr);
  // Non-blocking: with no listener this fails at once (ECONNREFUSED), and a
  // viewer that cannot keep up loses lines rather than stalling the host.
  return sendto(fd, record.data(), record.size(), MSG_DONTWAIT | MSG_NOSIGNAL, reinterpret_cast<sockaddr*>(&addr),
                len) == static_cast<ssize_t>(record.size());
}

KxTraceListener::KxTraceListener() : m_fd(-1) {}

KxTraceListener::~KxTraceListener() {
  if (m_fd >= 0) close(m_fd);
}

bool KxTraceListener::open() {
  if (m_fd >= 0) return true;
  m_fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (m_fd < 0) return false;
  sockaddr_un addr;
  const socklen_t len = channelAddress(addr);
  if (bind(m_fd, reinterpret_cast<sockaddr*>(&addr), len) != 0) {
    close(m_fd);
    m_fd = -1;
    return false;
  }
  return true;
}

bool KxTraceListener::receive(std::string& text, int timeoutMs) {
  if (m_fd < 0) return false;
  pollfd p{m_fd, POLLIN, 0};
  if (poll(&p, 1, timeoutMs) <= 0) return false;
  uint8_t buffer[8 + 65536];
  const ssize_t got = recv(m_fd, buffer, sizeof buffer, 0);
  if (got < 8 || std::memcmp(buffer, kTag, 4) != 0) return false;
  uint32_t n = 0;
  for (int i = 0; i < 4; ++i) n |= uint32_t(buffer[4 + i]) << (8 * i);
  if (n != static_cast<uint32_t>(got - 8)) return false;
  text.assign(reinterpret_cast<const char*>(buffer + 8), n);
  return true;
}
