// SPDX-License-Identifier: Apache-2.0
//
// Places and lengths in sounds as people write and read them.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// "0:05.120", and from one hour on "1:00:05.120"; "?" for a rate of 0.
std::string ClockText(std::uint64_t qwFrames, std::uint32_t dwRate);
// Where a frame is: the same, but "sample 81,920" for a rate of 0.
std::string PlaceText(std::uint64_t qwFrame, std::uint32_t dwRate);
// 0 for a rate of 0.
[[nodiscard]] double SecondsOf(std::uint64_t qwFrames, std::uint32_t dwRate) noexcept;
// "81,920".
std::string CountText(std::uint64_t qwCount);
// "1 frame", "81,920 frames".
std::string CountedText(std::uint64_t qwCount, std::string_view noun);

// A time that was written as "2.5" or "1:02.500" or "1:00:00" (seconds, minutes and hours), or as
// "32000s" (samples of one channel).
class C_Time {
 public:
  // Empty for everything else, negative times and those beyond 2^53 frames or seconds included.
  static std::optional<C_Time> Parse(std::string_view text);
  static constexpr const char* kForms = "seconds (2.5), m:ss.mmm (1:02.500) or samples (32000s)";

  // Empty for what is no place in a sound.
  static std::optional<C_Time> OfSeconds(double dSeconds);

  // Which is earlier. Seconds and samples cannot be told apart without a rate.
  [[nodiscard]] std::partial_ordering operator<=>(const C_Time& other) const noexcept;

  // Whether it is a time that is no place in a sound without a rate.
  [[nodiscard]] bool NeedsRate() const noexcept { return !m_qwFrames; }
  // The nearest frame. The rate is not 0 where it is needed.
  [[nodiscard]] std::uint64_t FrameAt(std::uint32_t dwRate) const noexcept;

 private:
  std::optional<std::uint64_t> m_qwFrames;
  double m_dSeconds = 0.0;
};

}  // namespace tool
