#pragma once
// Binary archive of values and objects, byte-compatible with the Windows
// framework's format: values little-endian at their natural sizes; an
// object written through a pointer is preceded by its class (the new-class
// tag 0xFFFF, schema, class name) the first time, by a class-index tag
// (0x8000 | index) later, and a repeat of the same object by its index.
#include <exception>
#include <map>
#include <vector>

#include "kxrender/CFile.h"
#include "kxrender/CObject.h"

/// Thrown by CArchive when a read or write cannot go on; m_cause says why.
class KXRENDER_API CArchiveException : public std::exception {
 public:
  /// Why an archive operation failed.
  enum Cause {
    none,  ///< no failure
    genericException,  ///< the file failed
    readOnly,   ///< storing into an archive that is loading
    endOfFile,  ///< reading past the end
    writeOnly,  ///< loading from an archive that is storing
    badIndex,  ///< a class or object reference to nothing read yet
    badClass,  ///< an object of another class than requested
    /// a schema the class does not accept
    badSchema
  };
  explicit CArchiveException(Cause cause) : m_cause(cause) {}  ///< An exception for cause.
  const char* what() const noexcept override;  ///< A short description of the cause.
  Cause m_cause;  ///< Why it failed.
};

/// Binary archive of values and objects on a CFile (not owned): values
/// little-endian at their natural sizes, objects with their class the first
/// time and by index later. Failures throw CArchiveException.
class KXRENDER_API CArchive {
 public:
  /// Writing or reading.
  enum Mode : UINT { store = 0, load = 1 };

  CArchive(CFile* file, UINT mode);  ///< An archive on file (which must outlive it) in the given mode.
  ~CArchive();  ///< Flushes a storing archive.
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  ///@{
  /// The mode and the file.
  bool IsLoading() const { return (m_mode & load) != 0; }
  bool IsStoring() const { return !IsLoading(); }
  CFile* GetFile() const { return m_file; }
  ///@}
  ///@{
  /// Flushes the file (Close does only that; the file stays open).
  void Flush() { m_file->Flush(); }
  void Close() { Flush(); }
  ///@}

  void Write(const void* data, UINT count);  ///< Writes count raw bytes; throws readOnly when loading.
  /// Reads up to count bytes; returns how many there were.
  UINT Read(void* data, UINT count);

  ///@{
  /// Stores a value little-endian at its natural size (bool as one byte).
  CArchive& operator<<(BYTE v) { return put(&v, 1); }
  CArchive& operator<<(char v) { return put(&v, 1); }
  CArchive& operator<<(bool v) { return *this << static_cast<BYTE>(v ? 1 : 0); }
  CArchive& operator<<(WORD v) { return putLE(v); }
  CArchive& operator<<(short v) { return putLE(static_cast<WORD>(v)); }
  CArchive& operator<<(DWORD v) { return putLE(v); }
  CArchive& operator<<(LONG v) { return putLE(static_cast<DWORD>(v)); }
  CArchive& operator<<(int64_t v) { return putLE(static_cast<uint64_t>(v)); }
  CArchive& operator<<(uint64_t v) { return putLE(v); }
  CArchive& operator<<(float v);
  CArchive& operator<<(double v);
  ///@}

  ///@{
  /// Loads a value stored by operator<<; throws endOfFile past the end.
  CArchive& operator>>(BYTE& v) { return get(&v, 1); }
  CArchive& operator>>(char& v) { return get(&v, 1); }
  CArchive& operator>>(bool& v);
  CArchive& operator>>(WORD& v) { return getLE(v); }
  CArchive& operator>>(short& v);
  CArchive& operator>>(DWORD& v) { return getLE(v); }
  CArchive& operator>>(LONG& v);
  CArchive& operator>>(int64_t& v);
  CArchive& operator>>(uint64_t& v) { return getLE(v); }
  CArchive& operator>>(float& v);
  CArchive& operator>>(double& v);
  ///@}

  void WriteObject(const CObject* object);  ///< Stores an object (null allowed) with its class; a repeat is stored by index.
  /// Reads an object written by WriteObject; a requested class the object is
  /// not derived from raises badClass. Objects read are owned by the caller.
  CObject* ReadObject(const CRuntimeClass* requested);
  void WriteClass(const CRuntimeClass* cls);  ///< Stores a class reference.
  /// Reads a class reference; when an object reference is found instead, its
  /// index goes to *objectTag (or badIndex is raised when none is wanted).
  const CRuntimeClass* ReadClass(const CRuntimeClass* requested, UINT* schema, DWORD* objectTag);

  ///@{
  /// WriteObject and ReadObject (any class) as operators.
  friend CArchive& operator<<(CArchive& ar, const CObject* object) {
    ar.WriteObject(object);
    return ar;
  }
  friend CArchive& operator>>(CArchive& ar, CObject*& object) {
    object = ar.ReadObject(nullptr);
    return ar;
  }
  ///@}

 private:
  CArchive& put(const void* data, UINT count);
  CArchive& get(void* data, UINT count);
  template <typename T>
  CArchive& putLE(T v) {
    BYTE b[sizeof(T)];
    for (size_t i = 0; i < sizeof(T); ++i) b[i] = static_cast<BYTE>(v >> (8 * i));
    return put(b, sizeof(T));
  }
  template <typename T>
  CArchive& getLE(T& v) {
    BYTE b[sizeof(T)];
    get(b, sizeof(T));
    T r = 0;
    for (size_t i = 0; i < sizeof(T); ++i) r = static_cast<T>(r | (static_cast<T>(b[i]) << (8 * i)));
    v = r;
    return *this;
  }

  CFile* m_file;
  UINT m_mode;
  /// Index 0 stands for null; classes and objects share one numbering.
  DWORD m_mapCount = 1;
  std::map<const void*, DWORD> m_storeMap;
  struct LoadEntry {
    const CRuntimeClass* cls;
    CObject* object;
  };
  std::vector<LoadEntry> m_loadArray{LoadEntry{nullptr, nullptr}};
};
