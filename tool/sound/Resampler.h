// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "sound/RateChange.h"

namespace tool {

// Changes the rate of a whole sound, piece by piece. What comes out in all is as long as
// ScaledFrames says, to the frame, and nothing is shifted.
class C_Resampler {
 public:
  using PFN_Take = std::function<void(std::span<const float> samples)>;

  // Throws C_Failure for rates that are too far from each other.
  C_Resampler(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels);

  // Takes whole frames, and hands on those that are ready.
  void Put(std::span<const float> samples, const PFN_Take& fnTake);
  // Hands on the rest. To be called once.
  void End(const PFN_Take& fnTake);

 private:
  void HandOn(std::size_t nFrames, const PFN_Take& fnTake);
  void Fill(const PFN_Take& fnTake);
  [[nodiscard]] std::uint64_t FramesWanted() const noexcept;

  std::uint32_t m_dwFrom;
  std::uint32_t m_dwTo;
  std::uint32_t m_dwChannels;
  C_RateChange m_change;
  std::vector<float> m_piece;
  std::uint64_t m_qwIn = 0;
  std::uint64_t m_qwOut = 0;
};

}  // namespace tool
