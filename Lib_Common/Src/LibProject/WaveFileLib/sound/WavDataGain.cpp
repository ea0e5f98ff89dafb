// SPDX-License-Identifier: Apache-2.0
//
// Loudness: gain, normalising, DC offset.
#include <algorithm>
#include <cstdint>
#include <limits>

#include "sound/WavData.h"

namespace {

constexpr unsigned int kGainBlock = 1024;

// The largest magnitude of a sample, 1 << (bits - 1).
double FullScale(unsigned short wBits) { return static_cast<double>(1U << ((wBits - 1U) & 31U)); }

// Clipped, then truncated toward zero. Gains may be infinite, and infinity times zero is not a
// number.
int ScaledValue(int nValue, double dGain, double dFullScale) {
  const double dScaled = nValue * dGain;
  if (dScaled != dScaled) return 0;
  return static_cast<int>(std::clamp(dScaled, -dFullScale, dFullScale - 1.0));
}

int SaturatedDifference(int nValue, int nOffset) {
  const std::int64_t qnDifference = std::int64_t{nValue} - nOffset;
  return static_cast<int>(std::clamp<std::int64_t>(qnDifference, std::numeric_limits<int>::min(),
                                                   std::numeric_limits<int>::max()));
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
    C_WavDataBufferIterator it(m_pcmBuffer, dwStartSample, static_cast<unsigned short>(dwChannel));
    double dGain = dStartGain;
    for (std::int64_t qnDone = 0; qnDone < qnCount; ++qnDone, it.Next()) {
      // Kept: after each block of 1024 samples, the gain changes only by the step that is meant for
      // one sample, so a ramp hardly leaves its start. Sounds are faded by calling this for short
      // ranges. Pinned by GainRamp_IsAStaircaseOf1024Samples.
      if (qnDone != 0 && qnDone % kGainBlock == 0) dGain += dStep;
      it.SetValue(ScaledValue(it.GetValue(), dGain, dFullScale), true);
    }
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
  C_WavDataBufferIterator it(m_pcmBuffer, 0, 0);
  for (unsigned int i = 0; i < dwSamples; ++i, it.Next()) {
    dwSum += static_cast<unsigned int>(it.GetValue());
  }
  return static_cast<int>(dwSum) / static_cast<int>(dwSamples);
}

void C_WavData::RemoveDCOffset() {
  const int nOffset = GetDCOffset();
  const unsigned int dwSamples = m_pcmBuffer.GetHeldSampleSize();
  for (unsigned int dwChannel = 0; dwChannel < m_wavInfo.GetChannels(); ++dwChannel) {
    C_WavDataBufferIterator it(m_pcmBuffer, 0, static_cast<unsigned short>(dwChannel));
    for (unsigned int i = 0; i < dwSamples; ++i, it.Next()) {
      it.SetValue(SaturatedDifference(it.GetValue(), nOffset), true);
    }
  }
}
