#pragma once
#include <vector>

/// Growable array of plain values. Used for the sample points of curves and
/// the data of splines; the indexing of the engine's callers is kept.
template <class T>
class AcArray {
public:
  ///@{
  /// Empty, optionally with room for physicalLength values.
  AcArray() = default;
  explicit AcArray(int physicalLength) { mData.reserve(physicalLength > 0 ? physicalLength : 0); }
  ///@}

  ///@{
  /// Number of values, and whether there are none.
  int length() const { return static_cast<int>(mData.size()); }
  int logicalLength() const { return length(); }
  bool isEmpty() const { return mData.empty(); }
  ///@}
  AcArray& setLogicalLength(int n) { mData.resize(n > 0 ? n : 0); return *this; }  ///< Resizes to n values (negative as 0), new ones value-initialised.
  AcArray& removeAll() { mData.clear(); return *this; }  ///< Removes every value.

  int append(const T& value) { mData.push_back(value); return length() - 1; }  ///< Appends value; returns its index.
  ///@{
  /// Removes the value at index (an index outside changes nothing), or
  /// reverses the order.
  AcArray& removeAt(int index) {
    if (index >= 0 && index < length()) mData.erase(mData.begin() + index);
    return *this;
  }
  AcArray& reverse() { std::vector<T>(mData.rbegin(), mData.rend()).swap(mData); return *this; }
  ///@}

  ///@{
  /// Value i, unchecked.
  T& operator[](int i) { return mData[i]; }
  const T& operator[](int i) const { return mData[i]; }
  ///@}
  ///@{
  /// Value i; an index outside throws std::out_of_range.
  T& at(int i) { return mData.at(i); }
  const T& at(int i) const { return mData.at(i); }
  ///@}
  ///@{
  /// First and last value; the array must not be empty.
  T& first() { return mData.front(); }
  T& last() { return mData.back(); }
  const T& first() const { return mData.front(); }
  const T& last() const { return mData.back(); }
  ///@}
  ///@{
  /// Contiguous storage and iterators, valid until the array changes size.
  T* asArrayPtr() { return mData.data(); }
  const T* asArrayPtr() const { return mData.data(); }

  typename std::vector<T>::iterator begin() { return mData.begin(); }
  typename std::vector<T>::iterator end() { return mData.end(); }
  typename std::vector<T>::const_iterator begin() const { return mData.begin(); }
  typename std::vector<T>::const_iterator end() const { return mData.end(); }
  ///@}

private:
  std::vector<T> mData;
};

class AcGePoint2d;
class AcGePoint3d;
///@{
/// Arrays of 2D points, 3D points and doubles.
typedef AcArray<AcGePoint2d> AcGePoint2dArray;
typedef AcArray<AcGePoint3d> AcGePoint3dArray;
typedef AcArray<double> AcGeDoubleArray;
///@}
