// SPDX-License-Identifier: Apache-2.0
#include "play/PlayTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>

namespace tool {
namespace {

constexpr double kSixty = 60.0;
constexpr std::size_t kMostParts = 3;  // hours, minutes, seconds
// The last double below 2^64.
constexpr double kMostFrames = 18446744073709549568.0;

template <typename Number>
std::optional<Number> Parse(std::string_view text) {
  Number number{};
  const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool bWhole = error == std::errc{} && pEnd == text.data() + text.size();
  return bWhole ? std::optional(number) : std::nullopt;
}

// Digits with at most one point: neither signs nor exponents nor words.
std::optional<double> ParseNumber(std::string_view text) {
  if (text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  return Parse<double>(text);
}

std::optional<S_PlayTime> ParseClock(std::string_view text) {
  double dSeconds = 0.0;
  for (std::size_t nParts = 1;; ++nParts) {
    const std::size_t nColon = text.find(':');
    const auto part = ParseNumber(text.substr(0, nColon));
    if (!part || nParts > kMostParts || (nParts > 1 && *part >= kSixty)) return std::nullopt;
    const bool bLast = nColon == std::string_view::npos;
    if (!bLast && *part != std::floor(*part)) return std::nullopt;
    dSeconds = dSeconds * kSixty + *part;
    if (bLast) return S_PlayTime{dSeconds, std::nullopt};
    text.remove_prefix(nColon + 1);
  }
}

}  // namespace

std::uint64_t S_PlayTime::FrameAt(std::uint32_t dwRate) const {
  if (frame) return *frame;
  return static_cast<std::uint64_t>(std::min(std::round(dSeconds * dwRate), kMostFrames));
}

std::optional<S_PlayTime> ParsePlayTime(const std::string& strText) {
  if (!strText.ends_with('s')) return ParseClock(strText);
  const auto frame = Parse<std::uint64_t>(std::string_view(strText).substr(0, strText.size() - 1));
  return frame ? std::optional(S_PlayTime{0.0, frame}) : std::nullopt;
}

std::string PlayTimeText(std::uint64_t qwFrame, std::uint32_t dwRate) {
  const std::uint64_t qwSeconds = qwFrame / dwRate;
  const auto nMs = static_cast<unsigned>(qwFrame % dwRate * 1000 / dwRate);
  const auto nSeconds = static_cast<unsigned>(qwSeconds % 60);
  const auto nMinutes = static_cast<unsigned>(qwSeconds / 60 % 60);
  const std::uint64_t qwHours = qwSeconds / 3600;
  std::array<char, 40> szText{};
  if (qwHours == 0) {
    std::snprintf(szText.data(), szText.size(), "%u:%02u.%03u", nMinutes, nSeconds, nMs);
    return szText.data();
  }
  std::snprintf(szText.data(), szText.size(), ":%02u:%02u.%03u", nMinutes, nSeconds, nMs);
  return std::to_string(qwHours) + szText.data();
}

}  // namespace tool
