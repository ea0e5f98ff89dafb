// SPDX-License-Identifier: Apache-2.0
#include "base/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tool {

std::string NumberText(double dValue, int nDecimals) {
  // The greatest number has 309 digits.
  std::array<char, 400> text{};
  const auto [pEnd, eError] = std::to_chars(text.data(), text.data() + text.size(), dValue,
                                            std::chars_format::fixed, nDecimals);
  return eError == std::errc{} ? std::string(text.data(), pEnd) : "?";
}

std::optional<double> NumberIn(std::string_view text) {
  double dValue = 0.0;
  const auto [pEnd, eError] = std::from_chars(text.data(), text.data() + text.size(), dValue);
  const bool bWhole = eError == std::errc() && pEnd == text.data() + text.size();
  return bWhole && std::isfinite(dValue) ? std::optional(dValue) : std::nullopt;
}

}  // namespace tool
