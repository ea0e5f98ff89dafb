// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace api {

// Copies as much of a text as the caller has room for, and ends it with a zero. pszText may be null
// when cbText is 0; then nothing is copied.
inline void CopyText(const std::string& strText, char* pszText, std::size_t cbText) noexcept {
  if (cbText == 0) return;
  const std::size_t cbCopied = std::min(strText.size(), cbText - 1);
  std::memcpy(pszText, strText.data(), cbCopied);
  pszText[cbCopied] = '\0';
}

}  // namespace api
