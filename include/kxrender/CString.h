#pragma once
// A byte string in the process's ANSI code page, with the operations the
// engine and its hosts use. Positions and lengths count bytes; searches for
// a single character step over whole characters of the active code page.
#include <string>

#include "kxrender/Export.h"

class CArchive;

/// A byte string in the process's ANSI code page (KxSetAnsiCodePage).
/// Positions and lengths count bytes and are clamped to the string; a search
/// that finds nothing returns -1.
class KXRENDER_API CString {
 public:
  ///@{
  /// Empty; a copy of s (null as empty) or of its first length bytes; repeat
  /// copies of ch.
  CString() = default;
  CString(const char* s) : m_s(s ? s : "") {}
  CString(const char* s, int length);
  CString(const std::string& s) : m_s(s) {}
  CString(char ch, int repeat = 1) : m_s(repeat > 0 ? size_t(repeat) : 0, ch) {}
  ///@}

  ///@{
  /// Length in bytes, emptiness, and emptying.
  int GetLength() const { return static_cast<int>(m_s.size()); }
  bool IsEmpty() const { return m_s.empty(); }
  void Empty() { m_s.clear(); }
  ///@}
  ///@{
  /// Byte i; reading outside gives 0, writing outside changes nothing.
  char GetAt(int i) const;
  void SetAt(int i, char ch);
  char operator[](int i) const { return GetAt(i); }
  ///@}
  ///@{
  /// The bytes, NUL-terminated; valid until the string changes.
  operator const char*() const { return m_s.c_str(); }
  const char* GetString() const { return m_s.c_str(); }
  const std::string& str() const { return m_s; }
  ///@}

  /// strcmp-like order: negative, 0 or positive (null s as empty).
  int Compare(const char* s) const;
  int CompareNoCase(const char* s) const;  ///< ASCII letters folded  ///< The same with ASCII letters folded.

  ///@{
  /// Position of the first (ReverseFind: last) match at or after start, or -1;
  /// character searches step over whole multi-byte characters.
  int Find(char ch, int start = 0) const;
  int Find(const char* sub, int start = 0) const;
  int ReverseFind(char ch) const;
  int FindOneOf(const char* chars) const;
  ///@}

  ///@{
  /// Leading, middle and trailing parts, clamped to the string.
  CString Left(int count) const;
  CString Mid(int first) const;
  CString Mid(int first, int count) const;
  CString Right(int count) const;
  ///@}

  ///@{
  /// Remove white space, or the given characters, from one or both ends.
  CString& Trim();
  CString& TrimLeft();
  CString& TrimRight();
  CString& Trim(const char* chars);
  CString& TrimLeft(const char* chars);
  CString& TrimRight(const char* chars);
  ///@}
  ///@{
  /// ASCII letters to upper or lower case.
  CString& MakeUpper();
  CString& MakeLower();
  ///@}
  ///@{
  /// Replaces every occurrence; returns how many.
  int Replace(const char* from, const char* to);
  int Replace(char from, char to);
  ///@}
  ///@{
  /// Remove or insert bytes at a clamped index; return the new length.
  int Delete(int index, int count = 1);
  int Insert(int index, const char* s);
  ///@}

  ///@{
  /// printf-style formatting into (or onto the end of) the string.
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
  ///@}

  ///@{
  /// Assignment and appending (null as empty).
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
  ///@}

  ///@{
  /// Concatenation and byte-wise comparison.
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
  ///@}

  /// Archive form: a length prefix (byte; 0xFF then 16 bits; 0xFF 0xFFFF then
  /// 32 bits) followed by the bytes.
  friend KXRENDER_API CArchive& operator<<(CArchive& ar, const CString& s);
  friend KXRENDER_API CArchive& operator>>(CArchive& ar, CString& s);  ///< Reads the archive form; see operator<<.

 private:
  std::string m_s;
};
