// SPDX-License-Identifier: Apache-2.0
#include "base/TimeText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tool {
namespace {

constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53U;  // of a double
constexpr std::uint64_t kMillis = 1000;
constexpr std::uint64_t kSixty = 60;
constexpr int kMostParts = 3;

// As "%0*d" would print it.
std::string Padded(std::uint64_t qwNumber, std::size_t nDigits) {
  std::string strNumber = std::to_string(qwNumber);
  return std::string(nDigits - std::min(nDigits, strNumber.size()), '0') + strNumber;
}

bool IsDigit(char chDigit) { return chDigit >= '0' && chDigit <= '9'; }

std::optional<std::uint64_t> WholeNumber(std::string_view text) {
  std::uint64_t qwNumber = 0;
  const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), qwNumber);
  if (text.empty() || error != std::errc() || pEnd != text.data() + text.size()) return {};
  return qwNumber <= kMostExact ? std::optional(qwNumber) : std::nullopt;
}

// Digits, with a point among or beside them; neither a sign nor an exponent.
std::optional<double> Decimal(std::string_view text) {
  const bool bPlain = std::ranges::all_of(text, [](char ch) { return IsDigit(ch) || ch == '.'; });
  if (!bPlain || std::ranges::none_of(text, IsDigit)) return {};
  double dNumber = 0.0;
  const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), dNumber);
  if (error != std::errc() || pEnd != text.data() + text.size()) return {};
  return dNumber;
}

// "1:02:03.5": each part counts sixty of the next one.
std::optional<double> ClockSeconds(std::string_view text) {
  double dSeconds = 0.0;
  for (int nPart = 1;; ++nPart) {
    const std::size_t nColon = text.find(':');
    const bool bLast = nColon == std::string_view::npos;
    if (!bLast && !WholeNumber(text.substr(0, nColon))) return {};
    const auto part = Decimal(text.substr(0, nColon));
    if (!part || nPart > kMostParts) return {};
    if (nPart > 1 && *part >= static_cast<double>(kSixty)) return {};
    dSeconds = dSeconds * static_cast<double>(kSixty) + *part;
    if (bLast) return dSeconds;
    text.remove_prefix(nColon + 1);
  }
}

}  // namespace

std::string ClockText(std::uint64_t qwFrames, std::uint32_t dwRate) {
  if (dwRate == 0) return "?";
  const std::uint64_t qwRest = qwFrames % dwRate;
  const std::uint64_t qwMillis = (qwRest * kMillis + dwRate / 2) / dwRate;
  const std::uint64_t qwSeconds = qwFrames / dwRate + qwMillis / kMillis;
  const std::uint64_t qwMinutes = qwSeconds / kSixty;
  const std::string strSeconds =
      Padded(qwSeconds % kSixty, 2) + '.' + Padded(qwMillis % kMillis, 3);
  if (qwMinutes < kSixty) return std::to_string(qwMinutes) + ':' + strSeconds;
  return std::to_string(qwMinutes / kSixty) + ':' + Padded(qwMinutes % kSixty, 2) + ':' +
         strSeconds;
}

std::string PlaceText(std::uint64_t qwFrame, std::uint32_t dwRate) {
  return dwRate == 0 ? "sample " + CountText(qwFrame) : ClockText(qwFrame, dwRate);
}

double SecondsOf(std::uint64_t qwFrames, std::uint32_t dwRate) noexcept {
  return dwRate == 0 ? 0.0 : static_cast<double>(qwFrames) / dwRate;
}

std::string CountText(std::uint64_t qwCount) {
  constexpr std::size_t kGroup = 3;
  std::string strText = std::to_string(qwCount);
  for (std::size_t nAt = strText.size(); nAt > kGroup; nAt -= kGroup) {
    strText.insert(nAt - kGroup, 1, ',');
  }
  return strText;
}

std::string CountedText(std::uint64_t qwCount, std::string_view noun) {
  return CountText(qwCount) + ' ' + std::string(noun) + (qwCount == 1 ? "" : "s");
}

std::optional<C_Time> C_Time::Parse(std::string_view text) {
  if (text.ends_with('s')) {
    text.remove_suffix(1);
    C_Time time;
    time.m_qwFrames = WholeNumber(text);
    return time.m_qwFrames ? std::optional(time) : std::nullopt;
  }
  const auto seconds = ClockSeconds(text);
  return seconds ? OfSeconds(*seconds) : std::nullopt;
}

std::optional<C_Time> C_Time::OfSeconds(double dSeconds) {
  // Written so that what is no number is refused, too.
  if (!(dSeconds >= 0.0 && dSeconds <= static_cast<double>(kMostExact))) return {};
  C_Time time;
  time.m_dSeconds = dSeconds;
  return time;
}

std::partial_ordering C_Time::operator<=>(const C_Time& other) const noexcept {
  if (m_qwFrames && other.m_qwFrames) return *m_qwFrames <=> *other.m_qwFrames;
  if (m_qwFrames || other.m_qwFrames) return std::partial_ordering::unordered;
  return m_dSeconds <=> other.m_dSeconds;
}

std::uint64_t C_Time::FrameAt(std::uint32_t dwRate) const noexcept {
  if (m_qwFrames) return *m_qwFrames;
  const double dFrame = std::round(m_dSeconds * dwRate);
  return static_cast<std::uint64_t>(std::min(dFrame, static_cast<double>(kMostExact)));
}

}  // namespace tool
