// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>

namespace tool {

// Where in a sound its listener is. A device is given frames some time before they are heard, and
// plays them one after another, so the clock counts from when it was given them.
class C_PlayClock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // Frames of the sound, from qwBegin on.
  C_PlayClock(std::uint32_t dwRate, std::uint64_t qwBegin)
      : m_dwRate(dwRate), m_qwBegin(qwBegin), m_qwFloor(qwBegin), m_qwEnd(qwBegin) {}

  // The device was given this much of the sound, up to a frame of it.
  void Given(std::chrono::duration<double> length, std::uint64_t qwEnd, Time now);
  // What is given next comes from another place.
  void Jump(std::uint64_t qwFrame);

  [[nodiscard]] std::uint64_t Frame(Time now) const;
  // The end of what was given.
  [[nodiscard]] std::uint64_t LastFrame() const { return m_qwEnd; }

 private:
  std::uint32_t m_dwRate;
  std::uint64_t m_qwBegin;
  std::uint64_t m_qwFloor;  // nothing before it is heard since the last jump
  std::uint64_t m_qwEnd;
  Time m_heard{};  // when the last frame will have been heard
};

}  // namespace tool
