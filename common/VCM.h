// SPDX-License-Identifier: Apache-2.0
//
// Thin portable wrappers over the C library. They add nothing: callers rely on the exact behaviour
// of the wrapped functions.
#pragma once

#include <cstdio>

// std::fopen, unchanged: null on failure.
std::FILE* VCM_tfopen(const char* pszPath, const char* pszMode);

// std::strncpy, unchanged: copies at most n characters and pads with NULs. The copy is not
// terminated when the source has n or more characters. Returns pszDst.
char* VCM_strncpy(char* pszDst, const char* pszSrc, unsigned long n);
char* VCM_tcsncpy(char* pszDst, const char* pszSrc, unsigned long n);

// Kept: formats with the unbounded vsprintf and ignores nBufSize, because existing callers pass
// sizes that mean other things. Every caller makes its own buffer large enough. Returns vsprintf's
// count. Pinned by Stprintf_IgnoresTheBufferSize.
[[gnu::format(printf, 3, 4)]] int VCM_stprintf(char* pszBuf, unsigned long nBufSize,
                                               const char* pszFormat, ...);
