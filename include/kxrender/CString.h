#pragma once
// A byte string in the process's ANSI code page, with the operations the
// engine and its hosts use. Positions and lengths count bytes; searches for
// a single character step over whole characters of the active code page.
#include <string>

#include "kxrender/Export.h"

class CArchive;

class KXRENDER_API CString {
 public:
  CString() = default;
  CString(const char* s) : m_s(s ? s : "") {}
  CString(const char* s, int length);
  CString(const std::string& s) : m_s(s) {}
  CString(char ch, int repeat = 1) : m_s(repeat > 0 ? size_t(repeat) : 0, ch) {}

  int GetLength() const { return static_cast<int>(m_s.size()); }
  bool IsEmpty() const { return m_s.empty(); }
  void Empty() { m_s.clear(); }
  char GetAt(int i) const;
  void SetAt(int i, char ch);
  char operator[](int i) const { return GetAt(i); }
  operator const char*() const { return m_s.c_str(); }
  const char* GetString() const { return m_s.c_str(); }
  const std::string& str() const { return m_s; }

  int Compare(const char* s) const;
  int CompareNoCase(const char* s) const;  ///< ASCII letters folded

  int Find(char ch, int start = 0) const;
  int Find(const char* sub, int start = 0) const;
  int ReverseFind(char ch) const;
  int FindOneOf(const char* chars) const;

  CString Left(int count) const;
  CString Mid(int first) const;
  CString Mid(int first, int count) const;
  CString Right(int count) const;

  CString& Trim();
  CString& TrimLeft();
  CString& TrimRight();
  CString& Trim(const char* chars);
  CString& TrimLeft(const char* chars);
  CString& TrimRight(const char* chars);
  CString& MakeUpper();
  CString& MakeLower();
  int Replace(const char* from, const char* to);
  int Replace(char from, char to);
  int Delete(int index, int count = 1);
  int Insert(int index, const char* s);

  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

  CString& operator=(const char* s) {
    m_s = s ? s : "";
    return *this;
  }
  CString& operator+=(const CString& s) {
    m_s += s.m_s;
    return *this;
  }
  CString& operator+=(const char* s) {
    if (s) m_s += s;
    return *this;
  }
  CString& operator+=(char ch) {
    m_s += ch;
    return *this;
  }

  friend CString operator+(const CString& a, const CString& b) { return CString(a.m_s + b.m_s); }
  friend CString operator+(const CString& a, const char* b) { return CString(a.m_s + (b ? b : "")); }
  friend CString operator+(const char* a, const CString& b) { return CString((a ? a : "") + b.m_s); }
  friend CString operator+(const CString& a, char b) { return CString(a.m_s + b); }
  friend bool operator==(const CString& a, const CString& b) { return a.m_s == b.m_s; }
  friend bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
  friend bool operator==(const char* a, const CString& b) { return b.Compare(a) == 0; }
  friend bool operator!=(const CString& a, const CString& b) { return a.m_s != b.m_s; }
  friend bool operator!=(const CString& a, const char* b) { return a.Compare(b) != 0; }
  friend bool operator<(const CString& a, const CString& b) { return a.m_s < b.m_s; }

  /// Archive form: a length prefix (byte; 0xFF then 16 bits; 0xFF 0xFFFF then
  /// 32 bits) followed by the bytes.
  friend KXRENDER_API CArchive& operator<<(CArchive& ar, const CString& s);
  friend KXRENDER_API CArchive& operator>>(CArchive& ar, CString& s);

 private:
  std::string m_s;
};
