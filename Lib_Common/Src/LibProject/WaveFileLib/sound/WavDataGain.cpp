// SPDX-License-Identifier: Apache-2.0
//
// Loudness: gain, normalising, DC offset.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "sound/WavData.h"

namespace {

constexpr unsigned int kBlock = 1024;  // samples that are changed together, and by one gain

// The largest magnitude of a sample, 1 << (bits - 1).
double FullScale(unsigned short wBits) { return static_cast<double>(1U << ((wBits - 1U) & 31U)); }

// Clipped, then truncated toward zero. Gains may be infinite, and infinity times zero is not a
// number.
int ScaledValue(int nValue, double dGain, double dFullScale) {
  const double dScaled = nValue * dGain;
  if (dScaled != dScaled) return 0;
  return static_cast<int>(std::clamp(dScaled, -dFullScale, dFullScale - 1.0));
}

void Scale(std::span<int> values, double dGain, double dFullScale) {
  if (!std::isfinite(dGain)) {
    for (int& nValue : values) nValue = ScaledValue(nValue, dGain, dFullScale);
    return;
  }
  // The same without a branch. A finite gain gives numbers, or infinities, which clip.
  const double dLowest = -dFullScale;
  const double dHighest = dFullScale - 1.0;
  for (int& nValue : values) {
    double dScaled = nValue * dGain;
    dScaled = dScaled < dLowest ? dLowest : dScaled;
    dScaled = dScaled > dHighest ? dHighest : dScaled;
    nValue = static_cast<int>(dScaled);
  }
}

// Subtracts the offset and clips. Values are clipped first, to limits that are as far off.
void Subtract(std::span<int> values, int nOffset, double dFullScale) {
  constexpr std::int64_t qnMin = std::numeric_limits<int>::min();
  constexpr std::int64_t qnMax = std::numeric_limits<int>::max();
  const auto qnFullScale = static_cast<std::int64_t>(dFullScale);
  const auto nLowest = static_cast<int>(std::max(nOffset - qnFullScale, qnMin));
  const auto nHighest = static_cast<int>(std::min(nOffset + qnFullScale - 1, qnMax));
  for (int& nValue : values) nValue = std::min(std::max(nValue, nLowest), nHighest) - nOffset;
}

unsigned int WrappingSum(std::span<const int> values) {
  unsigned int dwSum = 0;
  for (const int nValue : values) dwSum += static_cast<unsigned int>(nValue);
  return dwSum;
}

// Lets fnChange change the values of qnCount samples of one channel, block by block. It must clip
// them.
template <typename Change>
void ChangeValues(C_WavDataBuffer& buffer, unsigned int dwStartSample, std::int64_t qnCount,
                  unsigned short wChannelNo, Change fnChange) {
  std::array<int, kBlock> block{};
  C_WavDataBufferIterator from(buffer, dwStartSample, wChannelNo);
  C_WavDataBufferIterator to = from;
  while (qnCount > 0) {
    const auto nValues = std::min<std::int64_t>(kBlock, qnCount);
    const auto values = std::span(block).first(static_cast<std::size_t>(nValues));
    from.ReadValues(values);
    fnChange(values);
    to.WriteClippedValues(values);
    qnCount -= nValues;
  }
}

}  // namespace

bool C_WavData::ApplyGain(double dStartGain, double dEndGain) {
  return ApplyGainRange(dStartGain, dEndGain, 0, LastSample(), 0, LastChannel());
}

bool C_WavData::ApplyGainRange(double dStartGain, double dEndGain, unsigned int dwStartSample,
                               unsigned int dwEndSample, unsigned short wFirstChannel,
                               unsigned short wLastChannel) {
  if (dwEndSample >= m_pcmBuffer.GetHeldSampleSize() || wLastChannel >= m_wavInfo.GetChannels()) {
    return false;
  }
  const std::int64_t qnCount = std::int64_t{dwEndSample} - dwStartSample + 1;
  const double dStep = qnCount > 1 ? (dEndGain - dStartGain) / static_cast<double>(qnCount - 1) : 0;
  const double dFullScale = FullScale(m_wavInfo.GetBitsPerSample());
  for (unsigned int dwChannel = wFirstChannel; dwChannel <= wLastChannel; ++dwChannel) {
    double dGain = dStartGain;
    ChangeValues(m_pcmBuffer, dwStartSample, qnCount, static_cast<unsigned short>(dwChannel),
                 [&](std::span<int> values) {
                   Scale(values, dGain, dFullScale);
                   // Kept: after each block of 1024 samples, the gain changes only by the step that
                   // is meant for one sample, so a ramp hardly leaves its start. Sounds are faded
                   // by calling this for short ranges. Pinned by
                   // GainRamp_IsAStaircaseOf1024Samples.
                   dGain += dStep;
                 });
  }
  return true;
}

bool C_WavData::Normalize() { return NormalizeRange(0, LastSample(), 0, LastChannel()); }

bool C_WavData::NormalizeRange(unsigned int dwStartSample, unsigned int dwEndSample,
                               unsigned short wFirstChannel, unsigned short wLastChannel) {
  const int nPeak =
      m_pcmBuffer.GetMaxAbsValue(dwStartSample, dwEndSample, wFirstChannel, wLastChannel);
  if (nPeak < 0) return false;
  if (nPeak == 0) return true;  // silence cannot be made louder
  const double dGain = FullScale(m_wavInfo.GetBitsPerSample()) / nPeak;
  return ApplyGainRange(dGain, dGain, dwStartSample, dwEndSample, wFirstChannel, wLastChannel);
}

int C_WavData::GetDCOffset() {
  const unsigned int dwSamples = m_pcmBuffer.GetHeldSampleSize();
  if (dwSamples == 0) return 0;
  // Kept: the sum wraps in 32 bits, so long loud sounds report a wrong offset. The offsets stored
  // beside existing sounds were computed this way. Pinned by DCOffset_SumWrapsIn32Bits.
  unsigned int dwSum = 0;
  std::array<int, kBlock> block{};
  C_WavDataBufferIterator it(m_pcmBuffer, 0, 0);
  for (unsigned int dwLeft = dwSamples; dwLeft > 0;) {
    const auto values = std::span(block).first(std::min(kBlock, dwLeft));
    it.ReadValues(values);
    dwSum += WrappingSum(values);
    dwLeft -= static_cast<unsigned int>(values.size());
  }
  return static_cast<int>(dwSum) / static_cast<int>(dwSamples);
}

void C_WavData::RemoveDCOffset() {
  const int nOffset = GetDCOffset();
  const double dFullScale = FullScale(m_wavInfo.GetBitsPerSample());
  const unsigned int dwSamples = m_pcmBuffer.GetHeldSampleSize();
  for (unsigned int dwChannel = 0; dwChannel < m_wavInfo.GetChannels(); ++dwChannel) {
    ChangeValues(m_pcmBuffer, 0, dwSamples, static_cast<unsigned short>(dwChannel),
                 [&](std::span<int> values) { Subtract(values, nOffset, dFullScale); });
  }
}
