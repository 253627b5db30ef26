#pragma once
// The serialisable object base and its runtime-class registry: a class
// registered with IMPLEMENT_SERIAL can be created from its name when an
// archive that holds it is read back.
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

class CArchive;
class CObject;

// Set in a schema to accept older schemas when loading.
/// Set in a schema to accept older schemas when loading.
#define VERSIONABLE_SCHEMA 0x80000000u

/// The run-time description of a serialisable class: name, size, schema,
/// factory and base; registered by IMPLEMENT_SERIAL.
struct KXRENDER_API CRuntimeClass {
  const char* m_lpszClassName;  ///< The class name.
  int m_nObjectSize;  ///< sizeof the class.
  UINT m_wSchema;  ///< 0xFFFF: not serialisable
  CObject* (*m_pfnCreateObject)();  ///< Factory of a new default object (the caller owns it), or null.
  const CRuntimeClass* m_pBaseClass;  ///< The base class's description, or null.

  CObject* CreateObject() const;  ///< A new object of this class (the caller owns it); null when not creatable.
  bool IsDerivedFrom(const CRuntimeClass* base) const;  ///< True when this class is base or derives from it.
  /// Registered classes by name; null when unknown.
  static const CRuntimeClass* FromName(const char* className);
  static CObject* CreateObject(const char* className);  ///< A new object of the named class; null when unknown.
  static void Register(const CRuntimeClass* cls);  ///< Adds a class to the registry (IMPLEMENT_SERIAL does it).

  /// Archive form of a class reference: schema (16 bits), name length (16
  /// bits), then the name's bytes.
  void Store(CArchive& ar) const;
  /// Reads that form; null when the name is too long or unknown.
  static const CRuntimeClass* Load(CArchive& ar, UINT* schema);
};

/// Base of the serialisable classes.
class KXRENDER_API CObject {
 public:
  static const CRuntimeClass classCObject;  ///< The description of CObject itself.
  virtual const CRuntimeClass* GetRuntimeClass() const;  ///< The description of the object's class.
  virtual ~CObject() = default;  ///< Virtual: objects are deleted through the base.
  virtual void Serialize(CArchive& ar);  ///< Stores or loads the object's data; the base has none.

  bool IsSerializable() const;  ///< True when the class has a schema.
  bool IsKindOf(const CRuntimeClass* cls) const;  ///< True when the object's class is cls or derives from it.

 protected:
  ///@{
  /// Only derived classes are created and copied.
  CObject() = default;
  CObject(const CObject&) = default;
  CObject& operator=(const CObject&) = default;
  ///@}
};

/// The CRuntimeClass of a class.
#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

/// In a class body: makes the class serialisable (runtime class, factory,
/// archive extraction); IMPLEMENT_SERIAL defines them in one source file.
#define DECLARE_SERIAL(class_name)                                   \
 public:                                                             \
  static const CRuntimeClass class##class_name;                      \
  const CRuntimeClass* GetRuntimeClass() const override;             \
  static CObject* CreateObject();                                    \
  friend KXRENDER_API CArchive& operator>>(CArchive& ar, class_name*& pOb);

/// Defines what DECLARE_SERIAL declares and registers the class by name.
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
