#include "kxrender/CArchive.h"

#include <cstring>

#include "kxrender/CString.h"
#include "platform/Win32System.h"

namespace {
const WORD kNullTag = 0;
const WORD kNewClassTag = 0xFFFF;
const WORD kClassTag = 0x8000;
const DWORD kBigClassTag = 0x80000000;
const WORD kBigObjectTag = 0x7FFF;
}  // namespace

const char* CArchiveException::what() const noexcept {
  switch (m_cause) {
    case readOnly: return "archive: storing into an archive opened for loading";
    case endOfFile: return "archive: read past the end";
    case writeOnly: return "archive: loading from an archive opened for storing";
    case badIndex: return "archive: bad object or class index";
    case badClass: return "archive: unknown or unexpected class";
    case badSchema: return "archive: unsupported schema";
    default: return "archive: error";
  }
}

CArchive::CArchive(CFile* file, UINT mode) : m_file(file), m_mode(mode) {
  if (!file) throw CArchiveException(CArchiveException::genericException);
}

CArchive::~CArchive() {
  if (IsStoring()) m_file->Flush();
}

void CArchive::Write(const void* data, UINT count) {
  if (!IsStoring()) throw CArchiveException(CArchiveException::readOnly);
  if (count && !m_file->Write(data, count)) throw CArchiveException(CArchiveException::genericException);
}

UINT CArchive::Read(void* data, UINT count) {
  if (!IsLoading()) throw CArchiveException(CArchiveException::writeOnly);
  return count ? m_file->Read(data, count) : 0;
}

CArchive& CArchive::put(const void* data, UINT count) {
  Write(data, count);
  return *this;
}

CArchive& CArchive::get(void* data, UINT count) {
  if (Read(data, count) != count) throw CArchiveException(CArchiveException::endOfFile);
  return *this;
}

CArchive& CArchive::operator<<(float v) {
  uint32_t bits;
  std::memcpy(&bits, &v, 4);
  return putLE(bits);
}

CArchive& CArchive::operator<<(double v) {
  uint64_t bits;
  std::memcpy(&bits, &v, 8);
  return putLE(bits);
}

CArchive& CArchive::operator>>(bool& v) {
  BYTE b = 0;
  *this >> b;
  v = b != 0;
  return *this;
}

CArchive& CArchive::operator>>(short& v) {
  WORD w = 0;
  getLE(w);
  v = static_cast<short>(w);
  return *this;
}

CArchive& CArchive::operator>>(LONG& v) {
  DWORD d = 0;
  getLE(d);
  v = static_cast<LONG>(d);
  return *this;
}

CArchive& CArchive::operator>>(int64_t& v) {
  uint64_t u = 0;
  getLE(u);
  v = static_cast<int64_t>(u);
  return *this;
}

CArchive& CArchive::operator>>(float& v) {
  uint32_t bits = 0;
  getLE(bits);
  std::memcpy(&v, &bits, 4);
  return *this;
}

CArchive& CArchive::operator>>(double& v) {
  uint64_t bits = 0;
  getLE(bits);
  std::memcpy(&v, &bits, 8);
  return *this;
}

void CArchive::WriteClass(const CRuntimeClass* cls) {
  if (!IsStoring()) throw CArchiveException(CArchiveException::readOnly);
  if (!cls || cls->m_wSchema == 0xFFFF) throw CArchiveException(CArchiveException::badClass);
  auto it = m_storeMap.find(cls);
  if (it != m_storeMap.end()) {
    if (it->second < kBigObjectTag) {
      *this << static_cast<WORD>(kClassTag | it->second);
    } else {
      *this << kBigObjectTag << static_cast<DWORD>(kBigClassTag | it->second);
    }
    return;
  }
  *this << kNewClassTag;
  cls->Store(*this);
  m_storeMap[cls] = m_mapCount++;
}

void CArchive::WriteObject(const CObject* object) {
  if (!IsStoring()) throw CArchiveException(CArchiveException::readOnly);
  if (!object) {
    *this << kNullTag;
    return;
  }
  auto it = m_storeMap.find(object);
  if (it != m_storeMap.end()) {
    if (it->second < kBigObjectTag) *this << static_cast<WORD>(it->second);
    else *this << kBigObjectTag << it->second;
    return;
  }
  WriteClass(object->GetRuntimeClass());
  // The object takes its index before its contents, so it can refer to itself.
  m_storeMap[object] = m_mapCount++;
  const_cast<CObject*>(object)->Serialize(*this);
}

const CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* requested, UINT* schema, DWORD* objectTag) {
  if (!IsLoading()) throw CArchiveException(CArchiveException::writeOnly);
  WORD tag = 0;
  *this >> tag;
  DWORD obTag;
  if (tag == kBigObjectTag) *this >> obTag;
  else obTag = (DWORD(tag & kClassTag) << 16) | (tag & ~kClassTag);

  if (!(obTag & kBigClassTag)) {
    if (!objectTag) throw CArchiveException(CArchiveException::badIndex);
    *objectTag = obTag;
    return nullptr;
  }

  const CRuntimeClass* cls = nullptr;
  UINT loadedSchema = 0;
  if (tag == kNewClassTag) {
    cls = CRuntimeClass::Load(*this, &loadedSchema);
    if (!cls) throw CArchiveException(CArchiveException::badClass);
    if ((cls->m_wSchema & ~VERSIONABLE_SCHEMA) != loadedSchema && !(cls->m_wSchema & VERSIONABLE_SCHEMA))
      throw CArchiveException(CArchiveException::badSchema);
    m_loadArray.push_back(LoadEntry{cls, nullptr});
    m_mapCount++;
  } else {
    const DWORD index = obTag & ~kBigClassTag;
    if (index == 0 || index >= m_loadArray.size() || !m_loadArray[index].cls)
      throw CArchiveException(CArchiveException::badIndex);
    cls = m_loadArray[index].cls;
    loadedSchema = cls->m_wSchema & ~VERSIONABLE_SCHEMA;
  }
  if (requested && !cls->IsDerivedFrom(requested)) throw CArchiveException(CArchiveException::badClass);
  if (schema) *schema = loadedSchema;
  return cls;
}

CObject* CArchive::ReadObject(const CRuntimeClass* requested) {
  DWORD obTag = 0;
  UINT schema = 0;
  const CRuntimeClass* cls = ReadClass(requested, &schema, &obTag);
  if (!cls) {
    // A reference to an object read earlier (or null).
    if (obTag >= m_loadArray.size() || (obTag != 0 && !m_loadArray[obTag].object))
      throw CArchiveException(CArchiveException::badIndex);
    CObject* object = m_loadArray[obTag].object;
    if (object && requested && !object->IsKindOf(requested)) throw CArchiveException(CArchiveException::badClass);
    return object;
  }
  CObject* object = cls->CreateObject();
  if (!object) throw CArchiveException(CArchiveException::badClass);
  m_loadArray.push_back(LoadEntry{nullptr, object});
  m_mapCount++;
  try {
    object->Serialize(*this);
  } catch (...) {
    m_loadArray.back().object = nullptr;
    delete object;
    throw;
  }
  return object;
}

// Strings: a length prefix that grows with the length, then the bytes.
CArchive& operator<<(CArchive& ar, const CString& s) {
  const size_t n = s.str().size();
  if (n < 0xFF) {
    ar << static_cast<BYTE>(n);
  } else if (n < 0xFFFE) {
    ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(n);
  } else {
    ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(n);
  }
  ar.Write(s.str().data(), static_cast<UINT>(n));
  return ar;
}

// One 0xFFFE marker announces UTF-16 text; a second one is corrupt data, so
// a file of repeated markers is refused instead of being followed forever.
static DWORD readStringLength(CArchive& ar, bool& wide) {
  for (int markers = 0;; ++markers) {
    BYTE b = 0;
    ar >> b;
    if (b < 0xFF) return b;
    WORD w = 0;
    ar >> w;
    if (w == 0xFFFE) {
      if (markers > 0) throw CArchiveException(CArchiveException::genericException);
      wide = true;
      continue;
    }
    if (w < 0xFFFF) return w;
    DWORD d = 0;
    ar >> d;
    return d;
  }
}

CArchive& operator>>(CArchive& ar, CString& s) {
  bool wide = false;
  const DWORD n = readStringLength(ar, wide);
  // Read in pieces so a corrupt length cannot make us allocate it up front.
  std::string bytes;
  const size_t unit = wide ? 2 : 1;
  size_t left = size_t(n) * unit;
  char chunk[65536];
  while (left > 0) {
    const UINT want = static_cast<UINT>(left < sizeof chunk ? left : sizeof chunk);
    if (ar.Read(chunk, want) != want) throw CArchiveException(CArchiveException::endOfFile);
    bytes.append(chunk, want);
    left -= want;
  }
  if (!wide) {
    s = CString(bytes);
    return ar;
  }
  std::vector<WCHAR> units(n);
  for (DWORD i = 0; i < n; ++i) units[i] = WCHAR(uint8_t(bytes[2 * i]) | (uint8_t(bytes[2 * i + 1]) << 8));
  const int len = n ? WideCharToMultiByte(CP_ACP, 0, units.data(), int(n), nullptr, 0, nullptr, nullptr) : 0;
  std::string ansi(size_t(len), '\0');
  if (len) WideCharToMultiByte(CP_ACP, 0, units.data(), int(n), &ansi[0], len, nullptr, nullptr);
  s = CString(ansi);
  return ar;
}
