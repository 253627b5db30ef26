#include "kxrender/CObject.h"

#include <cstring>
#include <vector>

#include "kxrender/CArchive.h"

namespace {
std::vector<const CRuntimeClass*>& registry() {
  static std::vector<const CRuntimeClass*> classes;
  return classes;
}
}  // namespace

const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr};

const CRuntimeClass* CObject::GetRuntimeClass() const { return &classCObject; }

void CObject::Serialize(CArchive&) {}

bool CObject::IsSerializable() const { return GetRuntimeClass()->m_wSchema != 0xFFFF; }

bool CObject::IsKindOf(const CRuntimeClass* cls) const { return GetRuntimeClass()->IsDerivedFrom(cls); }

CObject* CRuntimeClass::CreateObject() const { return m_pfnCreateObject ? m_pfnCreateObject() : nullptr; }

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
  for (const CRuntimeClass* c = this; c; c = c->m_pBaseClass)
    if (c == base) return true;
  return false;
}

void CRuntimeClass::Register(const CRuntimeClass* cls) {
  if (cls && !FromName(cls->m_lpszClassName)) registry().push_back(cls);
}

const CRuntimeClass* CRuntimeClass::FromName(const char* className) {
  if (!className) return nullptr;
  for (const CRuntimeClass* c : registry())
    if (std::strcmp(c->m_lpszClassName, className) == 0) return c;
  return nullptr;
}

CObject* CRuntimeClass::CreateObject(const char* className) {
  const CRuntimeClass* c = FromName(className);
  return c ? c->CreateObject() : nullptr;
}

void CRuntimeClass::Store(CArchive& ar) const {
  const WORD length = static_cast<WORD>(std::strlen(m_lpszClassName));
  ar << static_cast<WORD>(m_wSchema) << length;
  ar.Write(m_lpszClassName, length);
}

const CRuntimeClass* CRuntimeClass::Load(CArchive& ar, UINT* schema) {
  WORD wSchema = 0, length = 0;
  ar >> wSchema >> length;
  char name[64];
  if (length >= sizeof name || ar.Read(name, length) != length) return nullptr;
  name[length] = '\0';
  if (schema) *schema = wSchema;
  return FromName(name);
}
