// SPDX-License-Identifier: Apache-2.0
//
// Channels: taking one out, putting one in, mixing to one or two.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "CheckedSize.h"
#include "sound/HeldBytes.h"
#include "sound/SampleUnits.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned short kStereo = 2;
constexpr int kSilence = -1;           // in place of a channel number
constexpr unsigned int kBlock = 1024;  // frames that are mixed together

unsigned int CeilDivided(unsigned int dwLength, unsigned short wChannels) {
  return static_cast<unsigned int>((std::uint64_t{dwLength} + wChannels - 1) / wChannels);
}

// Adds every second value, from this one on, to the sums.
void AddEverySecond(std::span<const int> values, std::size_t nFrom, std::span<int> sums) {
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = static_cast<int>(static_cast<unsigned int>(sums[i]) +
                               static_cast<unsigned int>(values[2 * i + nFrom]));
  }
}

void Divide(std::span<int> sums, int nDivisor) {
  if (nDivisor == 2) {
    for (int& nSum : sums) nSum /= 2;
  } else {
    for (int& nSum : sums) nSum /= nDivisor;
  }
}

// Averages the channels of a sound, given as one sequence of samples, into a mono buffer.
void MixDown(C_WavDataBuffer& samples, unsigned short wChannels, unsigned int dwFrames,
             C_WavDataBuffer& mono) {
  // Kept: a frame counts as two samples, whatever the channel count. Stereo is what gets mixed;
  // sounds of more channels have always come out this way. Pinned by
  // ConvertToMono_OfMoreThanTwoChannels_AdvancesByTwoSamples.
  std::vector<C_WavDataBufferIterator> pairs;
  pairs.reserve((wChannels + 1U) / 2U);
  for (unsigned int dwChannel = 0; dwChannel < wChannels; dwChannel += 2) {
    pairs.emplace_back(samples, dwChannel, static_cast<unsigned short>(0));
  }
  C_WavDataBufferIterator dst(mono, 0, 0);
  std::array<int, std::size_t{2} * kBlock> twoChannels{};
  std::array<int, kBlock> block{};
  while (dwFrames > 0) {
    const auto sums = std::span(block).first(std::min(kBlock, dwFrames));
    const auto values = std::span(twoChannels).first(2 * sums.size());
    std::ranges::fill(sums, 0);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      pairs[i].ReadValues(values);
      AddEverySecond(values, 0, sums);
      if (2 * i + 1 < wChannels) AddEverySecond(values, 1, sums);
    }
    Divide(sums, wChannels);
    dst.WriteValues(sums, true);
    dwFrames -= static_cast<unsigned int>(sums.size());
  }
}

// The bytes of one silent sample, of any width: unsigned values have an offset of half their range.
std::vector<unsigned char> SilentSample(I_WavInfo& info) {
  std::vector<unsigned char> sample(info.GetStoreBitsPerSample() / 8U);
  const unsigned int nTopBit = info.GetBitsPerSample() - 1U;
  if (!info.IsValueSigned() && nTopBit / 8U < sample.size()) {
    sample[nTopBit / 8U] = static_cast<unsigned char>(1U << nTopBit % 8U);
  }
  return sample;
}

// Allocates as many bytes as the format says. Those of frames that will not be mixed are 0.
void AllocMix(C_WavDataBuffer& mix, C_WavInfo& info, unsigned int dwFrames) {
  const unsigned int dwLength = info.GetByteLength();
  unsigned char* const pbyPcm = mix.AllocBuffer(dwLength);
  mix.SetWavInfo(&info);
  const std::size_t cbFrame = std::size_t{info.GetStoreBitsPerSample() / 8U} * info.GetChannels();
  const bool bMixed = IsSupportBitsPerSample(0, info.GetStoreBitsPerSample());
  std::fill(pbyPcm + (bMixed ? cbFrame * dwFrames : 0), pbyPcm + dwLength, 0);
}

}  // namespace

I_WavData* C_WavData::CreateChannelData(unsigned short wChannelNo, unsigned int dwStartSample,
                                        unsigned int dwSampleCount) {
  const unsigned short wChannels = m_wavInfo.GetChannels();
  const std::uint64_t qwEndSample = std::uint64_t{dwStartSample} + dwSampleCount;
  if (wChannelNo >= wChannels || qwEndSample > m_pcmBuffer.GetUnwrappedHeldSampleSize()) {
    return nullptr;
  }

  const unsigned short wStoreBits = m_wavInfo.GetStoreBitsPerSample();
  const auto cbFrom = static_cast<std::size_t>(std::uint64_t{dwStartSample} * wStoreBits >> 3);
  const auto dwLength = static_cast<unsigned int>((qwEndSample * wStoreBits >> 3) - cbFrom);
  auto channel = std::make_unique<C_WavData>();
  unsigned char* const pbyPcm = channel->AllocBuffer(dwLength);
  if (wChannels == 1 && dwLength > 0) {
    std::memcpy(pbyPcm, GetBuffer() + cbFrom, dwLength);
  } else if (dwLength > 0) {
    const std::size_t cbSample = wStoreBits / 8U;
    const std::size_t cbFrame = cbSample * wChannels;
    sampleunits::Copy({GetBuffer() + cbFrame * dwStartSample + cbSample * wChannelNo, cbFrame},
                      dwSampleCount, cbSample, pbyPcm, cbSample);
    std::fill(pbyPcm + cbSample * dwSampleCount, pbyPcm + dwLength, 0);
  }
  C_WavInfo info = FormatWith(1, dwLength);
  channel->SetWavInfo(&info);
  return channel.release();
}

bool C_WavData::SetChannelData(I_WavData* pSrc, unsigned short wChannelNo,
                               unsigned int dwStartSample, int /*nReserved*/) {
  if (pSrc == nullptr || wChannelNo >= m_wavInfo.GetChannels()) return false;
  if (!vcm::HoldsItsBytes(*pSrc)) return false;
  const unsigned int dwLength = pSrc->GetBufferLength();
  if (dwLength == 0) return true;
  if (pSrc->GetBuffer() == nullptr) return false;
  return m_wavInfo.GetChannels() == 1
             ? SetMonoData(pSrc->GetBuffer(), dwLength, dwStartSample)
             : SetSideData(pSrc->GetBuffer(), dwLength, wChannelNo == 0 ? 0 : 1, dwStartSample);
}

bool C_WavData::SetMonoData(const unsigned char* pbySrc, unsigned int dwLength,
                            unsigned int dwStartSample) {
  const std::uint64_t qwFrom =
      std::uint64_t{m_wavInfo.GetStoreBitsPerSample()} * dwStartSample >> 3;
  if (qwFrom + dwLength > m_pcmBuffer.GetLength()) return false;
  std::memmove(GetBuffer() + qwFrom, pbySrc, dwLength);
  return true;
}

// Kept: the stride is that of two channels whatever the channel count, every channel but the first
// counts as the second, and the source's own format is ignored. Callers build stereo sounds with
// this. Pinned by SetChannelData_StrideIsThatOfTwoChannels.
bool C_WavData::SetSideData(const unsigned char* pbySrc, unsigned int dwLength, unsigned int dwSide,
                            unsigned int dwStartSample) {
  const unsigned short wStoreBits = m_wavInfo.GetStoreBitsPerSample();
  if (!IsSupportBitsPerSample(wStoreBits, wStoreBits)) return false;
  const unsigned int cbSample = wStoreBits / 8U;
  const std::uint64_t qwSamples = dwLength / cbSample;
  if (qwSamples == 0) return true;
  const std::uint64_t qwFirst = std::uint64_t{dwStartSample} * kStereo + dwSide;
  const std::uint64_t qwLast = qwFirst + (qwSamples - 1) * kStereo;
  if ((qwLast + 1) * cbSample > m_pcmBuffer.GetLength()) return false;
  sampleunits::Copy({pbySrc, cbSample}, static_cast<std::size_t>(qwSamples), cbSample,
                    GetBuffer() + qwFirst * cbSample, std::size_t{cbSample} * kStereo);
  return true;
}

void C_WavData::ConvertToMono() {
  const unsigned short wChannels = m_wavInfo.GetChannels();
  if (wChannels <= 1 || !CanMix()) return;

  const unsigned int dwFrames = m_pcmBuffer.GetHeldSampleSize();
  C_WavInfo monoInfo = FormatWith(1, CeilDivided(GetBufferLength(), wChannels));
  C_WavDataBuffer mono;
  AllocMix(mono, monoInfo, dwFrames);
  // The same bytes as one channel, so that each iterator reads one sample and no more.
  C_WavInfo flatInfo = FormatWith(1, GetBufferLength());
  C_WavDataBuffer flat;
  flat.AttachBuffer(GetBuffer(), m_pcmBuffer.GetLength());
  flat.SetWavInfo(&flatInfo);

  MixDown(flat, wChannels, dwFrames, mono);
  InstallMix(mono, 1);
}

void C_WavData::ConvertToStereo() {
  const unsigned short wChannels = m_wavInfo.GetChannels();
  if (wChannels != kStereo) MixToStereo(0, wChannels == 1 ? 0 : 1);
}

void C_WavData::ConvertToStereoWithSilence(unsigned short bRight) {
  if (bRight == 0) {
    MixToStereo(0, kSilence);
  } else {
    MixToStereo(kSilence, m_wavInfo.GetChannels() == 1 ? 0 : 1);
  }
}

void C_WavData::MixToStereo(int nLeftChannel, int nRightChannel) {
  const unsigned short wChannels = m_wavInfo.GetChannels();
  if (wChannels == 0 || !CanMix()) return;
  const auto dwLength = vcm::CheckedBytes(CeilDivided(GetBufferLength(), wChannels), kStereo);
  if (!dwLength) return;

  const unsigned int dwFrames = m_pcmBuffer.GetUnwrappedHeldSampleSize();
  C_WavInfo stereoInfo = FormatWith(kStereo, *dwLength);
  C_WavDataBuffer stereo;
  AllocMix(stereo, stereoInfo, dwFrames);
  const std::vector<unsigned char> silence = SilentSample(m_wavInfo);
  const auto Side = [&](int nChannel) -> sampleunits::S_Samples {
    if (nChannel == kSilence) return {silence.data(), 0};
    return {GetBuffer() + static_cast<std::size_t>(nChannel) * silence.size(),
            wChannels * silence.size()};
  };
  if (dwFrames > 0) {
    sampleunits::Interleave(Side(nLeftChannel), Side(nRightChannel), dwFrames, silence.size(),
                            stereo.GetBuffer());
  }
  InstallMix(stereo, kStereo);
}

bool C_WavData::CanMix() { return !m_pcmBuffer.IsBufferAttached() && vcm::HoldsItsBytes(*this); }

void C_WavData::InstallMix(C_WavDataBuffer& mix, unsigned short wChannels) {
  const unsigned int dwLength = mix.GetLength();
  if (AsOurOwn(*this) == nullptr) {
    SetBuffer(mix.GetBuffer(), dwLength);
  } else {
    m_pcmBuffer.TakeBuffer(mix);
    SetByteLength(dwLength);
  }
  m_wavInfo.SetChannels(wChannels);
  m_pcmBuffer.SetWavInfo(&m_wavInfo);
}
