// SPDX-License-Identifier: Apache-2.0
#include "compressed/DVIAdpcmCodec.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "compressed/CodecBuffer.h"
#include "compressed/TablesAdpcm.h"
#include "compressed/WavFileCodecInfo.h"

namespace {

constexpr unsigned int kHeaderBytes = 4;  // per channel
constexpr std::size_t k4BitGroup = 8;     // codes per channel
constexpr std::size_t k3BitGroup = 32;

struct S_Channel {
  int nSample = 0;
  int nIndex = 0;

  void Move(int nDifference, int nIndexStep) {
    nSample = std::clamp(nSample + nDifference, -32768, 32767);
    nIndex = std::clamp(nIndex + nIndexStep, 0, kImaLastIndex);
  }
};

void Apply4Bits(S_Channel& channel, unsigned int dwCode) {
  const int nStep = kImaSteps[static_cast<std::size_t>(channel.nIndex)];
  int nDifference = nStep >> 3;
  if ((dwCode & 4U) != 0) nDifference += nStep;
  if ((dwCode & 2U) != 0) nDifference += nStep >> 1;
  if ((dwCode & 1U) != 0) nDifference += nStep >> 2;
  channel.Move((dwCode & 8U) != 0 ? -nDifference : nDifference, kIma4BitIndexSteps[dwCode & 7U]);
}

void Apply3Bits(S_Channel& channel, unsigned int dwCode) {
  const int nStep = kImaSteps[static_cast<std::size_t>(channel.nIndex)];
  int nDifference = nStep >> 2;
  if ((dwCode & 2U) != 0) nDifference += nStep;
  if ((dwCode & 1U) != 0) nDifference += nStep >> 1;
  channel.Move((dwCode & 4U) != 0 ? -nDifference : nDifference, kIma3BitIndexSteps[dwCode & 3U]);
}

// A block that is being decoded: where its groups come from, and where its samples go.
class C_Block {
 public:
  C_Block(const unsigned char* pbyBlock, unsigned int dwBlockBytes, short* pSamples,
          unsigned int dwCapacity, unsigned int dwChannels)
      : m_input(pbyBlock, dwBlockBytes),
        m_output(reinterpret_cast<unsigned char*>(pSamples), dwCapacity),
        m_nFrames(dwCapacity / sizeof(short) / dwChannels + 1),
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
    return m_channels.empty() || m_input.EOB() || nFrame >= m_nFrames;
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

  C_Buffer m_input;
  C_Buffer m_output;
  std::size_t m_nFrames;  // frames that begin within the capacity
  std::vector<S_Channel> m_channels;
};

// How a block is divided into groups.
struct S_Groups {
  std::size_t nFrames;  // frames that a group decodes to
  int nEights;          // units of eight samples that a group counts as
  void (C_Block::*pfnDecode)(std::size_t nFrame);
};

constexpr S_Groups k4BitGroups = {k4BitGroup, 1, &C_Block::Decode4BitGroup};
// Kept: a group holds four units of eight samples but is counted as three, so more groups are tried
// than the samples per block ask for. Decoding still stops at the end of the block, and a block
// whose number of samples is slightly too small plays to its end. Pinned by
// ThreeBitGroups_AreCountedAsThreeEights.
constexpr S_Groups k3BitGroups = {k3BitGroup, 3, &C_Block::Decode3BitGroup};

void DecodeGroups(const S_Groups& groups, const C_WavFileCodecInfo& codecInfo,
                  const unsigned char* pbyBlock, unsigned int dwBlockBytes, short* pSamples,
                  unsigned int dwCapacity) {
  const unsigned int dwChannels = codecInfo.GetPCMWAVEFORMAT().wChannels;
  if (dwChannels == 0) return;
  C_Block block(pbyBlock, dwBlockBytes, pSamples, dwCapacity, dwChannels);
  // The samples after the first one, in units of eight; 0 for a block without samples.
  const int nEights = (codecInfo.GetSamplesPerBlock() - 1) / 8;
  std::size_t nFrame = 1;
  for (int i = 0; i < nEights && !block.Ends(nFrame); i += groups.nEights) {
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
