#pragma once
#include <vector>

#include "kxrender/CFile.h"

/// A file in memory: writes append to a growable buffer, reads consume it
/// from the start (or from data given to the constructor).
class KXRENDER_API CMemFile : public CFile {
 public:
  ///@{
  /// Empty, or holding a copy of size bytes of data to read.
  CMemFile() = default;
  CMemFile(const void* data, size_t size);
  ///@}

  ///@{
  /// The file interface on the buffer: Open, Close and Flush do nothing; Read
  /// consumes from the position and returns how many bytes it gave; Write
  /// appends and always succeeds.
  bool Open(const char*, UINT) override { return true; }
  void Close() override {}
  UINT Read(void* buffer, UINT count) override;
  bool Write(const void* buffer, UINT count) override;
  void Flush() override {}
  ///@}

  ///@{
  /// The bytes, the read position, and rewinding to the start.
  const std::vector<BYTE>& data() const { return m_data; }
  size_t position() const { return m_pos; }
  void SeekToBegin() { m_pos = 0; }
  ///@}

 private:
  std::vector<BYTE> m_data;
  size_t m_pos = 0;
};
