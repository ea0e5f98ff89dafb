// SPDX-License-Identifier: Apache-2.0
#include "VCM.h"

#include <cstdarg>
#include <cstring>

std::FILE* VCM_tfopen(const char* pszPath, const char* pszMode) {
  return std::fopen(pszPath, pszMode);
}

char* VCM_strncpy(char* pszDst, const char* pszSrc, unsigned long n) {
  return std::strncpy(pszDst, pszSrc, n);
}

char* VCM_tcsncpy(char* pszDst, const char* pszSrc, unsigned long n) {
  return VCM_strncpy(pszDst, pszSrc, n);
}

int VCM_stprintf(char* pszBuf, [[maybe_unused]] unsigned long nBufSize, const char* pszFormat,
                 ...) {
  std::va_list args;
  va_start(args, pszFormat);
  const int nCount = std::vsprintf(pszBuf, pszFormat, args);
  va_end(args);
  return nCount;
}
