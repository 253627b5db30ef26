#pragma once
#include <cstdio>

#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// A file on disk, read and written as raw bytes.
class KXRENDER_API CFile {
 public:
  enum OpenFlags : UINT { modeRead = 0x0000, modeWrite = 0x0001, modeReadWrite = 0x0002, modeCreate = 0x1000 };

  CFile() = default;
  virtual ~CFile();
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  /// modeCreate truncates or creates; without it the file must exist.
  virtual bool Open(const char* path, UINT flags);
  virtual void Close();
  /// Returns the number of bytes read (fewer at the end of the file).
  virtual UINT Read(void* buffer, UINT count);
  /// Returns false when not everything could be written.
  virtual bool Write(const void* buffer, UINT count);
  virtual void Flush();

 private:
  std::FILE* m_file = nullptr;
};
