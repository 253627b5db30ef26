#pragma once
#include <vector>

#include "kxrender/CString.h"

/// Growable array of strings.
class KXRENDER_API CStringArray {
 public:
  ///@{
  /// Size, emptiness, and the last index (-1 when empty).
  int GetSize() const { return static_cast<int>(m_items.size()); }
  int GetCount() const { return GetSize(); }
  bool IsEmpty() const { return m_items.empty(); }
  int GetUpperBound() const { return GetSize() - 1; }
  ///@}
  /// Appends s; returns its index.
  int Add(const CString& s) {
    m_items.push_back(s);
    return GetUpperBound();
  }
  ///@{
  /// Element i; an index outside throws std::out_of_range.
  const CString& GetAt(int i) const { return m_items.at(size_t(i)); }
  void SetAt(int i, const CString& s) { m_items.at(size_t(i)) = s; }
  CString& operator[](int i) { return m_items.at(size_t(i)); }
  const CString& operator[](int i) const { return m_items.at(size_t(i)); }
  ///@}
  ///@{
  /// Removing count elements from i, inserting before i, removing all.
  void RemoveAt(int i, int count = 1) {
    if (i < 0 || count <= 0 || i >= GetSize()) return;
    const int end = i + count > GetSize() ? GetSize() : i + count;
    m_items.erase(m_items.begin() + i, m_items.begin() + end);
  }
  void InsertAt(int i, const CString& s) {
    if (i < 0) i = 0;
    if (i > GetSize()) i = GetSize();
    m_items.insert(m_items.begin() + i, s);
  }
  void RemoveAll() { m_items.clear(); }
  ///@}

 private:
  std::vector<CString> m_items;
};
