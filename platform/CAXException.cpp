// SPDX-License-Identifier: Apache-2.0
#include "CAXException.h"

#include <algorithm>
#include <cstring>

CAXException::CAXException(const char* pszOperation, OSStatus nError) noexcept : m_nError(nError) {
  if (pszOperation == nullptr) return;
  const std::size_t cbText = std::min(std::strlen(pszOperation), kMaxOperation - 1);
  std::memcpy(m_szOperation.data(), pszOperation, cbText);
}
