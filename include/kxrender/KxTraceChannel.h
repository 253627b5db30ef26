#pragma once
// The local channel trace lines travel on: each line is one datagram on a
// per-user Unix socket (or the one the variable KXTRACE_CHANNEL names), framed as the viewer record: the tag "twin", the
// byte count (32-bit little-endian), then the bytes (no terminating zero).
#include <cstddef>
#include <string>

#include "kxrender/Export.h"

/// Sends one record without blocking; false when no viewer listens.
KXRENDER_API bool KxTraceSend(const char* data, size_t length);

/// The viewer end: binds the channel and receives records.
class KXRENDER_API KxTraceListener {
 public:
  KxTraceListener();
  ~KxTraceListener();
  KxTraceListener(const KxTraceListener&) = delete;
  KxTraceListener& operator=(const KxTraceListener&) = delete;

  /// False when the channel cannot be bound (another viewer holds it).
  bool open();
  /// Waits up to timeoutMs (negative: forever) for a record; true and the
  /// text when one arrived, false on time-out or a malformed datagram.
  bool receive(std::string& text, int timeoutMs);

 private:
  int m_fd;
};
