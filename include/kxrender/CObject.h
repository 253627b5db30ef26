#pragma once
// The serialisable object base and its runtime-class registry: a class
// registered with IMPLEMENT_SERIAL can be created from its name when an
// archive that holds it is read back.
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

class CArchive;
class CObject;

// Set in a schema to accept older schemas when loading.
#define VERSIONABLE_SCHEMA 0x80000000u

struct KXRENDER_API CRuntimeClass {
  const char* m_lpszClassName;
  int m_nObjectSize;
  UINT m_wSchema;  ///< 0xFFFF: not serialisable
  CObject* (*m_pfnCreateObject)();
  const CRuntimeClass* m_pBaseClass;

  CObject* CreateObject() const;
  bool IsDerivedFrom(const CRuntimeClass* base) const;
  /// Registered classes by name; null when unknown.
  static const CRuntimeClass* FromName(const char* className);
  static CObject* CreateObject(const char* className);
  static void Register(const CRuntimeClass* cls);

  /// Archive form of a class reference: schema (16 bits), name length (16
  /// bits), then the name's bytes.
  void Store(CArchive& ar) const;
  /// Reads that form; null when the name is too long or unknown.
  static const CRuntimeClass* Load(CArchive& ar, UINT* schema);
};

class KXRENDER_API CObject {
 public:
  static const CRuntimeClass classCObject;
  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CObject() = default;
  virtual void Serialize(CArchive& ar);

  bool IsSerializable() const;
  bool IsKindOf(const CRuntimeClass* cls) const;

 protected:
  CObject() = default;
  CObject(const CObject&) = default;
  CObject& operator=(const CObject&) = default;
};

#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

#define DECLARE_SERIAL(class_name)                                   \
 public:                                                             \
  static const CRuntimeClass class##class_name;                      \
  const CRuntimeClass* GetRuntimeClass() const override;             \
  static CObject* CreateObject();                                    \
  friend KXRENDER_API CArchive& operator>>(CArchive& ar, class_name*& pOb);

#define IMPLEMENT_SERIAL(class_name, base_class_name, wSchema)                                          \
  CObject* class_name::CreateObject() { return new class_name; }                                        \
  const CRuntimeClass class_name::class##class_name = {#class_name, sizeof(class_name), wSchema,         \
                                                       class_name::CreateObject,                        \
                                                       RUNTIME_CLASS(base_class_name)};                 \
  const CRuntimeClass* class_name::GetRuntimeClass() const { return RUNTIME_CLASS(class_name); }        \
  static const bool kx_registered_##class_name =                                                        \
      (CRuntimeClass::Register(RUNTIME_CLASS(class_name)), true);                                       \
  CArchive& operator>>(CArchive& ar, class_name*& pOb) {                                                \
    pOb = static_cast<class_name*>(ar.ReadObject(RUNTIME_CLASS(class_name)));                          \
    return ar;                                                                                          \
  }
