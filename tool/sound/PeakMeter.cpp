// SPDX-License-Identifier: Apache-2.0
#include "sound/PeakMeter.h"

#include <cmath>

namespace tool {
namespace {

constexpr double kFullScale16 = 32768.0;
constexpr double kFullScale32 = 2147483648.0;

template <typename Sample>
double PeakOf(std::span<const Sample> samples, double dFullScale, double dPeak) {
  for (const Sample sample : samples) {
    const double dLevel = std::abs(static_cast<double>(sample)) / dFullScale;
    if (dLevel > dPeak && std::isfinite(dLevel)) dPeak = dLevel;
  }
  return dPeak;
}

}  // namespace

void C_PeakMeter::Take(std::span<const std::int16_t> samples) {
  m_dPeak = PeakOf(samples, kFullScale16, m_dPeak);
}
void C_PeakMeter::Take(std::span<const std::int32_t> samples) {
  m_dPeak = PeakOf(samples, kFullScale32, m_dPeak);
}
void C_PeakMeter::Take(std::span<const float> samples) { m_dPeak = PeakOf(samples, 1.0, m_dPeak); }

double GainFactor(double dDecibels) { return std::pow(10.0, dDecibels / 20.0); }

}  // namespace tool
