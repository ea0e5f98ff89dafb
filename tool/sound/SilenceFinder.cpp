// SPDX-License-Identifier: Apache-2.0
#include "sound/SilenceFinder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {
namespace {

constexpr double kFullScale16 = 32768.0;
constexpr double kFullScale32 = 2147483648.0;

template <typename Sample>
bool IsLoud(std::span<const Sample> frame, double dLevel) {
  // Written so that a sample that is not a number counts as loud.
  return !std::ranges::all_of(frame, [dLevel](const Sample sample) {
    return std::abs(static_cast<double>(sample)) <= dLevel;
  });
}

}  // namespace

C_SilenceFinder::C_SilenceFinder(double dLevel, std::uint64_t qwFewest, std::uint32_t dwChannels,
                                 I_SampleSink& next)
    : m_dLevel(dLevel),
      m_qwFewest(std::max<std::uint64_t>(qwFewest, 1)),
      m_dwChannels(dwChannels),
      m_next(next) {}

void C_SilenceFinder::Take(std::span<const std::int16_t> samples) { Look(samples, kFullScale16); }
void C_SilenceFinder::Take(std::span<const std::int32_t> samples) { Look(samples, kFullScale32); }
void C_SilenceFinder::Take(std::span<const float> samples) { Look(samples, 1.0); }

std::vector<voxplay::Range> C_SilenceFinder::End() {
  EndRange(m_qwFrame);
  return std::move(m_found);
}

template <typename Sample>
void C_SilenceFinder::Look(std::span<const Sample> samples, double dFullScale) {
  const double dLevel = m_dLevel * dFullScale;
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += m_dwChannels) {
    if (IsLoud(samples.subspan(nAt, m_dwChannels), dLevel)) {
      EndRange(m_qwFrame);
      m_qwFirst = m_qwFrame + 1;
    }
    ++m_qwFrame;
  }
  m_next.Take(samples);
}

void C_SilenceFinder::EndRange(std::uint64_t qwEnd) {
  const std::uint64_t qwCount = qwEnd - std::min(m_qwFirst, qwEnd);
  if (qwCount >= m_qwFewest) m_found.push_back({m_qwFirst, qwCount});
}

}  // namespace tool
