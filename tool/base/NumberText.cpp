// SPDX-License-Identifier: Apache-2.0
#include "base/NumberText.h"

#include <array>
#include <charconv>

namespace tool {

std::string NumberText(double dValue, int nDecimals) {
  // The greatest number has 309 digits.
  std::array<char, 400> text{};
  const auto [pEnd, eError] = std::to_chars(text.data(), text.data() + text.size(), dValue,
                                            std::chars_format::fixed, nDecimals);
  return eError == std::errc{} ? std::string(text.data(), pEnd) : "?";
}

}  // namespace tool
