#pragma once
#include <cstdio>

#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// A file on disk, read and written as raw bytes.
class KXRENDER_API CFile {
 public:
  /// Open modes; modeCreate is or-ed with a write mode.
  enum OpenFlags : UINT { modeRead = 0x0000, modeWrite = 0x0001, modeReadWrite = 0x0002, modeCreate = 0x1000 };

  ///@{
  /// Not open; the destructor closes.
  CFile() = default;
  virtual ~CFile();
  ///@}
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  /// modeCreate truncates or creates; without it the file must exist.
  virtual bool Open(const char* path, UINT flags);
  virtual void Close();  ///< Closes the file; nothing when not open.
  /// Returns the number of bytes read (fewer at the end of the file).
  virtual UINT Read(void* buffer, UINT count);
  /// Returns false when not everything could be written.
  virtual bool Write(const void* buffer, UINT count);
  virtual void Flush();  ///< Writes buffered bytes to disk.

 private:
  std::FILE* m_file = nullptr;
};
