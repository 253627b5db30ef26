#include <cstring>

#include "kxrender/CFile.h"
#include "kxrender/CMemFile.h"

CFile::~CFile() { Close(); }

bool CFile::Open(const char* path, UINT flags) {
  Close();
  if (!path) return false;
  const char* mode = "rb";
  if (flags & modeCreate) mode = (flags & modeReadWrite) ? "w+b" : "wb";
  else if (flags & (modeWrite | modeReadWrite)) mode = "r+b";
  m_file = std::fopen(path, mode);
  return m_file != nullptr;
}

void CFile::Close() {
  if (m_file) std::fclose(m_file);
  m_file = nullptr;
}

UINT CFile::Read(void* buffer, UINT count) {
  if (!m_file || !buffer) return 0;
  return static_cast<UINT>(std::fread(buffer, 1, count, m_file));
}

bool CFile::Write(const void* buffer, UINT count) {
  if (!m_file || (!buffer && count)) return false;
  return std::fwrite(buffer, 1, count, m_file) == count;
}

void CFile::Flush() {
  if (m_file) std::fflush(m_file);
}

CMemFile::CMemFile(const void* data, size_t size) {
  if (data && size) m_data.assign(static_cast<const BYTE*>(data), static_cast<const BYTE*>(data) + size);
}

UINT CMemFile::Read(void* buffer, UINT count) {
  if (!buffer) return 0;
  const size_t left = m_data.size() - m_pos;
  const size_t n = count < left ? count : left;
  if (n) std::memcpy(buffer, m_data.data() + m_pos, n);
  m_pos += n;
  return static_cast<UINT>(n);
}

bool CMemFile::Write(const void* buffer, UINT count) {
  if (!buffer && count) return false;
  const BYTE* p = static_cast<const BYTE*>(buffer);
  m_data.insert(m_data.end(), p, p + count);
  return true;
}
