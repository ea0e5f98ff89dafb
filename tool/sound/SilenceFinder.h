// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

#include "sound/SampleSink.h"
#include "voxplay.hpp"

namespace tool {

// Finds the ranges in which no sample of any channel is louder than a level, for at least so many
// frames, and hands all samples on.
class C_SilenceFinder final : public I_SampleSink {
 public:
  // dLevel is a part of full scale.
  C_SilenceFinder(double dLevel, std::uint64_t qwFewest, std::uint32_t dwChannels,
                  I_SampleSink& next);

  void Take(std::span<const std::int16_t> samples) override;
  void Take(std::span<const std::int32_t> samples) override;
  void Take(std::span<const float> samples) override;
  // After the last sample: what was found.
  [[nodiscard]] std::vector<voxplay::Range> End();

 private:
  template <typename Sample>
  void Look(std::span<const Sample> samples, double dFullScale);
  void EndRange(std::uint64_t qwEnd);

  double m_dLevel;
  std::uint64_t m_qwFewest;
  std::uint32_t m_dwChannels;
  I_SampleSink& m_next;
  std::uint64_t m_qwFrame = 0;  // that comes next
  std::uint64_t m_qwFirst = 0;  // after the last loud one
  std::vector<voxplay::Range> m_found;
};

}  // namespace tool
