// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sound/SampleSink.h"

namespace tool {

// Finds the loudest sample. Samples that are not a number do not count.
class C_PeakMeter final : public I_SampleSink {
 public:
  void Take(std::span<const std::int16_t> samples) override;
  void Take(std::span<const std::int32_t> samples) override;
  void Take(std::span<const float> samples) override;

  // 1 is full scale.
  [[nodiscard]] double Peak() const noexcept { return m_dPeak; }

 private:
  double m_dPeak = 0.0;
};

// The factor of a gain in dB.
[[nodiscard]] double GainFactor(double dDecibels);

}  // namespace tool
