// SPDX-License-Identifier: Apache-2.0
//
// Channels: taking one out, putting one in, mixing to one or two.
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "CheckedSize.h"
#include "sound/HeldBytes.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned short kStereo = 2;
constexpr int kSilence = -1;  // in place of a channel number

unsigned int CeilDivided(unsigned int dwLength, unsigned short wChannels) {
  return static_cast<unsigned int>((std::uint64_t{dwLength} + wChannels - 1) / wChannels);
}

// Copies nCount samples of cbSample bytes; the steps are the bytes from one sample to the next.
void CopySamples(unsigned char* pbyDst, std::size_t cbDstStep, const unsigned char* pbySrc,
                 std::size_t cbSrcStep, std::size_t nCount, std::size_t cbSample) {
  for (std::size_t i = 0; i < nCount; ++i) {
    std::memcpy(pbyDst + i * cbDstStep, pbySrc + i * cbSrcStep, cbSample);
  }
}

// Averages the channels of a sound, given as one sequence of samples, into a mono buffer.
void MixDown(C_WavDataBuffer& samples, unsigned short wChannels, unsigned int dwFrames,
             C_WavDataBuffer& mono) {
  std::vector<C_WavDataBufferIterator> sources;
  sources.reserve(wChannels);
  for (unsigned int dwChannel = 0; dwChannel < wChannels; ++dwChannel) {
    sources.emplace_back(samples, dwChannel, static_cast<unsigned short>(0));
  }
  C_WavDataBufferIterator dst(mono, 0, 0);
  for (unsigned int dwFrame = 0; dwFrame < dwFrames; ++dwFrame, dst.Next()) {
    unsigned int dwSum = 0;
    for (C_WavDataBufferIterator& source : sources) {
      dwSum += static_cast<unsigned int>(source.GetValue());
      // Kept: a frame counts as two samples, whatever the channel count. Stereo is what gets mixed;
      // sounds of more channels have always come out this way. Pinned by
      // ConvertToMono_OfMoreThanTwoChannels_AdvancesByTwoSamples.
      source.Next();
      source.Next();
    }
    dst.SetValue(static_cast<int>(dwSum) / wChannels, true);
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

// Writes one side of a stereo buffer: a channel of src, or silence.
void FillSide(C_WavDataBuffer& src, unsigned int dwFrames, int nChannel, C_WavDataBuffer& stereo,
              unsigned short wSide) {
  if (dwFrames == 0) return;
  I_WavInfo& info = *src.GetWavInfo();
  const std::vector<unsigned char> silence = SilentSample(info);
  const std::size_t cbSample = silence.size();
  unsigned char* const pbySide = stereo.GetBuffer() + wSide * cbSample;
  if (nChannel == kSilence) {
    CopySamples(pbySide, kStereo * cbSample, silence.data(), 0, dwFrames, cbSample);
  } else {
    CopySamples(pbySide, kStereo * cbSample,
                src.GetBuffer() + static_cast<std::size_t>(nChannel) * cbSample,
                info.GetChannels() * cbSample, dwFrames, cbSample);
  }
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
  std::vector<unsigned char> pcm(dwLength);
  if (wChannels == 1 && dwLength > 0) {
    std::memcpy(pcm.data(), GetBuffer() + cbFrom, dwLength);
  } else if (dwLength > 0) {
    const std::size_t cbSample = wStoreBits / 8U;
    const std::size_t cbFrame = cbSample * wChannels;
    CopySamples(pcm.data(), cbSample, GetBuffer() + cbFrame * dwStartSample + cbSample * wChannelNo,
                cbFrame, dwSampleCount, cbSample);
  }
  auto channel = std::make_unique<C_WavData>();
  C_WavInfo info = FormatWith(1, dwLength);
  channel->SetBuffer(pcm.data(), dwLength);
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
  CopySamples(GetBuffer() + qwFirst * cbSample, std::size_t{cbSample} * kStereo, pbySrc, cbSample,
              static_cast<std::size_t>(qwSamples), cbSample);
  return true;
}

void C_WavData::ConvertToMono() {
  const unsigned short wChannels = m_wavInfo.GetChannels();
  if (wChannels <= 1 || !CanMix()) return;

  std::vector<unsigned char> pcm(CeilDivided(GetBufferLength(), wChannels));
  C_WavInfo monoInfo = FormatWith(1, static_cast<unsigned int>(pcm.size()));
  C_WavDataBuffer mono;
  mono.AttachBuffer(pcm.data(), monoInfo.GetByteLength());
  mono.SetWavInfo(&monoInfo);
  // The same bytes as one channel, so that each iterator reads one sample and no more.
  C_WavInfo flatInfo = FormatWith(1, GetBufferLength());
  C_WavDataBuffer flat;
  flat.AttachBuffer(GetBuffer(), m_pcmBuffer.GetLength());
  flat.SetWavInfo(&flatInfo);

  MixDown(flat, wChannels, m_pcmBuffer.GetHeldSampleSize(), mono);
  InstallMix(pcm, 1);
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

  std::vector<unsigned char> pcm(*dwLength);
  C_WavInfo stereoInfo = FormatWith(kStereo, *dwLength);
  C_WavDataBuffer stereo;
  stereo.AttachBuffer(pcm.data(), *dwLength);
  stereo.SetWavInfo(&stereoInfo);
  const unsigned int dwFrames = m_pcmBuffer.GetUnwrappedHeldSampleSize();
  FillSide(m_pcmBuffer, dwFrames, nLeftChannel, stereo, 0);
  FillSide(m_pcmBuffer, dwFrames, nRightChannel, stereo, 1);
  InstallMix(pcm, kStereo);
}

bool C_WavData::CanMix() { return !m_pcmBuffer.IsBufferAttached() && vcm::HoldsItsBytes(*this); }

void C_WavData::InstallMix(const std::vector<unsigned char>& pcm, unsigned short wChannels) {
  SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
  m_wavInfo.SetChannels(wChannels);
  m_pcmBuffer.SetWavInfo(&m_wavInfo);
}
