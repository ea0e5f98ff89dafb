// SPDX-License-Identifier: Apache-2.0
#include "VcmAssert.h"

#include <cstdio>
#include <cstdlib>

void VCM_AssertFailed(const char* pszFunction, const char* pszSource, int nLine,
                      const char* pszText) noexcept {
  std::fprintf(stderr, "%s: %s:%d: assertion failed: %s\n", pszFunction, pszSource, nLine, pszText);
  std::abort();
}
