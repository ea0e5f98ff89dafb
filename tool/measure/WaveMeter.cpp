// SPDX-License-Identifier: Apache-2.0
#include "measure/WaveMeter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {
namespace {

constexpr std::uint64_t kClippingRun = 3;

// Samples of so few bits are at full scale all the time.
constexpr std::uint32_t kMostCoarseBits = 4;

// The largest positive sample. The largest negative one may be a step beyond.
float FullScale(std::uint32_t dwBits) {
  if (dwBits == 0) return 1.0F;
  if (dwBits <= kMostCoarseBits) return std::numeric_limits<float>::infinity();
  return static_cast<float>(1.0 - std::ldexp(1.0, 1 - static_cast<int>(dwBits)));
}

}  // namespace

C_WaveMeter::C_WaveMeter(const C_Columns& columns, std::uint32_t dwBits)
    : m_columns(columns),
      m_fFullScale(FullScale(dwBits)),
      m_waves(static_cast<std::size_t>(columns.Count())) {}

void C_WaveMeter::Add(std::span<const float> samples) {
  if (m_columns.Frames() <= m_waves.size()) {
    m_samples.insert(m_samples.end(), samples.begin(), samples.end());
  }
  while (!samples.empty() && m_nColumn < m_columns.Count()) {
    const std::uint64_t qwLeft = m_columns.Begin(m_nColumn + 1) - m_qwFrame;
    const auto nHere = static_cast<std::size_t>(std::min<std::uint64_t>(qwLeft, samples.size()));
    AddToColumn(samples.first(nHere));
    samples = samples.subspan(nHere);
    if (nHere == qwLeft) ++m_nColumn;
  }
}

void C_WaveMeter::AddToColumn(std::span<const float> samples) {
  S_WaveColumn& wave = m_waves[static_cast<std::size_t>(m_nColumn)];
  for (const float fSample : samples) {
    const bool bFirst = wave.qwFrames == 0;
    wave.fLeast = bFirst ? fSample : std::min(wave.fLeast, fSample);
    wave.fGreatest = bFirst ? fSample : std::max(wave.fGreatest, fSample);
    wave.dSquares += static_cast<double>(fSample) * static_cast<double>(fSample);
    ++wave.qwFrames;
    LookForClipping(fSample, wave);
  }
  m_qwFrame += samples.size();
}

void C_WaveMeter::LookForClipping(float fSample, S_WaveColumn& wave) {
  const int nSide = fSample >= m_fFullScale ? 1 : fSample <= -m_fFullScale ? -1 : 0;
  m_qwRun = nSide == m_nSide ? m_qwRun + 1 : 1;
  m_nSide = nSide;
  if (nSide == 0 || m_qwRun < kClippingRun) return;
  wave.bClipped = true;
  if (m_qwRun == kClippingRun) ++m_qwClippings;
}

}  // namespace tool
