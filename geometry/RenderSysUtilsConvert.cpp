// Matrix and array conversions, text splitting, code page and paths.
#include <cstring>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CString.h"
#include "kxrender/CStringArray.h"
#include "platform/Win32System.h"

void CRenderSysUtils::convertMatrixTo16(const AcGeMatrix3d& matrix, float* m) {
  if (!m) return;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) m[4 * c + r] = static_cast<float>(matrix.entry[r][c]);
}

void CRenderSysUtils::convertMatrixTo16(const AcGeMatrix3d& matrix, double* m) {
  if (!m) return;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) m[4 * c + r] = matrix.entry[r][c];
}

void CRenderSysUtils::convert16ToMatrix(const float* m, AcGeMatrix3d& matrix) {
  if (!m) return;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) matrix.entry[r][c] = m[4 * c + r];
}

void CRenderSysUtils::convert16ToMatrix(const double* m, AcGeMatrix3d& matrix) {
  if (!m) return;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) matrix.entry[r][c] = m[4 * c + r];
}

void CRenderSysUtils::acgePtary2vecPtary(const AcArray<AcGePoint3d>& from, std::vector<AcGePoint3d>& to) {
  to.assign(from.begin(), from.end());
}

void CRenderSysUtils::vecPtary2acgePtary(const std::vector<AcGePoint3d>& from, AcArray<AcGePoint3d>& to) {
  to.removeAll();
  for (const AcGePoint3d& p : from) to.append(p);
}

int CRenderSysUtils::Gb2312ToUnicode(unsigned short* out, unsigned char* in) {
  if (!out || !in) return 0;
  return MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, reinterpret_cast<const char*>(in), 2,
                             reinterpret_cast<WCHAR*>(out), 1);
}

void CRenderSysUtils::Str2StrArr(const CString& text, CStringArray& array, char separator) {
  if (text.IsEmpty()) return;
  const std::string& s = text.str();
  size_t start = 0;
  for (size_t pos = s.find(separator); pos != std::string::npos; pos = s.find(separator, start)) {
    array.Add(CString(s.substr(start, pos - start)));
    start = pos + 1;
  }
  array.Add(CString(s.substr(start)));
}

CString CRenderSysUtils::getDllPath() {
  char path[260] = {0};
  GetModuleFileNameA(nullptr, path, 260);
  // Cut after the last separator; either kind is accepted in the name.
  const char* slash = std::strrchr(path, '/');
  const char* backslash = std::strrchr(path, '\\');
  const char* last = (slash && (!backslash || slash > backslash)) ? slash : backslash;
  if (!last) return CString("");
  return CString(path, static_cast<int>(last - path + 1));
}
