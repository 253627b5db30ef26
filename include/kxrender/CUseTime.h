#pragma once
// Stopwatch on the high-resolution counter.
#include <cstdint>

#include "kxrender/CString.h"

/// Stopwatch on the high-resolution counter (10 MHz); print() sends the time
/// to the trace viewer.
class KXRENDER_API CUseTime {
 public:
  explicit CUseTime(bool silent);  ///< Starts timing; silent stops print() from sending anything.
  ///@{
  /// Start and stop reading of the counter.
  void start();
  void end();
  ///@}
  /// Elapsed microseconds between start and end (low 32 bits).
  unsigned int getTime() const;
  /// Elapsed milliseconds with three decimals, e.g. "1.500".
  CString GetTimeStr() const;
  void setPrint(bool enabled) { printEnabled = enabled; }  ///< Switches print() on or off.
  /// Sends "\n<label>:<milliseconds>" to the trace viewer unless silenced.
  void print(const CString& label);

 private:
  void reset() { startCount = endCount; }

  int64_t frequency;
  int64_t startCount;
  int64_t endCount;
  bool printEnabled;
  bool silent;
};
