// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace tool {

// How far one thread is with its file. The thread says it, and the progress line asks for it.
class C_FileWatch {
 public:
  // Parts of 0 to 1, of a sound of so many seconds.
  void Tell(double dPart, double dSeconds) noexcept {
    const double dMillionths = std::clamp(dPart, 0.0, 1.0) * kWhole;
    m_dwMillionths.store(static_cast<std::uint32_t>(dMillionths), std::memory_order_relaxed);
    const double dMost = UINT32_MAX;
    m_dwSeconds.store(static_cast<std::uint32_t>(std::clamp(dSeconds, 0.0, dMost)),
                      std::memory_order_relaxed);
  }
  // The same of frames, whose number and rate may be unknown.
  void TellFrames(std::uint64_t qwDone, std::uint64_t qwAll, std::uint32_t dwRate) noexcept {
    if (qwAll == 0 || qwAll == UINT64_MAX || dwRate == 0) return;
    const auto dAll = static_cast<double>(qwAll);
    Tell(static_cast<double>(qwDone) / dAll, dAll / dwRate);
  }
  void Reset() noexcept { Tell(0.0, 0.0); }

  [[nodiscard]] double Part() const noexcept {
    return m_dwMillionths.load(std::memory_order_relaxed) / kWhole;
  }
  [[nodiscard]] double SecondsDone() const noexcept {
    return Part() * m_dwSeconds.load(std::memory_order_relaxed);
  }

 private:
  static constexpr double kWhole = 1e6;

  std::atomic<std::uint32_t> m_dwMillionths = 0;
  std::atomic<std::uint32_t> m_dwSeconds = 0;
};

}  // namespace tool
