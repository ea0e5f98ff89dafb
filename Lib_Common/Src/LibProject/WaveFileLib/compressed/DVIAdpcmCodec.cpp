// SPDX-License-Identifier: Apache-2.0
#include "compressed/DVIAdpcmCodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "compressed/CodecBuffer.h"
#include "compressed/SampleBytes.h"
#include "compressed/TablesAdpcm.h"
#include "compressed/WavFileCodecInfo.h"

namespace {

constexpr unsigned int kHeaderBytes = 4;  // per channel
constexpr std::size_t k4BitGroup = 8;     // codes per channel
constexpr std::size_t k3BitGroup = 32;

struct S_Channel {
  int nSample = 0;
  int nIndex = 0;

  constexpr void Move(int nDifference, int nIndexStep) {
    nSample = std::clamp(nSample + nDifference, -32768, 32767);
    nIndex = std::clamp(nIndex + nIndexStep, 0, kImaLastIndex);
  }
};

constexpr int Difference4Bits(int nIndex, unsigned int dwCode) {
  const int nStep = kImaSteps[static_cast<std::size_t>(nIndex)];
  int nDifference = nStep >> 3;
  if ((dwCode & 4U) != 0) nDifference += nStep;
  if ((dwCode & 2U) != 0) nDifference += nStep >> 1;
  if ((dwCode & 1U) != 0) nDifference += nStep >> 2;
  return (dwCode & 8U) != 0 ? -nDifference : nDifference;
}

constexpr void Apply4Bits(S_Channel& channel, unsigned int dwCode) {
  channel.Move(Difference4Bits(channel.nIndex, dwCode), kIma4BitIndexSteps[dwCode & 7U]);
}

void Apply3Bits(S_Channel& channel, unsigned int dwCode) {
  const int nStep = kImaSteps[static_cast<std::size_t>(channel.nIndex)];
  int nDifference = nStep >> 2;
  if ((dwCode & 2U) != 0) nDifference += nStep;
  if ((dwCode & 1U) != 0) nDifference += nStep >> 1;
  channel.Move((dwCode & 4U) != 0 ? -nDifference : nDifference, kIma3BitIndexSteps[dwCode & 3U]);
}

// What a four-bit code does at a step: Apply4Bits in a table, but for the clamping of the sample.
struct S_Effect {
  std::int32_t nDifference = 0;
  std::uint32_t dwNextRow = 0;  // where the effects of the next step begin
};
constexpr std::size_t kCodes = 16;
constexpr auto kEffects = [] {
  std::array<S_Effect, kImaSteps.size() * kCodes> effects{};
  for (std::size_t nRow = 0; nRow < effects.size(); nRow += kCodes) {
    for (unsigned int dwCode = 0; dwCode < kCodes; ++dwCode) {
      const auto nIndex = static_cast<int>(nRow / kCodes);
      S_Channel channel{0, nIndex};
      Apply4Bits(channel, dwCode);
      effects[nRow + dwCode] = {Difference4Bits(nIndex, dwCode),
                                static_cast<std::uint32_t>(channel.nIndex) * std::uint32_t{kCodes}};
    }
  }
  return effects;
}();

// Decodes whole groups of one channel. Groups of a channel are cbStep bytes apart, samples nStep
// values.
inline void DecodeWholeGroups(S_Channel& channel, const unsigned char* pbyGroup, std::size_t cbStep,
                              short* pSample, std::size_t nStep, std::size_t nGroups) {
  // No index leaves the table, so none needs to be checked.
  const S_Effect* const pEffects = kEffects.data();
  int nSample = channel.nSample;
  std::size_t nRow = static_cast<std::size_t>(channel.nIndex) * kCodes;
  for (; nGroups > 0; --nGroups, pbyGroup += cbStep) {
    std::uint32_t dwCodes = std::uint32_t{pbyGroup[0]} | std::uint32_t{pbyGroup[1]} << 8U |
                            std::uint32_t{pbyGroup[2]} << 16U | std::uint32_t{pbyGroup[3]} << 24U;
    for (std::size_t i = 0; i < k4BitGroup; ++i, dwCodes >>= 4U, pSample += nStep) {
      const S_Effect& effect = pEffects[nRow + dwCodes % kCodes];
      nSample += effect.nDifference;
      nRow = effect.dwNextRow;
      // Clamping is rare, so the sample is stored before it is checked.
      *pSample = samplebytes::LittleEndian(static_cast<short>(nSample));
      if (nSample != static_cast<short>(nSample)) [[unlikely]] {
        nSample = nSample < 0 ? -32768 : 32767;
        *pSample = samplebytes::LittleEndian(static_cast<short>(nSample));
      }
    }
  }
  channel = {nSample, static_cast<int>(nRow / kCodes)};
}

// A block that is being decoded: where its groups come from, and where its samples go.
class C_Block {
 public:
  C_Block(const unsigned char* pbyBlock, unsigned int dwBlockBytes, short* pSamples,
          unsigned int dwCapacity, unsigned int dwChannels)
      : m_pbyBlock(pbyBlock),
        m_cbGroups(dwBlockBytes - std::min(dwBlockBytes, kHeaderBytes * dwChannels)),
        m_pSamples(pSamples),
        m_input(pbyBlock, dwBlockBytes),
        m_output(reinterpret_cast<unsigned char*>(pSamples), dwCapacity),
        m_nWholeFrames(dwCapacity / sizeof(short) / dwChannels),
        m_channels(dwBlockBytes / kHeaderBytes < dwChannels ? 0 : dwChannels) {
    for (S_Channel& channel : m_channels) {
      channel.nSample = m_input.GetShort();
      channel.nIndex = std::min<int>(m_input.GetByte(), kImaLastIndex);
      m_input.Skip(1);
      m_output.SetShort(static_cast<short>(channel.nSample));
    }
  }

  // True when no groups are left, or when there is no room for samples from frame nFrame on.
  [[nodiscard]] bool Ends(std::size_t nFrame) const {
    return m_channels.empty() || m_input.EOB() || nFrame > m_nWholeFrames;
  }

  // Decodes at most nMost groups of four-bit codes: those that the block holds completely and that
  // have room for all of their samples. Returns their number. Comes before all other groups.
  std::size_t DecodeWhole4BitGroups(std::size_t nMost) {
    const std::size_t nChannels = m_channels.size();
    if (nChannels == 0 || m_pSamples == nullptr) return 0;
    const std::size_t cbGroups = k4BitGroup / 2 * nChannels;
    const std::size_t nGroups =
        std::min({nMost, m_cbGroups / cbGroups,
                  (m_nWholeFrames - std::min<std::size_t>(m_nWholeFrames, 1)) / k4BitGroup});
    const unsigned char* const pbyGroups = m_pbyBlock + kHeaderBytes * nChannels;
    for (std::size_t i = 0; i < nChannels; ++i) {
      const unsigned char* const pbyFirst = pbyGroups + k4BitGroup / 2 * i;
      short* const pFirst = m_pSamples + nChannels + i;
      // The compiler makes better code where it knows the steps.
      if (nChannels == 1) {
        DecodeWholeGroups(m_channels[i], pbyFirst, cbGroups, pFirst, 1, nGroups);
      } else if (nChannels == 2) {
        DecodeWholeGroups(m_channels[i], pbyFirst, cbGroups, pFirst, 2, nGroups);
      } else {
        DecodeWholeGroups(m_channels[i], pbyFirst, cbGroups, pFirst, nChannels, nGroups);
      }
    }
    m_input.Skip(cbGroups * nGroups);
    return nGroups;
  }

  void Decode4BitGroup(std::size_t nFrame) {
    for (std::size_t nChannel = 0; nChannel < m_channels.size(); ++nChannel) {
      for (std::size_t i = 0; i < k4BitGroup && !m_input.EOB(); ++i) {
        Apply4Bits(m_channels[nChannel], m_input.GetNibbleLowFirst());
        Put(nFrame + i, nChannel);
      }
    }
  }

  void Decode3BitGroup(std::size_t nFrame) {
    for (std::size_t nChannel = 0; nChannel < m_channels.size(); ++nChannel) {
      unsigned int dwBits = 0;
      unsigned int dwHeld = 0;
      for (std::size_t i = 0; i < k3BitGroup; ++i, dwBits >>= 3U, dwHeld -= 3) {
        if (dwHeld < 3) {
          if (m_input.EOB()) break;
          dwBits |= unsigned{m_input.GetByte()} << dwHeld;
          dwHeld += 8;
        }
        Apply3Bits(m_channels[nChannel], dwBits & 7U);
        Put(nFrame + i, nChannel);
      }
    }
  }

 private:
  void Put(std::size_t nFrame, std::size_t nChannel) {
    m_output.SetPos((nFrame * m_channels.size() + nChannel) * sizeof(short));
    m_output.SetShort(static_cast<short>(m_channels[nChannel].nSample));
  }

  const unsigned char* m_pbyBlock;
  std::size_t m_cbGroups;  // bytes after the header
  short* m_pSamples;
  C_Buffer m_input;
  C_Buffer m_output;
  std::size_t m_nWholeFrames;  // frames that the capacity holds completely
  std::vector<S_Channel> m_channels;
};

// How a block is divided into groups.
struct S_Groups {
  std::size_t nFrames;  // frames that a group decodes to
  int nEights;          // units of eight samples that a group counts as
  bool bWhole;          // there is a faster way for whole groups
  void (C_Block::*pfnDecode)(std::size_t nFrame);
};

constexpr S_Groups k4BitGroups = {k4BitGroup, 1, true, &C_Block::Decode4BitGroup};
// Kept: a group holds four units of eight samples but is counted as three, so more groups are tried
// than the samples per block ask for. Decoding still stops at the end of the block, and a block
// whose number of samples is slightly too small plays to its end. Pinned by
// ThreeBitGroups_AreCountedAsThreeEights.
constexpr S_Groups k3BitGroups = {k3BitGroup, 3, false, &C_Block::Decode3BitGroup};

void DecodeGroups(const S_Groups& groups, const C_WavFileCodecInfo& codecInfo,
                  const unsigned char* pbyBlock, unsigned int dwBlockBytes, short* pSamples,
                  unsigned int dwCapacity) {
  const unsigned int dwChannels = codecInfo.GetPCMWAVEFORMAT().wChannels;
  if (dwChannels == 0) return;
  C_Block block(pbyBlock, dwBlockBytes, pSamples, dwCapacity, dwChannels);
  // The samples after the first one, in units of eight; 0 for a block without samples.
  const int nEights = (codecInfo.GetSamplesPerBlock() - 1) / 8;
  const auto nWhole = static_cast<int>(
      groups.bWhole ? block.DecodeWhole4BitGroups(static_cast<std::size_t>(std::max(nEights, 0)))
                    : 0);
  std::size_t nFrame = 1 + groups.nFrames * static_cast<std::size_t>(nWhole);
  for (int i = nWhole; i < nEights && !block.Ends(nFrame); i += groups.nEights) {
    (block.*groups.pfnDecode)(nFrame);
    nFrame += groups.nFrames;
  }
}

}  // namespace

bool C_DVIAdpcmCodec::DecodeBlock(const C_WavFileCodecInfo& codecInfo,
                                  const unsigned char* pbyBlock, short* pSamples,
                                  unsigned int dwBlockBytes, unsigned int dwCapacity) {
  DecodeGroups(k4BitGroups, codecInfo, pbyBlock, dwBlockBytes, pSamples, dwCapacity);
  return true;
}

std::optional<unsigned int> C_DVIAdpcm3BitCodec::GetDecodedSize(const C_WavFileCodecInfo& codecInfo,
                                                                unsigned int dwEncodedBytes) {
  return GetAdpcmSize(codecInfo, dwEncodedBytes, 8, 3);
}

bool C_DVIAdpcm3BitCodec::DecodeBlock(const C_WavFileCodecInfo& codecInfo,
                                      const unsigned char* pbyBlock, short* pSamples,
                                      unsigned int dwBlockBytes, unsigned int dwCapacity) {
  DecodeGroups(k3BitGroups, codecInfo, pbyBlock, dwBlockBytes, pSamples, dwCapacity);
  return true;
}
