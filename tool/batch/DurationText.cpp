// SPDX-License-Identifier: Apache-2.0
#include "batch/DurationText.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace tool {
namespace {

constexpr std::uint64_t kMinute = 60;
constexpr std::uint64_t kHour = 60 * kMinute;
constexpr std::uint64_t kDay = 24 * kHour;
constexpr double kShort = 10.0;  // below, hundredths are shown
constexpr double kMostSeconds = 1e15;

std::string ShortText(double dSeconds) {
  std::array<char, 32> szText{};
  std::snprintf(szText.data(), szText.size(),
                dSeconds == std::floor(dSeconds) ? "%.0f s" : "%.2f s", dSeconds);
  return szText.data();
}

std::string TwoParts(std::uint64_t qwSeconds, std::uint64_t qwLarge, const char* pszLarge,
                     std::uint64_t qwSmall, const char* pszSmall) {
  const std::uint64_t qwRest = qwSeconds % qwLarge / qwSmall;
  const std::string strText = std::to_string(qwSeconds / qwLarge) + pszLarge;
  return qwRest == 0 ? strText : strText + ' ' + std::to_string(qwRest) + pszSmall;
}

}  // namespace

std::string DurationText(double dSeconds) {
  if (!(dSeconds >= 0.0)) return "0 s";
  if (dSeconds < kShort) return ShortText(dSeconds);
  const auto qwSeconds = static_cast<std::uint64_t>(std::round(std::fmin(dSeconds, kMostSeconds)));
  if (qwSeconds >= kDay) return TwoParts(qwSeconds, kDay, " d", kHour, " h");
  if (qwSeconds >= kHour) return TwoParts(qwSeconds, kHour, " h", kMinute, " min");
  if (qwSeconds >= kMinute) return TwoParts(qwSeconds, kMinute, " min", 1, " s");
  return std::to_string(qwSeconds) + " s";
}

}  // namespace tool
