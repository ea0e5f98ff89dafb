// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace tool {

// "12.50" for two decimals, whatever the language of the user is.
std::string NumberText(double dValue, int nDecimals);

// With spaces, or something else, before it, so that columns are even.
std::string AtRight(const std::string& strText, std::size_t nWidth, char chBefore = ' ');

}  // namespace tool
