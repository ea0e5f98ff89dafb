// SPDX-License-Identifier: Apache-2.0
#include "sound/TimeText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/NumberText.h"

namespace tool {
namespace {

constexpr int kMostDecimals = 9;
constexpr double kMinute = 60.0;
constexpr double kHour = 3600.0;
constexpr std::uint64_t kMostFrames = UINT64_C(1) << 62;

// Only digits and a point: neither signs nor exponents, nor words such as "nan".
std::optional<double> PlainNumber(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789.") != std::string_view::npos) return {};
  double dValue = 0.0;
  const auto [pEnd, eError] = std::from_chars(text.data(), text.data() + text.size(), dValue);
  if (pEnd != text.data() + text.size() || eError != std::errc{}) return {};
  return dValue;
}

// The seconds of "h:mm:ss.mmm", "m:ss.mmm" and "ss.mmm".
std::optional<double> Seconds(std::string_view text) {
  double dSeconds = 0.0;
  for (int nParts = 0; nParts < 3; ++nParts) {
    const std::size_t nColon = text.find(':');
    const auto dPart = PlainNumber(text.substr(0, nColon));
    if (!dPart) return {};
    dSeconds = dSeconds * kMinute + *dPart;
    if (nColon == std::string_view::npos) return dSeconds;
    text.remove_prefix(nColon + 1);
  }
  return {};
}

}  // namespace

std::string TimeText(double dSeconds, int nDecimals) {
  nDecimals = std::clamp(nDecimals, 0, kMostDecimals);
  const double dUnit = std::pow(10.0, nDecimals);
  dSeconds = std::round(dSeconds * dUnit) / dUnit;
  const double dHours = std::floor(dSeconds / kHour);
  const double dMinutes = std::floor((dSeconds - dHours * kHour) / kMinute);
  const double dRest = dSeconds - dHours * kHour - dMinutes * kMinute;
  const bool bHours = dHours > 0.0;
  const std::size_t nWidth = nDecimals > 0 ? static_cast<std::size_t>(nDecimals) + 3 : 2;
  return (bHours ? NumberText(dHours, 0) + ':' : "") +
         AtRight(NumberText(dMinutes, 0), bHours ? 2 : 1, '0') + ':' +
         AtRight(NumberText(std::max(dRest, 0.0), nDecimals), nWidth, '0');
}

std::optional<std::uint64_t> FrameOfTime(std::string_view text, std::uint32_t dwRate) {
  const bool bSamples = text.ends_with('s');
  if (bSamples) text.remove_suffix(1);
  if (bSamples && text.find_first_of(".:") != std::string_view::npos) return {};
  const auto dValue = bSamples ? PlainNumber(text) : Seconds(text);
  if (!dValue) return {};
  const double dFrames = bSamples ? *dValue : std::round(*dValue * dwRate);
  if (dFrames >= static_cast<double>(kMostFrames)) return kMostFrames;
  return static_cast<std::uint64_t>(dFrames);
}

}  // namespace tool
