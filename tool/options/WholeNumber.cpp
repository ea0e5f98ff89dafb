// SPDX-License-Identifier: Apache-2.0
#include "options/WholeNumber.h"

#include <charconv>
#include <string>

namespace tool {

PFN_CheckValue WholeNumber(std::uint64_t qwLeast, std::uint64_t qwMost) {
  return [qwLeast, qwMost](const std::string& strText) {
    const char* const pEnd = strText.data() + strText.size();
    std::uint64_t qwNumber = 0;
    const auto [pRead, error] = std::from_chars(strText.data(), pEnd, qwNumber);
    const bool bNumber = error == std::errc() && pRead == pEnd;
    if (bNumber && qwNumber >= qwLeast && qwNumber <= qwMost) return std::string();
    std::string strWhy = strText + " is no whole number";
    if (qwMost == UINT64_MAX) return strWhy;
    return strWhy + " from " + std::to_string(qwLeast) + " to " + std::to_string(qwMost);
  };
}

}  // namespace tool
